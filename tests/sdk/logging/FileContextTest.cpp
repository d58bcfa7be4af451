#include "filecontext.h"

#include "logfolder.h"
#include "logging-backend/logger.h"
#include "support/filteredtoken.h"

#include <thread>
#include <windows.h>

#include <sddl.h>

using namespace VxQrlLogging;
using testing::AnyOf;
using testing::ElementsAre;
using testing::HasSubstr;

namespace {

std::string accessText(PSECURITY_DESCRIPTOR descriptor)
{
    char* text = nullptr;
    EXPECT_TRUE(ConvertSecurityDescriptorToStringSecurityDescriptorA(
        descriptor, SDDL_REVISION_1, DACL_SECURITY_INFORMATION, &text, nullptr));
    const std::string result = text;
    LocalFree(text);
    return result;
}

std::wstring line(int number)
{
    return L"line " + std::to_wstring(number) + L"\r\n";
}

bool mutexExists(const std::wstring& name)
{
    const HANDLE mutex = OpenMutexW(SYNCHRONIZE, FALSE, name.c_str());
    return mutex && CloseHandle(mutex);
}

std::unique_ptr<FileContext> makeContext(unsigned long mutexWaitMs = 10000)
{
    auto context = std::make_unique<FileContext>(
        LogFolder::name1, LogFolder::name2, 0, std::make_unique<FileSystem::Path>(), mutexWaitMs);
    EXPECT_TRUE(context->open());
    EXPECT_FALSE(context->open());
    return context;
}

struct FileContextTest : testing::Test {
    LogFolder folder;
    std::vector<std::string> calls; ///< directories asked for, and with which access
    std::size_t failingCall = 99;

    /// A context that makes no directory and notes the calls.
    FileContext recordingContext(
        unsigned flags, bool (*hasLowIntegrity)() = [] { return false; })
    {
        struct Path : FileSystem::Path {
            explicit Path(FileContextTest& owner) : test(owner) {}
            bool createDirectories(const std::wstring& path, FileSystem::SecurityAttributes* attributes) override
            {
                const std::string access = attributes ? accessText(attributes->lpSecurityDescriptor) : "default";
                test.calls.push_back(std::filesystem::path(path).filename().string() + " " + access);
                return test.calls.size() < test.failingCall;
            }
            FileContextTest& test;
        };
        return {LogFolder::name1, LogFolder::name2, flags, std::make_unique<Path>(*this), 500, hasLowIntegrity};
    }
};

} // namespace

TEST_F(FileContextTest, keepsAsManyRotatedFilesAsConfigured)
{
    LogFolder::configure(L"", L"LogMaxSizeKB", 0);
    for (const int kept : {0, 1, 2}) {
        SCOPED_TRACE(kept);
        LogFolder::configure(L"", L"LogRotateCount", static_cast<unsigned long>(kept));
        const auto context = makeContext();
        for (int i = 0; i <= 5; ++i)
            context->write(line(i));
        EXPECT_EQ(folder.files().size(), static_cast<std::size_t>(kept) + 1);
        // The smallest limit holds one record per file; the youngest rotated file is the first.
        for (int i = 0; i <= kept; ++i)
            EXPECT_THAT(folder.lines(i), ElementsAre("line " + std::to_string(5 - i)));
    }
}

TEST_F(FileContextTest, rotatesUpToNinetyNineWhateverIsConfigured)
{
    LogFolder::configure(L"", L"LogRotateCount", 500);
    LogFolder::configure(L"", L"LogMaxSizeKB", 0);
    const auto context = makeContext();
    context->write(line(1));
    std::filesystem::copy_file(folder.file(), folder.file(98));
    std::filesystem::copy_file(folder.file(), folder.file(99));
    context->write(line(2));
    EXPECT_THAT(folder.files(), ElementsAre("part.1.log", "part.99.log", "part.log"));
}

TEST_F(FileContextTest, goesOverItsLimitByOneRecordAtMost)
{
    LogFolder::configure(L"", L"LogMaxSizeKB", 1);
    const auto context = makeContext();
    context->write(std::wstring(510, L'x') + L"\r"); // with the mark, one byte pair short of the limit is not full
    context->write(L"\r\n");
    EXPECT_THAT(folder.files(), ElementsAre("part.1.log", "part.log"));
    EXPECT_EQ(std::filesystem::file_size(folder.file(1)), 1024u);
}

