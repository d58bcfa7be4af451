#include "tarnhd/scheduler/scheduler.h"

#include "common/utils/folders.h"
#include "fakeobjects.h"
#include "support/childtest.h"
#include "support/logcapture.h"
#include "support/thrown.h"
#include "tarnhd/scheduler/removetree.h"
#include "tarnhd/scheduler/task.h"
#include "vxtl-com/weeklytrigger.h"
#include "vxtl/comexception.h"
#include "vxtl/wow64.h"

namespace vx::scheduler {
namespace {

using Calls = std::vector<std::string>;
using Codes = std::vector<long>;
using Names = std::vector<std::wstring>;

constexpr auto notFound = static_cast<long>(0x80070002);
constexpr auto noPath = static_cast<long>(0x80070003);
constexpr auto exists = static_cast<long>(0x800700b7);
constexpr auto unhelped = "Failed to create Scheduled Tasks folder; path removal didn't help";

/// Its directories are real ones, in the real system directory.
class SchedulerTest : public testing::Test {
protected:
    ~SchedulerTest() override
    {
        inRealSystemDirectory([this] { removeTree(root); });
    }

    static void inRealSystemDirectory(const auto& function)
    {
        const wow64::DisabledFsRedirection redirection;
        function();
    }
    bool initialize()
    {
        script.counts.clear();
        script.calls.clear();
        return Scheduler(fake::object<ITaskService>(), names).Initialize();
    }
    bool isThere(const std::wstring& directory) const
    {
        bool found = false;
        inRealSystemDirectory([&] { found = GetFileAttributesW(directory.c_str()) != INVALID_FILE_ATTRIBUTES; });
        return found;
    }
    /// With a file and a folder in it.
    void makeInner()
    {
        inRealSystemDirectory([this] {
            for (const std::wstring& path : {root, outer, inner, inner + L"\\folder"})
                CreateDirectoryW(path.c_str(), nullptr);
            const auto file = inner + L"\\folder\\file";
            CloseHandle(CreateFileW(file.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr));
        });
    }

    support::LogCapture log;
    fake::Script script;
    const FolderNames names{support::uniqueName(L"tarnhd-scheduler-test"), L"company", L"product"};
    const std::wstring root = tarn::common::utils::getSystemFolder() + L'\\' + names.tasks;
    const std::wstring outer = root + L"\\company";
    const std::wstring inner = outer + L"\\product";
};

TEST_F(SchedulerTest, opensItsFolderOrMakesIt)
{
    const std::string open = "ITaskService::GetFolder \\company\\product";
    const std::string create = "ITaskFolder::CreateFolder \\company\\product D:(A;;FA;;;BA)(A;;FA;;;SY)";
    const struct {
        Codes connect, getFolder, createFolder;
        bool expected;
        std::string message; ///< of an error
        Calls calls;         ///< behind the first
    } rows[] = {
        {{}, {}, {}, true, "", {open}},
        {{E_FAIL}, {}, {}, false, "Failed to connect to scheduler. HRESULT = -2147467259", {}},
        {{}, {E_FAIL}, {}, false, "Failed to open Scheduled Tasks folder. HRESULT = -2147467259", {open}},
        {{}, {S_FALSE}, {}, false, "Failed to open Scheduled Tasks folder. HRESULT = 1", {open}},
        {{}, {notFound}, {}, true, "", {open, "ITaskService::GetFolder \\", create}},
        {{}, {noPath}, {}, true, "", {open, "ITaskService::GetFolder \\", create}},
        {{}, {noPath, E_FAIL}, {}, false, "Failed to get scheduler folder. HRESULT = -2147467259",
            {open, "ITaskService::GetFolder \\"}},
        {{}, {noPath}, {S_FALSE}, false, "Failed to create Scheduled Tasks folder. HRESULT = 1",
            {open, "ITaskService::GetFolder \\", create}},
        {{}, {noPath}, {exists, E_FAIL}, false, "Failed to create Scheduled Tasks folder. HRESULT = -2147467259",
            {open, "ITaskService::GetFolder \\", create, create}},
        {{}, {noPath}, {exists, exists}, false, unhelped, {open, "ITaskService::GetFolder \\", create, create}},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.message);
        script.results = {{"ITaskService::Connect", row.connect}, {"ITaskService::GetFolder", row.getFolder},
            {"ITaskFolder::CreateFolder", row.createFolder}};
        EXPECT_EQ(initialize(), row.expected);
        EXPECT_TRUE(row.message.empty() || log.has(2, row.message)) << log.text();
        EXPECT_EQ(script.calls.front(), "ITaskService::Connect empty empty empty empty");
        EXPECT_EQ(Calls(script.calls.begin() + 1, script.calls.end()), row.calls);
    }
}

TEST_F(SchedulerTest, removesStaleFilesAndLeavesTheFolderToTheNextInitialize)
{
    script.results = {{"ITaskService::GetFolder", {noPath}}, {"ITaskFolder::CreateFolder", {exists, exists}}};
    for (const std::wstring& directory : {inner, outer}) {
        makeInner();
        inRealSystemDirectory([&] { directory == outer ? void(removeTree(inner)) : void(); });
        EXPECT_FALSE(initialize());
        EXPECT_FALSE(isThere(directory));
        EXPECT_TRUE(isThere(directory == inner ? outer : root));
        const std::string name(directory.begin(), directory.end());
        EXPECT_TRUE(log.has(2, "Failed to delete folder: " + name + ". Error code: Success.")) << log.text();
    }
    EXPECT_EQ(log.count(unhelped), 0u) << log.text();
}

TEST_F(SchedulerTest, goesOnWhereRemovalOrTheStepFails)
{
    makeInner();
    HANDLE file = INVALID_HANDLE_VALUE;
    inRealSystemDirectory([&] {
        file = CreateFileW((inner + L"\\folder\\file").c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr);
    });
    script.results = {{"ITaskService::GetFolder", {noPath}}, {"ITaskFolder::CreateFolder", {exists, exists}}};
    EXPECT_FALSE(initialize());
    EXPECT_TRUE(log.has(2, unhelped)) << log.text();
    CloseHandle(file);
    script.throwing = "ITaskFolder::CreateFolder";
    script.results = {{"ITaskService::GetFolder", {noPath}}};
    EXPECT_TRUE(initialize());
    EXPECT_TRUE(log.has(2, "Caught an exception: thrown")) << log.text();
    EXPECT_TRUE(isThere(inner));
}

TEST_F(SchedulerTest, listsHiddenTasksTooUpToTheFirstFailure)
{
    script.numbers = {{"IRegisteredTaskCollection::get_Count", {2}}};
    script.texts = {{"IRegisteredTask::get_Name", {L"a", L"b"}}};
    Scheduler scheduler(fake::object<ITaskService>(), names);
    ASSERT_TRUE(scheduler.Initialize());
    const struct {
        const char* call;
        Codes results;
        const char* message;
        Names expected;
    } rows[] = {
        {"", {}, "", {L"a", L"b"}},
        {"ITaskFolder::GetTasks", {E_FAIL}, "Failed to get scheduler tasks. HRESULT = -2147467259", {}},
        {"IRegisteredTaskCollection::get_Count", {E_FAIL}, "Failed to get tasks count. HRESULT = -2147467259", {}},
        {"IRegisteredTaskCollection::get_Item", {S_OK, E_FAIL}, "Failed to get task item #2. HRESULT = -2147467259",
            {L"a"}},
        {"IRegisteredTask::get_Name", {S_OK, E_FAIL}, "Failed to get task #2 name. HRESULT = -2147467259", {L"a"}},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.call);
        script.counts.clear();
        script.results = {{row.call, row.results}};
        EXPECT_EQ(scheduler.getTaskNames(), row.expected);
        EXPECT_TRUE(row.results.empty() || log.has(2, row.message)) << log.text();
    }
    EXPECT_EQ(std::count(script.calls.begin(), script.calls.end(), "ITaskFolder::GetTasks 1"), 5);
}

