#include "machine/machinefile.h"

#include "store/server/storefile.h"
#include "vxtl/globalmutex.h"
#include "vxtl/parsejson.h"

#include <mutex>
#include <windows.h>

namespace devhost::machine {

namespace {

constexpr auto mutexName = L"Global\\VantorixDevelopmentMachine";

/// Empty when there is none.
std::wstring environmentVariable(const wchar_t* name)
{
    wchar_t value[1024];
    const auto length = GetEnvironmentVariableW(name, value, static_cast<DWORD>(std::size(value)));
    return length < std::size(value) ? std::wstring(value, length) : std::wstring();
}

nlohmann::json parse(const std::optional<std::string>& content)
{
    return content ? vx::parseJson(*content) : nlohmann::json::object();
}

} // namespace

std::filesystem::path machineFile()
{
    if (const auto named = environmentVariable(L"TARNHD_MACHINE"); !named.empty())
        return named;
    return std::filesystem::path(environmentVariable(L"ProgramData")) / L"Vantorix" / L"Development" / L"machine.json";
}

MachineState readState()
{
    vx::sync::GlobalMutex mutex(mutexName);
    const std::lock_guard lock(mutex);
    return parse(store::StoreFile(machineFile().native()).read()).get<MachineState>();
}

void changeState(const std::function<void(MachineState&)>& change)
{
    vx::sync::GlobalMutex mutex(mutexName);
    const std::lock_guard lock(mutex);
    const store::StoreFile file(machineFile().native());
    const auto before = parse(file.read());
    auto state = before.get<MachineState>();
    change(state);
    if (const nlohmann::json after = state; after != before)
        file.replace(after.dump(4) + "\n");
}

} // namespace devhost::machine
