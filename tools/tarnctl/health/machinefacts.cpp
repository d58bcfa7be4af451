#include "tarnctl/health/machinefacts.h"

#include "common/patchstorage/patchstorageplace.h"
#include "common/settings/tarnpatchsettings.h"
#include "common/windowsupdates/windowsupdatesplaces.h"
#include "tarnctl/health/gather.h"
#include "tarnctl/health/logfacts.h"
#include "tarnctl/health/processfacts.h"
#include "tarnctl/health/taskfacts.h"
#include "tarnhd/wusstopper/rebootrequest.h"
#include "tarnhd/wusstopper/triggerkey.h"
#include "vxtl/clock.h"
#include "vxtl/parsejson.h"
#include "vxtl/registry.h"
#include "vxtl/service.h"
#include "vxtl/win32exception.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <nlohmann/json.hpp>
#include <windows.h>

namespace tarnctl::health {

using namespace vx::tarn;
using Registry = vx::registry::Registry;

namespace {

std::string readAgentProgram(const Registry& registry)
{
    constexpr auto keyName = L"HKEY_LOCAL_MACHINE\\Software\\Vantorix\\tarn", valueName = L"InstallationDirectory";
    if (!registry.doesKeyExist(keyName) || !registry.openKey(keyName)->doesValueExist(valueName))
        throw WrongError("the registry's value InstallationDirectory is not there");
    const auto path = std::filesystem::path(registry.openKey(keyName)->getStringValue(valueName)) / L"tarnag.exe";
    auto text = vx::str::toUtf8Lossy(path.native());
    if (GetFileAttributesW(path.c_str()) != INVALID_FILE_ATTRIBUTES)
        return text;
    const auto code = GetLastError();
    if (code != ERROR_FILE_NOT_FOUND && code != ERROR_PATH_NOT_FOUND)
        VX_THROW_WIN32(code);
    throw WrongError("there is no " + text);
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

std::optional<std::int64_t> readRebootDue(
    const Registry& registry, const std::shared_ptr<vx::settings::Settings>& store)
{
    if (!registry.doesKeyExist(triggerKey))
        return std::nullopt;
    if (!store)
        throw std::runtime_error("whether users are asked can't be read without the store");
    const RebootSettings reboot(store);
    const auto trigger = registry.openKey(triggerKey);
    if (reboot.askUser() || !trigger->doesValueExist(triggerTimeValue))
        return std::nullopt;
    const auto created = trigger->getInt64Value(triggerTimeValue);
    if (created == 0)
        return std::nullopt;
    const RebootRequest request{vx::saturatingMultiply(created, vx::ticksPerSecond), reboot.forcedDelay()};
    return request.deadline() / vx::ticksPerSecond;
}

bool doesServiceRun(const wchar_t* name)
{
    try {
        return vx::Service(name).getState() == vx::ServiceState::Running;
    } catch (const vx::Win32Exception& exception) {
        if (exception.code() != ERROR_SERVICE_DOES_NOT_EXIST)
            throw;
        return false;
    }
}

StopRequest readStopRequest(const Registry& registry)
{
    const bool isThere = registry.doesKeyExist(triggerKey);
    return {isThere, isThere && doesServiceRun(L"wuauserv")};
}

using Numbers = std::array<std::optional<std::int32_t>, 4>;

/// What is missing or no number is empty.
Numbers readNumbers(const Registry& registry, const common::WindowsUpdatesPlace& place)
{
    Numbers numbers;
    if (!registry.doesKeyExist(place.key))
        return numbers;
    const auto key = registry.openKey(place.key);
    for (std::size_t index = 0; index < numbers.size(); ++index) {
        Fact<std::int32_t> number;
        gather(number, [&] { return key->getInt32Value(place.names[index]); });
        numbers[index] = number.value;
    }
    return numbers;
}

/// A pause leaves exactly these numbers in the policy, and what it has found beside. Zeros stay there for good, so they
/// tell nothing; an administrator who has switched updates off himself has no reason for the other three.
UpdatesFact readUpdates(const Registry& registry)
{
    constexpr Numbers paused = {1, 0, 0, 0};
    const auto policy = readNumbers(registry, common::windowsUpdatesPolicy);
    const auto saved = readNumbers(registry, common::savedWindowsUpdates);
    const bool isSaved = std::find(saved.begin(), saved.end(), std::nullopt) == saved.end();
    return {policy == paused && isSaved && saved[0] != 1, policy[0].value_or(0) != 0};
}

} // namespace

void gatherFromMachine(const std::shared_ptr<vx::settings::Settings>& store, Facts& facts)
{
    const auto registry = vx::registry::createWin32Registry();
    gatherProcesses(facts);
    gather(facts.agentProgram, [&] { return readAgentProgram(*registry); });
    gather(facts.patchStorage, [&] { return readPatchStorage(*registry); });
    gather(facts.stopRequest, [&] { return readStopRequest(*registry); });
    gather(facts.rebootDue, [&] { return readRebootDue(*registry, store); });
    gather(facts.updates, [&] { return readUpdates(*registry); });
    gather(facts.logPlace, [&] { return readLogPlace(); });
    gather(facts.log, [&] { return readLog(); });
    if (store)
        gather(facts.task, [&] { return readTask(store); });
    else
        facts.task.trouble = "what the settings ask for can't be read without the store";
}

} // namespace tarnctl::health
