#include "logging/filecontext.h"

#include "logfolder.h"
#include "logging/logger.h"

#include <gmock/gmock.h>
#include <thread>
#include <windows.h>

#include <sddl.h>

namespace VxQrlLogging {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

std::unique_ptr<FileContext> makeContext(unsigned flags = 0, unsigned long mutexWaitMs = 10000)
{
    auto context = std::make_unique<FileContext>(
        LogFolder::name1, LogFolder::name2, flags, std::make_unique<FileSystem::Path>(), mutexWaitMs);
    EXPECT_TRUE(context->open());
    EXPECT_FALSE(context->open());
    return context;
}

std::wstring line(int number)
{
    return L"line " + std::to_wstring(number) + L"\r\n";
}

TEST(FileContext, keepsAsManyRotatedFilesAsConfigured)
{
    struct Case {
        unsigned long configured;
        int kept;
    };
    for (const Case& c : {Case{0, 0}, Case{1, 1}, Case{2, 2}, Case{500, 99}}) {
        SCOPED_TRACE(c.configured);
        LogFolder folder;
        LogFolder::configure(L"", L"LogRotateCount", c.configured);
        LogFolder::configure(L"", L"LogMaxSizeKB", 0);
        const auto context = makeContext();
        for (int i = 0; i <= 103; ++i)
            context->write(line(i));
        EXPECT_EQ(folder.files().size(), static_cast<std::size_t>(c.kept) + 1);
        // The smallest limit holds one record per file; the youngest rotated file is the first.
        for (int i = 0; i <= c.kept; ++i)
            EXPECT_THAT(folder.lines(i), ElementsAre("line " + std::to_string(103 - i)));
    }
}

TEST(FileContext, goesOverItsLimitByOneRecordAtMost)
{
    LogFolder folder;
    LogFolder::configure(L"", L"LogMaxSizeKB", 1);
    const auto context = makeContext();
    context->write(std::wstring(510, L'x') + L"\r"); // with the mark, one byte pair short of the limit is not full
    context->write(L"\r\n");
    EXPECT_THAT(folder.files(), ElementsAre("part.1.log", "part.log"));
    EXPECT_EQ(std::filesystem::file_size(folder.file(1)), 1024u);
}

TEST(FileContext, appendsToTheFileThatAnotherProcessRotated)
{
    LogFolder folder;
    LogFolder::configure(L"", L"LogMaxSizeKB", 0);
    const auto first = makeContext();
    const auto second = makeContext();
    first->write(line(1));
    second->write(line(2)); // rotates
    std::filesystem::resize_file(folder.file(), 2);
    first->write(line(3)); // finds its file full, and the new one not
    EXPECT_THAT(folder.lines(0), ElementsAre("line 3"));
    EXPECT_THAT(folder.lines(1), ElementsAre("line 1"));
    EXPECT_THAT(folder.files(), ElementsAre("part.1.log", "part.log"));
}

// Holds the log's mutex in a thread of its own while it lives.
class MutexHolder {
public:
    explicit MutexHolder(const FileContext& context)
        : m_mutex(OpenMutexW(SYNCHRONIZE, FALSE, context.mutexName(false).c_str()))
    {
        EXPECT_TRUE(m_mutex);
        m_thread = std::thread([this] {
            WaitForSingleObject(m_mutex, INFINITE);
            SetEvent(m_held);
            WaitForSingleObject(m_release, INFINITE);
            if (!abandon)
                ReleaseMutex(m_mutex);
        });
        WaitForSingleObject(m_held, INFINITE);
    }
    ~MutexHolder()
    {
        release();
        for (const HANDLE handle : {m_mutex, m_held, m_release})
            CloseHandle(handle);
    }
    MutexHolder(const MutexHolder&) = delete;
    MutexHolder& operator=(const MutexHolder&) = delete;

    void release()
    {
        SetEvent(m_release);
        if (m_thread.joinable())
            m_thread.join();
    }

