#include "host/restartprogram.h"

#include "host/exitcode.h"
#include "host/systemtext.h"
#include "vxtl/registry.h"
#include "vxtl/win32exception.h"

namespace devhost::host {

namespace {

constexpr auto keyName = L"HKEY_LOCAL_MACHINE\\SOFTWARE\\Vantorix\\Unitide";
constexpr auto valueName = L"RestartCommand";

} // namespace

std::optional<std::filesystem::path> readRestartProgram()
{
    const auto registry = vx::registry::createWin32Registry();
    if (!registry->doesKeyExist(keyName) || !registry->openKey(keyName)->doesValueExist(valueName))
        return std::nullopt;
    return registry->openKey(keyName)->getStringValue(valueName);
}

void writeRestartProgram(const std::optional<std::filesystem::path>& program)
{
    try {
        const auto key = vx::registry::createWin32Registry()->createKey(keyName);
        if (program)
            key->setStringValue(valueName, program->native());
        else if (key->doesValueExist(valueName))
            key->deleteValue(valueName);
    } catch (const vx::Win32Exception& exception) {
        throw CommandError(
            ExitCode::Failed, "cannot write the restart program to the registry: " + systemText(exception.code()));
    }
}

} // namespace devhost::host
