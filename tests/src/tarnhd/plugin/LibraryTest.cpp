// The library as it was built: what it shows to a host.

#include "support/footprint.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <set>
#include <windows.h>

namespace {

/// The library that lies beside this program, mapped and not run.
class TarnhdLibrary : public testing::Test {
protected:
    TarnhdLibrary()
    {
        wchar_t name[MAX_PATH];
        GetModuleFileNameW(nullptr, name, MAX_PATH);
        const auto path = std::filesystem::path(name).replace_filename(L"tarnhd.dll");
        library = LoadLibraryExW(path.c_str(), nullptr, DONT_RESOLVE_DLL_REFERENCES);
    }
    ~TarnhdLibrary() override { FreeLibrary(library); }

    template <typename T>
    const T* at(DWORD offset) const
    {
        return reinterpret_cast<const T*>(reinterpret_cast<const char*>(library) + offset);
    }
    const IMAGE_NT_HEADERS32& headers() const
    {
        return *at<IMAGE_NT_HEADERS32>(static_cast<DWORD>(at<IMAGE_DOS_HEADER>(0)->e_lfanew));
    }
    template <typename T>
    const T* directory(unsigned index) const
    {
        return at<T>(headers().OptionalHeader.DataDirectory[index].VirtualAddress);
    }

    HMODULE library;
};

TEST_F(TarnhdLibrary, exportsItsOneEntryUnderTheDecoratedNameAndHasAVersion)
{
    ASSERT_NE(library, nullptr);
    const auto* exports = directory<IMAGE_EXPORT_DIRECTORY>(IMAGE_DIRECTORY_ENTRY_EXPORT);
    ASSERT_EQ(exports->NumberOfNames, 1u);
    EXPECT_EQ(exports->NumberOfFunctions, 1u);
    EXPECT_STREQ(at<char>(*at<DWORD>(exports->AddressOfNames)), "_QRLPluginInitialize@12");
    EXPECT_TRUE(headers().OptionalHeader.DllCharacteristics & IMAGE_DLLCHARACTERISTICS_NO_SEH);
    EXPECT_NE(FindResourceW(library, MAKEINTRESOURCEW(VS_VERSION_INFO), RT_VERSION), nullptr);
}

// Each other library would cost every load of the plug-in; rarely used ones belong to sdk/system-imports.
TEST_F(TarnhdLibrary, importsOnlyWhatEveryHostHasLoaded)
{
    ASSERT_NE(library, nullptr);
    std::set<std::string> imports;
    for (const auto* import = directory<IMAGE_IMPORT_DESCRIPTOR>(IMAGE_DIRECTORY_ENTRY_IMPORT); import->Name; ++import)
        imports.insert(at<char>(import->Name));
    EXPECT_EQ(imports, (std::set<std::string>{"ADVAPI32.dll", "KERNEL32.dll", "msvcrt.dll", "ntdll.dll"}));
}

/// Loads of the library that run its code, with a log of their own.
class TarnhdLoads : public testing::Test {
protected:
    TarnhdLoads() { SetEnvironmentVariableW(L"ProgramData", folder.c_str()); }
    ~TarnhdLoads() override { std::filesystem::remove_all(folder); }

    const std::filesystem::path folder =
        std::filesystem::temp_directory_path() / ("tarnhd-loads-" + std::to_string(GetCurrentProcessId()));
};

TEST_F(TarnhdLoads, workWhereverThereIsRoom)
{
    const HMODULE usual = LoadLibraryW(L"tarnhd.dll");
    FreeLibrary(usual);
    void* const taken = VirtualAlloc(usual, 1, MEM_RESERVE, PAGE_NOACCESS);
    ASSERT_EQ(taken, usual);
    const HMODULE elsewhere = LoadLibraryW(L"tarnhd.dll");
    EXPECT_NE(elsewhere, nullptr);
    EXPECT_NE(elsewhere, usual);
    FreeLibrary(elsewhere);
    VirtualFree(taken, 0, MEM_RELEASE);
}

TEST_F(TarnhdLoads, leaveNothingBehind)
{
    constexpr int loads = 20;
    // As in every host: otherwise each load would bring it in anew.
    const HMODULE resident = LoadLibraryW(L"advapi32.dll");
    const auto load = [] { EXPECT_TRUE(FreeLibrary(LoadLibraryW(L"tarnhd.dll"))); };
    load();
    const support::Footprint before = support::footprint();
    for (int i = 0; i < loads; ++i)
        load();
    const support::Footprint left = support::footprint() - before;
    EXPECT_LT(left.handles, loads / 2);
    EXPECT_EQ(left.threadSlots, 0);
    EXPECT_LT(left.heapBytes, loads * 512);
    FreeLibrary(resident);
}

} // namespace