    bool abandon = false;

private:
    HANDLE m_mutex;
    HANDLE m_held = CreateEventW(nullptr, TRUE, FALSE, nullptr);
    HANDLE m_release = CreateEventW(nullptr, TRUE, FALSE, nullptr);
    std::thread m_thread;
};

TEST(FileContext, losesJustTheRecordThatWaitedTooLong)
{
    LogFolder folder;
    const auto context = makeContext(0, 1);
    context->write(line(1));
    {
        const MutexHolder holder(*context);
        context->write(line(2));
        context->flush();
    }
    context->write(line(3));
    EXPECT_THAT(folder.lines(), ElementsAre("line 1", "line 3"));
}

TEST(FileContext, takesOverAnAbandonedMutex)
{
    LogFolder folder;
    const auto context = makeContext();
    MutexHolder holder(*context);
    holder.abandon = true;
    holder.release();
    context->write(line(1));
    EXPECT_THAT(folder.lines(), ElementsAre("line 1"));
}

TEST(FileContext, namesItsMutexAfterTheFileWithoutBackslashes)
{
    LogFolder folder;
    FileContext context(L"outer\\inner", L"part", 0, std::make_unique<FileSystem::Path>());
    context.open();
    context.write(line(1));
    EXPECT_TRUE(std::filesystem::exists(folder.root() / "Vantorix/Log/outer/inner/part.log"));
    std::wstring path = folder.root().wstring() + L"\\Vantorix\\Log\\outer\\inner\\part";
    std::replace(path.begin(), path.end(), L'\\', L'_');
    EXPECT_EQ(context.mutexName(false), L"Global\\VxQrlLogging_" + path);
    EXPECT_EQ(context.mutexName(true), L"Local\\VxQrlLogging_" + path);
}

TEST(FileContext, putsTheUserIntoTheFileName)
{
    LogFolder folder;
    const auto context = makeContext(LOG_FLAG_USER_SUFFIX);
    context->write(line(1));
    ASSERT_EQ(folder.files().size(), 1u);
    EXPECT_THAT(folder.files()[0], testing::AllOf(testing::StartsWith("part.S-1-"), testing::EndsWith(".log")));
}

TEST(FileContext, removesAFileThroughAnotherName)
{
    LogFolder folder;
    const auto context = makeContext();
    context->write(line(1));
    context->deleteFile(context->fileName(0));
    EXPECT_FALSE(std::filesystem::exists(folder.file()));
}

// Notes what directories are asked for and with which access.
class RecordingPath : public FileSystem::Path {
public:
    explicit RecordingPath(std::vector<std::string>& calls) : m_calls(calls) {}
    bool createDirectories(const std::wstring& path, FileSystem::SecurityAttributes* attributes) override
    {
        std::string access = "default";
        char* text = nullptr;
        if (attributes && ConvertSecurityDescriptorToStringSecurityDescriptorA(attributes->lpSecurityDescriptor,
                              SDDL_REVISION_1, DACL_SECURITY_INFORMATION, &text, nullptr)) {
            access = text;
            LocalFree(text);
        }
        m_calls.push_back(std::filesystem::path(path).filename().string() + " " + access);
        return m_calls.size() < fail;
    }

    std::size_t fail = 99;

private:
    std::vector<std::string>& m_calls;
};

TEST(FileContext, asksForTheAccessOfItsFlags)
{
    LogFolder folder;
    const std::string open = "prog D:(A;OICI;GA;;;SY)(A;OICI;GA;;;BA)(A;OICI;GRGX;;;AU)";
    const std::string strict = "prog D:(A;;GA;;;SY)(A;;GA;;;BA)";
    for (const unsigned flags : {0u, LOG_FLAG_STRICT_ACL}) {
        std::vector<std::string> calls;
        FileContext(L"prog", L"part", flags, std::make_unique<RecordingPath>(calls)).open();
        EXPECT_THAT(calls, ElementsAre("Vantorix default", flags == 0 ? open : strict));
    }
}

TEST(FileContext, dropsOutWithoutADirectory)
{
    LogFolder folder;
    for (const std::size_t fail : {1u, 2u}) {
        std::vector<std::string> calls;
        auto path = std::make_unique<RecordingPath>(calls);
        path->fail = fail;
        FileContext context(L"prog", L"part", 0, std::move(path));
        EXPECT_TRUE(context.open());
        context.write(line(1));
        context.flush();
        EXPECT_EQ(calls.size(), fail);
        EXPECT_EQ(context.fileName(0), L"");
        EXPECT_FALSE(context.prepareFile());
    }
}

TEST(FileContext, findsItsRootThroughTheEnvironmentOnly)
{
    LogFolder folder;
    const std::wstring other = folder.root().wstring() + L"-other";
    LogFolder::configure(
        L"", L"RootPath", REG_SZ, other.c_str(), static_cast<unsigned long>((other.size() + 1) * sizeof(wchar_t)));
    makeContext()->write(line(1));
    EXPECT_THAT(folder.lines(), ElementsAre("line 1"));
    EXPECT_FALSE(std::filesystem::exists(other));
}

TEST(FileContext, writesToTheUsersFolderWithoutAdministratorRights)
{
    LogFolder folder;
    HANDLE token = nullptr;
    HANDLE restricted = nullptr;
    SID_IDENTIFIER_AUTHORITY authority = {SECURITY_NT_AUTHORITY};
    SID_AND_ATTRIBUTES administrators{};
    ASSERT_TRUE(AllocateAndInitializeSid(
        &authority, 2, SECURITY_BUILTIN_DOMAIN_RID, DOMAIN_ALIAS_RID_ADMINS, 0, 0, 0, 0, 0, 0, &administrators.Sid));
    ASSERT_TRUE(OpenProcessToken(GetCurrentProcess(), TOKEN_ALL_ACCESS, &token));
    ASSERT_TRUE(CreateRestrictedToken(token, 0, 1, &administrators, 0, nullptr, 0, nullptr, &restricted));
    ASSERT_TRUE(ImpersonateLoggedOnUser(restricted));
    SetEnvironmentVariableW(L"LOCALAPPDATA", folder.root().c_str());
    SetEnvironmentVariableW(L"ProgramData", L"");
    std::vector<std::string> calls;
    FileContext context(
        L"prog", L"part", LOG_FLAG_STRICT_ACL | LOG_FLAG_USER_SUFFIX, std::make_unique<RecordingPath>(calls));
    context.open();
    RevertToSelf();
    EXPECT_THAT(calls, ElementsAre("Vantorix default", "prog default"));
    EXPECT_EQ(context.fileName(0), folder.file().wstring());
    FreeSid(administrators.Sid);
    CloseHandle(restricted);
    CloseHandle(token);
}

} // namespace
} // namespace VxQrlLogging
