#include "machine/machinefile.h"

#include "store/server/storefile.h"
#include "vxtl/handle.h"
#include "vxtl/parsejson.h"
#include "vxtl/win32exception.h"

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

/// Not vx::sync::GlobalMutex, which may be denied to create it and then find it gone: here users come and go.
class MachineLock {
public:
    MachineLock() : m_mutex(CreateMutexW(nullptr, FALSE, mutexName))
    {
        if (!m_mutex.isValid() || WaitForSingleObject(m_mutex.get(), INFINITE) == WAIT_FAILED)
            VX_THROW_WIN32(GetLastError(), L"the lock of the machine's file");
    }
    ~MachineLock() { ReleaseMutex(m_mutex.get()); }
    MachineLock(const MachineLock&) = delete;
    MachineLock& operator=(const MachineLock&) = delete;

private:
    const vx::KernelHandle m_mutex;
};

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
    const MachineLock lock;
    return parse(store::StoreFile(machineFile().native()).read()).get<MachineState>();
}

void changeState(const std::function<void(MachineState&)>& change)
{
    const MachineLock lock;
    const store::StoreFile file(machineFile().native());
    const auto before = parse(file.read());
    auto state = before.get<MachineState>();
    change(state);
    if (const nlohmann::json after = state; after != before)
        file.replace(after.dump(4) + "\n");
}

} // namespace devhost::machine