TEST_F(FileContextTest, appendsToTheFileThatAnotherProcessRotated)
{
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

TEST_F(FileContextTest, losesJustTheRecordThatWaitedTooLongAndTakesOverAnAbandonedMutex)
{
    const auto context = makeContext(1);
    const HANDLE mutex = OpenMutexW(SYNCHRONIZE, FALSE, context->mutexName(false).c_str());
    context->write(line(1));
    ASSERT_EQ(WaitForSingleObject(mutex, 0), WAIT_OBJECT_0);
    std::thread([&] {
        context->write(line(2));
        context->flush();
    }).join();
    ReleaseMutex(mutex);
    context->write(line(3));
    std::thread([&] { WaitForSingleObject(mutex, INFINITE); }).join();
    context->write(line(4));
    CloseHandle(mutex);
    EXPECT_THAT(folder.lines(), ElementsAre("line 1", "line 3", "line 4"));
}

TEST_F(FileContextTest, standsUnderTheRootOfTheEnvironmentOnlyAndNamesItsMutexAfterTheFile)
{
    const std::wstring other = folder.root.wstring() + L"-other";
    LogFolder::configure(L"", L"RootPath", REG_SZ, other.c_str(), (other.size() + 1) * sizeof(wchar_t));
    FileContext context(L"outer\\inner", L"part", 0, std::make_unique<FileSystem::Path>());
    context.open();
    context.write(line(1));
    std::wstring path = folder.root.wstring() + L"\\Vantorix\\Log\\outer\\inner\\part";
    EXPECT_TRUE(std::filesystem::exists(path + L".log"));
    context.deleteFile(context.fileName(0));
    EXPECT_FALSE(std::filesystem::exists(path + L".log"));
    std::ranges::replace(path, L'\\', L'_');
    EXPECT_EQ(context.mutexName(false), L"Global\\VxQrlLogging_" + path);
    EXPECT_EQ(context.mutexName(true), L"Local\\VxQrlLogging_" + path);
}

TEST_F(FileContextTest, asksForTheAccessOfItsFlags)
{
    recordingContext(0).open();
    recordingContext(LOG_FLAG_STRICT_ACL).open();
    // Systems differ in the order in which they spell rights.
    const std::string open = "prog D:(A;OICI;GA;;;SY)(A;OICI;GA;;;BA)(A;OICI;", ofUsers = ";;;AU)";
    EXPECT_THAT(calls, ElementsAre("Vantorix default", AnyOf(open + "GRGX" + ofUsers, open + "GXGR" + ofUsers),
                           "Vantorix default", "prog D:(A;;GA;;;SY)(A;;GA;;;BA)"));
}

TEST_F(FileContextTest, dropsOutWithoutADirectory)
{
    for (const std::size_t failing : {1u, 2u}) {
        calls.clear();
        failingCall = failing;
        FileContext context = recordingContext(0);
        EXPECT_TRUE(context.open());
        context.write(line(1));
        context.flush();
        EXPECT_EQ(calls.size(), failing);
        EXPECT_EQ(context.fileName(0), L"");
        EXPECT_FALSE(context.prepareFile());
    }
}

TEST_F(FileContextTest, standsWhereItsAccountMayWrite)
{
    SetEnvironmentVariableW(L"LOCALAPPDATA", folder.root.c_str());
    const std::tuple<const char*, bool, bool (*)(), bool, std::wstring> rows[] = {
        {"administrator", true, [] { return true; }, false, L"part.S-1-"},
        {"user", false, [] { return false; }, false, folder.file()},
        // A folder of its own, which this machine does not name.
        {"low integrity", false, [] { return true; }, true, L"\\Vantorix\\Log\\prog\\part.log"},
    };
    const HANDLE user = support::tokenWithoutAdministrators();
    for (const auto& [trace, isAdministrator, hasLowIntegrity, isLocal, file] : rows) {
        SCOPED_TRACE(trace);
        calls.clear();
        FileContext context = recordingContext(LOG_FLAG_STRICT_ACL | LOG_FLAG_USER_SUFFIX, hasLowIntegrity);
        EXPECT_TRUE(isAdministrator || ImpersonateLoggedOnUser(user));
        context.open();
        EXPECT_EQ(mutexExists(context.mutexName(true)), isLocal);
        EXPECT_EQ(mutexExists(context.mutexName(false)), !isLocal);
        RevertToSelf();
        EXPECT_EQ(calls.back() == "prog default", !isAdministrator);
        EXPECT_THAT(context.fileName(0), HasSubstr(file));
    }
    CloseHandle(user);
}
