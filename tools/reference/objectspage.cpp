#include "reference/objectspage.h"

#include "common/utils/objectnames.h"
#include "logging-backend/location.h"
#include "reference/page.h"
#include "tarnhd/autoinstallation/autoinstallation.h"
#include "tarnhd/scheduler/scheduler.h"
#include "vxtl/str.h"

namespace tools {

namespace {

using namespace vx::tarn::common;

constexpr auto head = R"(# Named objects

What plug-in, agent and tools find each other by in the system. The plug-in makes no named pipe and no shared memory; a
channel of `QRLIPC.dll` is named by whoever opens it. All users may use the events and the mutexes, and nobody change
their rights, but for the log's.

| Name | Kind | Reach | Made by | Use |
|---|---|---|---|---|
)";

constexpr auto everywhere = "all sessions";
constexpr auto ownSession = "the session of its maker";

std::wstring taskPath()
{
    const vx::scheduler::FolderNames folder;
    return L'\\' + folder.company + L'\\' + folder.product + L'\\' + vx::tarn::automaticInstallationTask;
}

} // namespace

std::vector<NamedObject> namedObjects()
{
    return {
        {startEventName, "", "event, auto-reset", everywhere, "plug-in",
            "set by whoever wants the agent started; the plug-in's action thread waits for it"},
        {startMutexName, "", "mutex", everywhere, "whoever sets that event", "held while it is set"},
        {deploymentQueueMutexName, "", "mutex", ownSession, "plug-in, agent",
            "held while the deployment queue is read, changed and written back"},
        {postRebootAtomName, "", "global atom", "the processes that share its maker's atom table", "plug-in",
            "there from the end of the first run after a boot to the next boot"},
        {VxQrlLogging::mutexPrefix, "PATH", "mutex", everywhere, "whoever writes the log file",
            "held while a record is written or the file is rotated; PATH is the file's, without `.log` and with `_` "
            "for each `\\`"},
        {VxQrlLogging::localMutexPrefix, "PATH", "mutex", ownSession, "processes of low integrity",
            "the same for their log"},
        {taskPath(), "", "scheduled task", "the computer", "plug-in",
            "starts the agent as the settings for automatic installation say"},
    };
}

std::string objectsPage()
{
    std::string page = head;
    for (const auto& row : namedObjects())
        page += tableRow({quoted(vx::str::toUtf8(row.name) + row.rest), row.kind, row.reach, row.madeBy, row.use});
    return page;
}

} // namespace tools
