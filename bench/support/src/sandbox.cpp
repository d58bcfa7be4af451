#include "bench/sandbox.h"

#include "host/agentdirectory.h"

#include <windows.h>

namespace bench {

Sandbox::Sandbox() : m_agentDirectory(devhost::host::readAgentDirectory())
{
    LogSandbox::configure(neverFull, 2);
    std::filesystem::create_directories(root() / "agent");
    devhost::host::writeAgentDirectory(root() / "agent");
}

Sandbox::~Sandbox()
{
    if (m_agentDirectory)
        devhost::host::writeAgentDirectory(*m_agentDirectory);
    else
        RegDeleteKeyValueW(HKEY_LOCAL_MACHINE, L"Software\\Vantorix\\tarn", L"InstallationDirectory");
}

} // namespace bench
