// The library as it was built: what it shows to a host, and that it can be loaded and run.

#include "qrl-plugin/hostrecords.h"

#include <chrono>
#include <future>
#include <set>
#include <windows.h>

namespace {

/// The library that lies beside this program.
class Library {
public:
    explicit Library(DWORD flags) : m_module(LoadLibraryExW(path().c_str(), nullptr, flags)) {}
    ~Library()
    {
        if (m_module)
            FreeLibrary(m_module);
    }
    HMODULE module() const { return m_module; }
    template <typename T>
    const T* at(DWORD offset) const
    {
        return reinterpret_cast<const T*>(reinterpret_cast<const char*>(m_module) + offset);
    }
    template <typename T>
    const T* directory(unsigned index) const
    {
        const auto* headers = at<IMAGE_NT_HEADERS32>(static_cast<DWORD>(at<IMAGE_DOS_HEADER>(0)->e_lfanew));
        return at<T>(headers->OptionalHeader.DataDirectory[index].VirtualAddress);
    }

    static std::wstring path()
    {
        wchar_t name[MAX_PATH];
        GetModuleFileNameW(nullptr, name, MAX_PATH);
        const std::wstring program = name;
        return program.substr(0, program.find_last_of(L'\\') + 1) + L"tarnhd.dll";
    }

private:
    HMODULE m_module;
};

TEST(TarnhdLibrary, exportsItsOneEntryUnderTheDecoratedName)
{
    const Library library(DONT_RESOLVE_DLL_REFERENCES);
    ASSERT_NE(library.module(), nullptr);
    const auto* exports = library.directory<IMAGE_EXPORT_DIRECTORY>(IMAGE_DIRECTORY_ENTRY_EXPORT);
    ASSERT_EQ(exports->NumberOfNames, 1u);
    EXPECT_EQ(exports->NumberOfFunctions, 1u);
    EXPECT_STREQ(library.at<char>(*library.at<DWORD>(exports->AddressOfNames)), "_QRLPluginInitialize@12");
}

// Each other library would cost every load of the plug-in; rarely used ones belong to sdk/system-imports.
TEST(TarnhdLibrary, importsOnlyWhatEveryHostHasLoaded)
{
    const Library library(DONT_RESOLVE_DLL_REFERENCES);
    ASSERT_NE(library.module(), nullptr);
    std::set<std::string> imports;
    for (const auto* import = library.directory<IMAGE_IMPORT_DESCRIPTOR>(IMAGE_DIRECTORY_ENTRY_IMPORT); import->Name;
         ++import)
        imports.insert(library.at<char>(import->Name));
    EXPECT_EQ(imports, (std::set<std::string>{"ADVAPI32.dll", "KERNEL32.dll", "msvcrt.dll", "ntdll.dll"}));
}

TEST(TarnhdLibrary, carriesItsVersion)
{
    const std::wstring path = Library::path();
    std::vector<char> block(GetFileVersionInfoSizeW(path.c_str(), nullptr));
    ASSERT_FALSE(block.empty());
    ASSERT_TRUE(GetFileVersionInfoW(path.c_str(), 0, static_cast<DWORD>(block.size()), block.data()));
    void* value = nullptr;
    UINT size = 0;
    ASSERT_TRUE(VerQueryValueW(block.data(), L"\\StringFileInfo\\040904B0\\OriginalFilename", &value, &size));
    EXPECT_STREQ(static_cast<const wchar_t*>(value), L"tarnhd.dll");
}

std::vector<std::uint32_t> states;
std::promise<void> started;

void VX_STDCALL recordState(const char* name, std::uint32_t state)
{
    EXPECT_STREQ(name, "tarnhd");
    states.push_back(state);
    if (state == 1)
        started.set_value();
}

// Whether the store's library is there or not, no store answers: the handler waits for it or ends at once.
TEST(TarnhdLibrary, startsAndEndsWithoutAStoreAndUnloads)
{
    {
        const Library library(0);
        ASSERT_NE(library.module(), nullptr) << GetLastError();
        const auto initialize = reinterpret_cast<vx::qrl::PluginInitializeFunction>(
            reinterpret_cast<void*>(GetProcAddress(library.module(), "_QRLPluginInitialize@12")));
        ASSERT_NE(initialize, nullptr);
        vx::qrl::hosterAPI host{0, recordState};
        vx::qrl::pluginAPI record{};
        record.size = sizeof record;
        ASSERT_EQ(initialize("tarnhd", &host, &record), 0u);
        auto ended = std::async(std::launch::async, [&] { return record.pluginMain(&record); });
        started.get_future().wait();
        record.pluginStop(&record);
        ASSERT_EQ(ended.wait_for(std::chrono::seconds(60)), std::future_status::ready);
        EXPECT_EQ(ended.get(), 0u);
        EXPECT_EQ(record.pluginContextData, nullptr);
    }
    EXPECT_EQ(states, (std::vector<std::uint32_t>{1, 0}));
    EXPECT_EQ(GetModuleHandleW(L"tarnhd.dll"), nullptr);
}

} // namespace
