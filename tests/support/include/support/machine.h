#pragma once

#include "machine/machinefile.h"
#include "support/childtest.h"
#include "vxtl/comutils.h"

#include <filesystem>

namespace support {

/// A machine of a test's own for the stand-ins of Windows' classes, in an apartment where they can be called. Whoever
/// has used them must have let go of all their objects by its end. One at a time.
class Machine {
public:
    Machine()
    {
        std::filesystem::remove(file);
        SetEnvironmentVariableW(L"TARNHD_MACHINE", file.c_str());
    }
    ~Machine()
    {
        EXPECT_TRUE(isUnused()) << "an object of the stand-ins was not given back";
        SetEnvironmentVariableW(L"TARNHD_MACHINE", nullptr);
        std::error_code ignored;
        std::filesystem::remove(file, ignored);
    }
    Machine(const Machine&) = delete;
    Machine& operator=(const Machine&) = delete;

    static devhost::machine::MachineState state() { return devhost::machine::readState(); }
    static void change(const std::function<void(devhost::machine::MachineState&)>& change)
    {
        devhost::machine::changeState(change);
    }
    /// The next calls of "INTERFACE::METHOD" give these results, in their order, and do nothing.
    static void plan(const std::string& call, const std::vector<long>& results)
    {
        change([&](auto& machine) {
            for (const long result : results)
                machine.plannedFailures.push_back({call, result, 1});
        });
    }
    /// The definition of the one task that there is.
    static nlohmann::json definition() { return state().tasks.at(0).definition; }

    /// Whether this process has given back all objects of the stand-ins.
    static bool isUnused()
    {
        const HMODULE library = GetModuleHandleW(L"systemobjects.dll");
        if (!library)
            return true;
        const auto canUnload = reinterpret_cast<void*>(GetProcAddress(library, "DllCanUnloadNow"));
        return reinterpret_cast<HRESULT(WINAPI*)()>(canUnload)() == S_OK;
    }

    const std::filesystem::path file =
        std::filesystem::temp_directory_path() / (uniqueName(L"tarnhd-machine") + L".json");

private:
    const vx::comutils::ComApartment m_apartment;
};

} // namespace support
