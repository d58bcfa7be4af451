#include "delay-load/bootstrap.h"

#include <filesystem>
#include <windows.h>

using namespace vx::delayload;
namespace fs = std::filesystem;

namespace {

constexpr std::uint32_t testComponent = 990017;

/// Loads the probe under this name; `initialized` gives the function that tells how often that was done.
LoadStatus load(const char* library, std::uint32_t(VX_CDECL*& initialized)(), LoadResult& result)
{
    return delayLoadInitialize(
        testComponent,
        [&](LateBinder& binder) {
            const LateLibrary found = binder.load(library);
            found.call("Probe_Initialize");
            found.bind(initialized, "Probe_Initialized");
            std::uint32_t(VX_CDECL * askedByComponent)() = nullptr;
            found.bind(askedByComponent, "Probe_AskedByComponent");
            EXPECT_EQ(testComponent, askedByComponent());
            found.call("Probe_Missing");
        },
        result);
}

/// Names the library in the look-up key of the test's component, without the zero at its end, as some installers do.
LoadStatus loadThroughRegistry(DWORD type, const std::wstring& text)
{
    const std::wstring noZeroBehind = text + L'x';
    const std::wstring key = L"Software\\Vantorix\\QRL\\Delay Loading\\" + std::to_wstring(testComponent);
    RegSetKeyValueW(HKEY_LOCAL_MACHINE, key.c_str(), L"delay-load-elsewhere.dll", type, noZeroBehind.c_str(),
        static_cast<DWORD>(text.size() * sizeof(wchar_t)));
    std::uint32_t(VX_CDECL * initialized)() = nullptr;
    LoadResult result;
    const LoadStatus status = load("delay-load-elsewhere.dll", initialized, result);
    RegDeleteKeyW(HKEY_LOCAL_MACHINE, key.c_str());
    EXPECT_EQ(status == LoadStatus::FunctionNotFound, initialized != nullptr);
    return status;
}

} // namespace

TEST(SystemLoaderTest, bindsALibraryBesideTheExecutable)
{
    std::uint32_t(VX_CDECL * initialized)() = nullptr;
    LoadResult result;
    EXPECT_EQ(LoadStatus::FunctionNotFound, load("delay-load-probe.dll", initialized, result));
    EXPECT_EQ("delay-load-probe.dll", result.libraryName());
    EXPECT_EQ("Probe_Missing", result.functionName());
    EXPECT_EQ(1u, initialized());
}

TEST(SystemLoaderTest, registryNamesALibraryThatIsElsewhere)
{
    wchar_t executable[MAX_PATH];
    GetModuleFileNameW(nullptr, executable, MAX_PATH);
    const fs::path copy = fs::temp_directory_path() / L"delay-load-elsewhere.dll";
    std::error_code ignored;
    fs::copy_file(fs::path(executable).parent_path() / L"delay-load-probe.dll", copy,
        fs::copy_options::overwrite_existing, ignored);
    EXPECT_EQ(LoadStatus::ModuleNotFound, loadThroughRegistry(REG_BINARY, copy.wstring()));
    EXPECT_EQ(LoadStatus::FunctionNotFound, loadThroughRegistry(REG_EXPAND_SZ, copy.wstring()));
}

TEST(SystemLoaderTest, systemDirectoryIsTheLastPlace)
{
    LoadResult result;
    DWORD(WINAPI * tickCount)() = nullptr;
    const auto bind = [&](LateBinder& binder) { binder.load("kernel32.dll").bind(tickCount, "GetTickCount"); };
    EXPECT_EQ(LoadStatus::Success, delayLoadInitialize(testComponent, bind, result));
    EXPECT_NE(nullptr, tickCount);
}
