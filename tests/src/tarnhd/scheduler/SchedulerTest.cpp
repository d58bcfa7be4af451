#include "tarnhd/scheduler/scheduler.h"

#include "common/utils/folders.h"
#include "support/logcapture.h"
#include "support/machine.h"
#include "support/thrown.h"
#include "tarnhd/scheduler/removetree.h"
#include "tarnhd/scheduler/task.h"
#include "vxtl/comexception.h"
#include "vxtl/str.h"
#include "vxtl/wow64.h"

#include <taskschd.h>

namespace vx::scheduler {
namespace {

using Codes = std::vector<long>;
using Names = std::vector<std::wstring>;
using support::Machine;
using support::thrown;

constexpr auto notFound = static_cast<long>(0x80070002);
constexpr auto noPath = static_cast<long>(0x80070003);
constexpr auto exists = static_cast<long>(0x800700b7);
constexpr auto unhelped = "Failed to create Scheduled Tasks folder; path removal didn't help";

com::ComPtr<ITaskService> makeService()
{
    com::ComPtr<ITaskService> service;
    CoCreateInstance(__uuidof(TaskScheduler), nullptr, CLSCTX_INPROC_SERVER, __uuidof(ITaskService),
        reinterpret_cast<void**>(service.put()));
    return service;
}

class SchedulerTest : public testing::Test {
protected:
    ~SchedulerTest() override
    {
        inRealSystemDirectory([this] { removeTree(outer); });
    }

    static void inRealSystemDirectory(const auto& function)
    {
        const wow64::DisabledFsRedirection redirection;
        function();
    }
    static bool isThere(const std::wstring& directory)
    {
        bool found = false;
        inRealSystemDirectory([&] { found = GetFileAttributesW(directory.c_str()) != INVALID_FILE_ATTRIBUTES; });
        return found;
    }
    void add(const std::wstring& name)
    {
        const auto task = scheduler.createTask(name);
        EXPECT_TRUE(task->setActionPath(L"program") && task->setHidden(true) && task->save({}, {}));
    }

