#include "delay-load/bootstrap.h"

#include <filesystem>
#include <windows.h>

using namespace vx::delayload;
namespace fs = std::filesystem;

constexpr std::uint32_t testComponent = 990017;

namespace {

const std::wstring key = L"Software\\Vantorix\\QRL\\Delay Loading\\" + std::to_wstring(testComponent);

/// Bootstraps a probe of that name, of which the registry says the text.
LoadStatus load(const std::string& name, DWORD type, std::wstring text)
{
    // Without the zero at its end, as some installers write it.
    const auto bytes = static_cast<DWORD>(text.size() * sizeof(wchar_t));
    text += L'x';
    RegSetKeyValueW(
        HKEY_LOCAL_MACHINE, key.c_str(), std::wstring(name.begin(), name.end()).c_str(), type, text.c_str(), bytes);
    std::uint32_t* askedByComponent = nullptr;
    LoadResult result;
    const LoadStatus status = delayLoadInitialize(
        testComponent, [&](LateBinder& binder) { binder.load(name).bind(askedByComponent, "askedByComponent"); },
        result);
    RegDeleteKeyW(HKEY_LOCAL_MACHINE, key.c_str());
    EXPECT_EQ(askedByComponent ? *askedByComponent : testComponent, testComponent);
    return status;
}

} // namespace

TEST(SystemLoaderTest, registryNamesALibraryThatIsElsewhere)
{
    wchar_t executable[MAX_PATH];
    GetModuleFileNameW(nullptr, executable, MAX_PATH);
    const fs::path copy = fs::temp_directory_path() / L"delay-load-elsewhere.dll";
    // On one drive a file that is there counts as the one to be copied, which no option overwrites.
    fs::remove(copy);
    fs::copy_file(fs::path(executable).replace_filename(L"delay-load-probe.dll"), copy);
    // Where a search would find it.
    fs::current_path(copy.parent_path());
    SetEnvironmentVariableW(L"PATH", copy.parent_path().c_str());
    EXPECT_EQ(LoadStatus::ModuleNotFound, load("delay-load-elsewhere.dll", REG_SZ, copy.filename()));
    EXPECT_EQ(LoadStatus::ModuleNotFound, load("delay-load-elsewhere.dll", REG_BINARY, copy));
    EXPECT_EQ(LoadStatus::Success, load("delay-load-elsewhere.dll", REG_EXPAND_SZ, copy.generic_wstring()));
    EXPECT_EQ(LoadStatus::Success, load("delay-load-other-name.dll", REG_SZ, L"delay-load-probe.dll"));
}
