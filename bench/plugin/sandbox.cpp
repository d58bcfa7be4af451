#include "sandbox.h"

#include "host/agentdirectory.h"

#include <windows.h>

Sandbox::Sandbox()
    : m_root(std::filesystem::temp_directory_path() / ("tarnhd-bench-" + std::to_string(GetCurrentProcessId()))),
      m_agentDirectory(devhost::host::readAgentDirectory())
{
    std::filesystem::remove_all(m_root);
    std::filesystem::create_directories(m_root / "agent");
    SetEnvironmentVariableW(L"ProgramData", m_root.c_str());
    devhost::host::writeAgentDirectory(m_root / "agent");
}

Sandbox::~Sandbox()
{
    if (m_agentDirectory)
        devhost::host::writeAgentDirectory(*m_agentDirectory);
    else
        RegDeleteKeyValueW(HKEY_LOCAL_MACHINE, L"Software\\Vantorix\\tarn", L"InstallationDirectory");
    std::error_code ignored;
    std::filesystem::remove_all(m_root, ignored);
}