TEST_F(SchedulerTest, findsGivesAndDeletesTasks)
{
    Scheduler scheduler(fake::object<ITaskService>(), names);
    EXPECT_EQ(support::thrown<ComException>([&] { scheduler.hasTask(L"a"); }).result(), E_POINTER);
    ASSERT_TRUE(scheduler.Initialize());
    script.calls.clear();
    EXPECT_TRUE(scheduler.hasTask(L"a"));
    EXPECT_EQ(scheduler.getTask(L"a")->getName(), L"a");
    EXPECT_EQ(scheduler.createTask(L"b")->getName(), L"b");
    EXPECT_TRUE(scheduler.deleteTask(L"a"));
    EXPECT_EQ(script.calls, (Calls{"ITaskFolder::GetTask a", "ITaskFolder::GetTask a", "ITaskService::NewTask 0",
                                "ITaskService::NewTask 0", "ITaskFolder::DeleteTask a 0"}));
    script.counts.clear();
    script.results = {{"ITaskFolder::GetTask", {notFound, notFound}}, {"ITaskService::NewTask", {E_FAIL, E_FAIL}},
        {"ITaskFolder::DeleteTask", {E_ACCESSDENIED}}};
    EXPECT_FALSE(scheduler.hasTask(L"a"));
    const auto missing = support::thrown<ComException>([&] { scheduler.getTask(L"a"); });
    EXPECT_EQ(missing.result(), notFound);
    EXPECT_THAT(missing.wideWhat(),
        testing::StartsWith(L"Type: vx::ComException, Reason: , Function: vx::scheduler::Scheduler::getTask, File: "));
    EXPECT_EQ(support::thrown<ComException>([&] { scheduler.getTask(L"a"); }).result(), E_FAIL);
    EXPECT_THAT(support::thrown<ComException>([&] { scheduler.createTask(L"a"); }).wideWhat(),
        testing::HasSubstr(L"Function: vx::scheduler::Scheduler::createTask, File: "));
    EXPECT_FALSE(scheduler.deleteTask(L"a"));
    EXPECT_TRUE(log.has(2, "Failed to delete a scheduler task a. HRESULT = -2147024891")) << log.text();
}

} // namespace
} // namespace vx::scheduler
