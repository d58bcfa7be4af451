#include "tarnctl/health/machinefacts.h"

#include "common/patchstorage/patchstorageplace.h"
#include "common/settings/tarnpatchsettings.h"
#include "common/windowsupdates/windowsupdatesplaces.h"
#include "logging-backend/configuration.h"
#include "logging-backend/location.h"
#include "logreading/logreader.h"
#include "logreading/story.h"
#include "tarnctl/health/gather.h"
#include "tarnctl/health/processfacts.h"
#include "tarnctl/health/taskfacts.h"
#include "tarnhd/wusstopper/rebootrequest.h"
#include "tarnhd/wusstopper/triggerkey.h"
#include "vxtl/clock.h"
#include "vxtl/parsejson.h"
#include "vxtl/registry.h"
#include "vxtl/service.h"

#include <filesystem>
#include <nlohmann/json.hpp>
#include <windows.h>

namespace tarnctl::health {

using namespace vx::tarn;
using Registry = vx::registry::Registry;

namespace {

std::string readAgentProgram(const Registry& registry)
{
    const auto key = registry.openKey(L"HKEY_LOCAL_MACHINE\\Software\\Vantorix\\tarn");
    const auto path = std::filesystem::path(key->getStringValue(L"InstallationDirectory")) / L"tarnag.exe";
    auto text = vx::str::toUtf8Lossy(path.native());
    if (!exists(path))
        throw std::runtime_error("there is no " + text);
    return text;
}

bool readPatchStorage(const Registry& registry)
{
    if (!registry.doesKeyExist(common::patchStorageKey))
        return false;
    const auto key = registry.openKey(common::patchStorageKey);
    bool any = false;
    for (const auto* name : {common::storedPatches, common::storedStatuses})
        if (key->doesValueExist(name)) {
            vx::parseJson(vx::str::toUtf8(key->getStringValue(name)));
            any = true;
        }
    return any;
}

std::optional<std::int64_t> readRebootDue(const vx::registry::RegistryKey& trigger, const RebootSettings& reboot)
{
    if (reboot.askUser() || !trigger.doesValueExist(triggerTimeValue))
        return std::nullopt;
    const auto created = trigger.getInt64Value(triggerTimeValue);
    if (created == 0)
        return std::nullopt;
    const RebootRequest request{vx::saturatingMultiply(created, vx::ticksPerSecond), reboot.forcedDelay()};
    return request.deadline() / vx::ticksPerSecond;
}

StopRequest readStopRequest(const Registry& registry, const std::shared_ptr<vx::settings::Settings>& store)
{
    StopRequest request;
    request.isThere = registry.doesKeyExist(triggerKey);
    if (!request.isThere)
        return request;
    request.serviceRuns = vx::Service(L"wuauserv").getState() == vx::ServiceState::Running;
    if (store)
        request.rebootDue = readRebootDue(*registry.openKey(triggerKey), RebootSettings(store));
    return request;
}

bool isSet(const Registry& registry, const common::WindowsUpdatesPlace& place)
{
    if (!registry.doesKeyExist(place.key))
        return false;
    const auto key = registry.openKey(place.key);
    return key->doesValueExist(place.names[0]) && key->getInt32Value(place.names[0]) != 0;
}

bool isKept(const Registry& registry, const common::WindowsUpdatesPlace& place)
{
    if (!registry.doesKeyExist(place.key))
        return false;
    const auto key = registry.openKey(place.key);
    return std::all_of(
        place.names.begin(), place.names.end(), [&](const wchar_t* name) { return key->doesValueExist(name); });
}

PausedUpdates readUpdates(const Registry& registry)
{
    return {isKept(registry, common::savedWindowsUpdates), isSet(registry, common::windowsUpdatesPolicy)};
}

/// Asks for the right to make a file there, and makes none.
bool isWritable(const std::filesystem::path& folder)
{
    const auto handle =
        CreateFileW(folder.c_str(), FILE_ADD_FILE, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
            OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr);
    if (handle == INVALID_HANDLE_VALUE)
        return false;
    CloseHandle(handle);
    return true;
}

/// As the plug-in says it; its next run begins anew.
void takeLeftRequest(std::string_view message, std::vector<std::string>& leftOpen)
{
    constexpr std::string_view head = "Recovery: the ", tail = " is left open";
    if (message == "Recovery: it is on.")
        leftOpen.clear();
    else if (const auto end = message.find(tail); message.starts_with(head) && end != std::string_view::npos)
        leftOpen.emplace_back(message.substr(head.size(), end - head.size()));
}

LogFacts readLog()
{
    constexpr unsigned long usualLevel = 4;
    const auto path = logreading::logLocation();
    LogFacts log;
    log.path = vx::str::toUtf8Lossy(path.parent_path().native());
    log.isWritable = isWritable(path.parent_path());
    log.level = static_cast<std::int32_t>(
        VxQrlLogging::Configuration(L"tarn", L"tarnhd").number(L"LogLevel").value_or(usualLevel));
    logreading::Story story;
    const auto sink = [&](std::string_view line) {
        if (const auto record = logreading::parseRecord(line)) {
            story.take(*record);
            takeLeftRequest(record->message, log.leftOpen);
        } else if (!line.empty())
            ++log.unreadableLines;
    };
    logreading::LogReader reader(path);
    reader.rewind();
    reader.read(sink);
    reader.finish(sink);
    for (const auto& start : story.starts())
        if (start.exitCode)
            log.exitCodes.push_back(*start.exitCode);
    const auto& runs = story.runs();
    for (std::size_t index = 0; index + 1 < runs.size(); ++index)
        log.endsMissing += runs[index].end ? 0 : 1;
    return log;
}

} // namespace

void gatherFromMachine(const std::shared_ptr<vx::settings::Settings>& store, Facts& facts)
{
    const auto registry = vx::registry::createWin32Registry();
    gatherProcesses(facts);
    gather(facts.agentProgram, [&] { return readAgentProgram(*registry); });
    gather(facts.patchStorage, [&] { return readPatchStorage(*registry); });
    gather(facts.stopRequest, [&] { return readStopRequest(*registry, store); });
    gather(facts.updates, [&] { return readUpdates(*registry); });
    gather(facts.log, [&] { return readLog(); });
    if (store)
        gather(facts.task, [&] { return readTask(store); });
    else
        facts.task.trouble = "what the settings ask for can't be read without the store";
}

} // namespace tarnctl::health
