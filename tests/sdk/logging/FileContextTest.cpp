#include "logging/filecontext.h"

#include "logfolder.h"
#include "logging/logger.h"

#include <thread>

#include <sddl.h>

using namespace VxQrlLogging;
using testing::ElementsAre;

namespace {

struct OpenContext : FileContext {
    explicit OpenContext(unsigned long mutexWaitMs = 10000)
        : FileContext(LogFolder::name1, LogFolder::name2, 0, std::make_unique<FileSystem::Path>(), mutexWaitMs)
    {
        EXPECT_TRUE(open());
    }
    void writeLine(int number) { write(L"line " + std::to_wstring(number) + L"\r\n"); }
};

/// Makes no directory and notes which ones are asked for, and with which access.
struct NotingPath : FileSystem::Path {
    bool createDirectories(const std::wstring& path, FileSystem::SecurityAttributes* attributes) override
    {
        char* access = nullptr;
        if (attributes)
            ConvertSecurityDescriptorToStringSecurityDescriptorA(
                attributes->lpSecurityDescriptor, SDDL_REVISION_1, DACL_SECURITY_INFORMATION, &access, nullptr);
        calls.push_back(std::filesystem::path(path).filename().string() + " " + (access ? access : "default"));
        LocalFree(access);
        return true;
    }
    static inline std::vector<std::string> calls;
};

struct FileContextTest : testing::Test {
    LogFolder folder;
};

} // namespace

TEST_F(FileContextTest, keepsAsManyRotatedFilesAsConfigured)
{
    LogFolder::configure(L"LogMaxSizeKB", 0);
    for (const int kept : {0, 1, 2}) {
        LogFolder::configure(L"LogRotateCount", static_cast<unsigned long>(kept));
        OpenContext context;
        for (int i = 0; i <= 5; ++i)
            context.writeLine(i);
        EXPECT_EQ(folder.files().size(), static_cast<std::size_t>(kept) + 1);
        // The smallest limit holds one record per file; the youngest rotated file is the first.
        for (int i = 0; i <= kept; ++i)
            EXPECT_THAT(folder.lines(i), ElementsAre("line " + std::to_string(5 - i))) << kept;
    }
}

TEST_F(FileContextTest, goesOverItsLimitByOneRecordAtMost)
{
    LogFolder::configure(L"LogMaxSizeKB", 1);
    OpenContext context;
    context.write(std::wstring(510, L'x') + L"\r"); // with the mark, one byte pair short of the limit is not full
    context.write(L"\r\n");
    EXPECT_THAT(folder.files(), ElementsAre("part.1.log", "part.log"));
    EXPECT_EQ(std::filesystem::file_size(folder.file(1)), 1024u);
}

TEST_F(FileContextTest, appendsToTheFileThatAnotherProcessRotated)
{
    LogFolder::configure(L"LogMaxSizeKB", 0);
    OpenContext first, second;
    first.writeLine(1);
    second.writeLine(2); // rotates
    std::filesystem::resize_file(folder.file(), 2);
    first.writeLine(3); // finds its file full, and the new one not
    EXPECT_THAT(folder.lines(0), ElementsAre("line 3"));
    EXPECT_THAT(folder.lines(1), ElementsAre("line 1"));
    EXPECT_THAT(folder.files(), ElementsAre("part.1.log", "part.log"));
}

TEST_F(FileContextTest, losesJustTheRecordThatWaitedTooLongAndTakesOverAnAbandonedMutex)
{
    OpenContext context(1);
    const HANDLE mutex = OpenMutexW(SYNCHRONIZE, FALSE, context.mutexName(false).c_str());
    context.writeLine(1);
    ASSERT_EQ(WaitForSingleObject(mutex, 0), WAIT_OBJECT_0);
    std::thread([&] {
        context.writeLine(2);
        context.flush();
    }).join();
    ReleaseMutex(mutex);
    context.writeLine(3);
    std::thread([&] { WaitForSingleObject(mutex, INFINITE); }).join();
    context.writeLine(4);
    CloseHandle(mutex);
    EXPECT_THAT(folder.lines(), ElementsAre("line 1", "line 3", "line 4"));
}

TEST_F(FileContextTest, findsItsRootThroughTheEnvironmentOnlyAndNamesItsMutexAfterTheFile)
{
    LogFolder::configure(L"", L"RootPath", REG_SZ, L"C:\\no", 12);
    FileContext context(L"outer\\inner", L"part", 0, std::make_unique<FileSystem::Path>());
    context.open();
    context.write(L"\r\n");
    EXPECT_TRUE(std::filesystem::exists(folder.root / "Vantorix/Log/outer/inner/part.log"));
    std::wstring path = folder.root.wstring() + L"\\Vantorix\\Log\\outer\\inner\\part";
    std::ranges::replace(path, L'\\', L'_');
    EXPECT_EQ(context.mutexName(false), L"Global\\VxQrlLogging_" + path);
    EXPECT_EQ(context.mutexName(true), L"Local\\VxQrlLogging_" + path);
}

TEST_F(FileContextTest, asksForTheAccessOfItsFlags)
{
    for (const unsigned flags : {0u, LOG_FLAG_STRICT_ACL})
        FileContext(LogFolder::name1, LogFolder::name2, flags, std::make_unique<NotingPath>()).open();
    // Systems differ in the order in which they spell rights.
    const auto open = testing::AnyOf("prog D:(A;OICI;GA;;;SY)(A;OICI;GA;;;BA)(A;OICI;GXGR;;;AU)",
        "prog D:(A;OICI;GA;;;SY)(A;OICI;GA;;;BA)(A;OICI;GRGX;;;AU)");
    EXPECT_THAT(NotingPath::calls,
        ElementsAre("Vantorix default", open, "Vantorix default", "prog D:(A;;GA;;;SY)(A;;GA;;;BA)"));
}