    const Machine machine;
    const support::LogCapture log;
    const FolderNames names{L"Tasks", support::uniqueName(L"company"), L"product"};
    const std::wstring outer = tarn::common::utils::getSystemFolder() + L"\\Tasks\\" + names.company;
    const std::wstring inner = outer + L"\\product";
    Scheduler scheduler{makeService(), names};
};

TEST_F(SchedulerTest, opensItsFolderOrMakesIt)
{
    const struct {
        Codes connect, getFolder, createFolder;
        const char* message;
    } rows[] = {
        {{E_FAIL}, {}, {}, "Failed to connect to scheduler. HRESULT = -2147467259"},
        {{}, {E_FAIL}, {}, "Failed to open Scheduled Tasks folder. HRESULT = -2147467259"},
        {{}, {S_FALSE}, {}, "Failed to open Scheduled Tasks folder. HRESULT = 1"},
        {{}, {noPath, E_FAIL}, {}, "Failed to get scheduler folder. HRESULT = -2147467259"},
        {{}, {noPath}, {S_FALSE}, "Failed to create Scheduled Tasks folder. HRESULT = 1"},
        {{}, {noPath}, {exists, E_FAIL}, "Failed to create Scheduled Tasks folder. HRESULT = -2147467259"},
        {{}, {noPath}, {exists, exists}, unhelped},
        {{}, {noPath, S_OK}, {}, "Caught an exception: "}, // from a success without a folder
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.message);
        Machine::plan("ITaskService::Connect", row.connect);
        Machine::plan("ITaskService::GetFolder", row.getFolder);
        Machine::plan("ITaskFolder::CreateFolder", row.createFolder);
        EXPECT_FALSE(scheduler.Initialize());
        EXPECT_TRUE(log.has(2, row.message)) << log.text();
        EXPECT_TRUE(Machine::state().plannedFailures.empty());
    }
    EXPECT_EQ(log.count("Caught an exception: "), 2u) << log.text();
    EXPECT_TRUE(Machine::state().folders.empty());
    Machine::plan("ITaskService::GetFolder", {notFound});
    EXPECT_TRUE(scheduler.Initialize());
    EXPECT_TRUE(scheduler.Initialize());
    const auto folders = Machine::state().folders;
    ASSERT_EQ(folders.size(), 2u);
    EXPECT_EQ(folders[1].path, '\\' + str::toUtf8(names.company) + "\\product");
    EXPECT_EQ(folders[1].securityDescriptor, "D:(A;;FA;;;BA)(A;;FA;;;SY)");
}

TEST_F(SchedulerTest, removesStaleFilesAndLeavesTheFolderToTheNextInitialize)
{
    HANDLE file = INVALID_HANDLE_VALUE;
    inRealSystemDirectory([&] {
        std::filesystem::create_directories(inner + L"\\folder");
        file = CreateFileW((inner + L"\\folder\\file").c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr);
    });
    EXPECT_FALSE(scheduler.Initialize());
    EXPECT_TRUE(log.has(2, unhelped)) << "the file is held" << log.text();
    EXPECT_TRUE(isThere(inner));
    CloseHandle(file);
    for (const std::wstring& directory : {inner, outer}) {
        EXPECT_TRUE(isThere(directory));
        EXPECT_FALSE(scheduler.Initialize());
        EXPECT_FALSE(isThere(directory));
        const auto name = str::toUtf8(directory);
        EXPECT_TRUE(log.has(2, "Failed to delete folder: " + name + ". Error code: Success.")) << log.text();
    }
    EXPECT_TRUE(scheduler.Initialize());
    EXPECT_EQ(log.count(unhelped), 1u) << log.text();
}

TEST_F(SchedulerTest, listsHiddenTasksTooUpToTheFirstFailure)
{
    ASSERT_TRUE(scheduler.Initialize());
    add(L"a");
    add(L"L\u00e9o");
    EXPECT_EQ(scheduler.getTaskNames(), (Names{L"a", L"L\u00e9o"}));
    const struct {
        const char* call;
        Codes results;
        const char* message;
        Names expected;
    } rows[] = {
        {"ITaskFolder::GetTasks", {E_FAIL}, "Failed to get scheduler tasks. HRESULT = -2147467259", {}},
        {"IRegisteredTaskCollection::get_Count", {E_FAIL}, "Failed to get tasks count. HRESULT = -2147467259", {}},
        {"IRegisteredTaskCollection::get_Item", {E_FAIL}, "Failed to get task item #1. HRESULT = -2147467259", {}},
        {"IRegisteredTask::get_Name", {S_OK, E_FAIL}, "Failed to get task #2 name. HRESULT = -2147467259", {L""}},
    };
    for (const auto& row : rows) {
        Machine::plan(row.call, row.results);
        EXPECT_EQ(scheduler.getTaskNames(), row.expected) << row.call;
        EXPECT_TRUE(log.has(2, row.message)) << log.text();
    }
}

TEST_F(SchedulerTest, findsGivesAndDeletesTasks)
{
    EXPECT_EQ(thrown<ComException>([&] { scheduler.hasTask(L"a"); }).result(), E_POINTER);
    ASSERT_TRUE(scheduler.Initialize());
    add(L"a");
    EXPECT_TRUE(scheduler.hasTask(L"a"));
    EXPECT_EQ(scheduler.getTask(L"a")->getName(), L"a");
    EXPECT_FALSE(scheduler.getTask(L"a")->isHidden()) << "a new definition";
    Machine::plan("ITaskService::NewTask", {E_FAIL});
    EXPECT_EQ(thrown<ComException>([&] { scheduler.getTask(L"a"); }).result(), E_FAIL);
    EXPECT_TRUE(scheduler.deleteTask(L"a"));
    EXPECT_FALSE(scheduler.hasTask(L"a"));
    EXPECT_FALSE(scheduler.deleteTask(L"a"));
    EXPECT_TRUE(log.has(2, "Failed to delete a scheduler task a. HRESULT = -2147024894")) << log.text();
    EXPECT_EQ(thrown<ComException>([&] { scheduler.getTask(L"a"); }).result(), notFound);
}

} // namespace
} // namespace vx::scheduler
