#include "delay-load/bootstrap.h"

#include <filesystem>
#include <windows.h>

using namespace vx::delayload;
namespace fs = std::filesystem;

constexpr std::uint32_t testComponent = 990017;

TEST(SystemLoaderTest, registryNamesALibraryThatIsElsewhere)
{
    wchar_t executable[MAX_PATH];
    GetModuleFileNameW(nullptr, executable, MAX_PATH);
    const std::wstring copy = fs::temp_directory_path() / L"delay-load-elsewhere.dll";
    fs::copy_file(
        fs::path(executable).replace_filename(L"delay-load-probe.dll"), copy, fs::copy_options::overwrite_existing);
    std::uint32_t* askedByComponent = nullptr;
    const auto bind = [&](LateBinder& binder) {
        binder.load("delay-load-elsewhere.dll").bind(askedByComponent, "askedByComponent");
    };
    const std::wstring key = L"Software\\Vantorix\\QRL\\Delay Loading\\" + std::to_wstring(testComponent);
    const auto initialize = [&](DWORD type) {
        // Without the zero at its end, as some installers write it.
        RegSetKeyValueW(HKEY_LOCAL_MACHINE, key.c_str(), L"delay-load-elsewhere.dll", type, (copy + L'x').c_str(),
            static_cast<DWORD>(copy.size() * sizeof(wchar_t)));
        LoadResult result;
        const LoadStatus status = delayLoadInitialize(testComponent, bind, result);
        RegDeleteKeyW(HKEY_LOCAL_MACHINE, key.c_str());
        return status;
    };
    EXPECT_EQ(LoadStatus::ModuleNotFound, initialize(REG_BINARY));
    ASSERT_EQ(LoadStatus::Success, initialize(REG_EXPAND_SZ));
    EXPECT_EQ(testComponent, *askedByComponent);
}
