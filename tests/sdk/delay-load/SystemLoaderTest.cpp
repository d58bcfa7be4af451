#include "delay-load/bootstrap.h"

#include <filesystem>
#include <gtest/gtest.h>
#include <windows.h>

using namespace vx::delayload;

namespace {

constexpr std::uint32_t testComponent = 990017;

struct Probe {
    std::uint32_t(VX_CDECL* initialized)();
    std::uint32_t(VX_CDECL* askedByComponent)();
};

LoadStatus bindProbe(const char* library, Probe& probe, LoadResult& result, const char* extraFunction = nullptr)
{
    return delayLoadInitialize(
        testComponent,
        [&](LateBinder& binder) {
            const LateLibrary found = binder.load(library);
            found.call("Probe_Initialize");
            found.bind(probe.initialized, "Probe_Initialized");
            found.bind(probe.askedByComponent, "Probe_AskedByComponent");
            if (extraFunction)
                found.call(extraFunction);
        },
        result);
}

std::filesystem::path probePath()
{
    wchar_t executable[MAX_PATH];
    GetModuleFileNameW(nullptr, executable, MAX_PATH);
    return std::filesystem::path(executable).parent_path() / L"delay-load-probe.dll";
}

/// Names a library in the look-up key of the test's component.
class RegistryEntry {
public:
    RegistryEntry(const std::wstring& value, DWORD type, const std::wstring& text)
    {
        RegCreateKeyExW(HKEY_LOCAL_MACHINE, path().c_str(), 0, nullptr, 0, KEY_WRITE, nullptr, &m_key, nullptr);
        RegSetValueExW(m_key, value.c_str(), 0, type, reinterpret_cast<const BYTE*>(text.c_str()),
            static_cast<DWORD>(text.size() * sizeof(wchar_t)));
    }
    ~RegistryEntry()
    {
        RegCloseKey(m_key);
        RegDeleteKeyW(HKEY_LOCAL_MACHINE, path().c_str());
    }
    RegistryEntry(const RegistryEntry&) = delete;
    RegistryEntry& operator=(const RegistryEntry&) = delete;

private:
    static std::wstring path() { return L"Software\\Vantorix\\QRL\\Delay Loading\\" + std::to_wstring(testComponent); }
    HKEY m_key = nullptr;
};

} // namespace

TEST(SystemLoaderTest, bindsALibraryBesideTheExecutable)
{
    Probe probe{};
    LoadResult result;
    ASSERT_EQ(LoadStatus::Success, bindProbe("delay-load-probe.dll", probe, result));
    EXPECT_EQ(1u, probe.initialized());
    EXPECT_EQ(testComponent, probe.askedByComponent());
}

TEST(SystemLoaderTest, missingFunctionGivesBothNames)
{
    Probe probe{};
    LoadResult result;
    EXPECT_EQ(LoadStatus::FunctionNotFound, bindProbe("delay-load-probe.dll", probe, result, "Probe_Missing"));
    EXPECT_EQ("delay-load-probe.dll", result.libraryName());
    EXPECT_EQ("Probe_Missing", result.functionName());
}

TEST(SystemLoaderTest, missingLibraryGivesItsName)
{
    Probe probe{};
    LoadResult result;
    EXPECT_EQ(LoadStatus::ModuleNotFound, bindProbe("delay-load-nowhere.dll", probe, result));
    EXPECT_EQ("delay-load-nowhere.dll", result.libraryName());
}

TEST(SystemLoaderTest, registryNamesALibraryThatIsElsewhere)
{
    const auto copy = std::filesystem::temp_directory_path() / L"delay-load-elsewhere.dll";
    std::error_code ignored;
    std::filesystem::copy_file(probePath(), copy, std::filesystem::copy_options::overwrite_existing, ignored);
    Probe probe{};
    LoadResult result;
    {
        const RegistryEntry number(L"delay-load-elsewhere.dll", REG_DWORD, L"12");
        EXPECT_EQ(LoadStatus::ModuleNotFound, bindProbe("delay-load-elsewhere.dll", probe, result));
    }
    // Stored without the zero at its end, as some installers do.
    const RegistryEntry entry(L"delay-load-elsewhere.dll", REG_EXPAND_SZ, copy.wstring());
    ASSERT_EQ(LoadStatus::Success, bindProbe("delay-load-elsewhere.dll", probe, result));
    EXPECT_EQ(1u, probe.initialized());
}

TEST(SystemLoaderTest, systemDirectoryIsTheLastPlace)
{
    LoadResult result;
    DWORD(WINAPI * tickCount)() = nullptr;
    EXPECT_EQ(LoadStatus::Success,
        delayLoadInitialize(
            testComponent, [&](LateBinder& binder) { binder.load("kernel32.dll").bind(tickCount, "GetTickCount"); },
            result));
    EXPECT_NE(nullptr, tickCount);
}
