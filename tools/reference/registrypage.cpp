#include "reference/registrypage.h"

#include "common/patchstorage/patchstorageplace.h"
#include "common/utils/productplaces.h"
#include "common/windowsupdates/windowsupdatesplaces.h"
#include "delay-load/bootstrap.h"
#include "delay-load/librarysearch.h"
#include "logging-backend/configuration.h"
#include "logging-backend/location.h"
#include "reference/page.h"
#include "tarnhd/wusstopper/triggerkey.h"
#include "vxtl/str.h"

namespace tools {

namespace {

using namespace vx::tarn;
using namespace vx::tarn::common;

constexpr auto head = R"(# Registry values

What the plug-in, and the agent by what both share, read and write. Both are 32-bit programs: on a 64-bit Windows the
keys below `SOFTWARE` are those of the 32-bit view (`WOW6432Node`), but for the policies, which both views share. Names
have no case.

The numbers for the log may also stand in the subkeys `tarn`, for the product, and `tarn\tarnhd`, for the plug-in's log
alone. The nearest wins; 0xFFFFFFFF leaves it to the key above.

| Key | Value | Type | Written by | Read by | Meaning |
|---|---|---|---|---|---|
)";

const std::wstring machine = L"HKEY_LOCAL_MACHINE\\";
const std::wstring user = L"HKEY_CURRENT_USER\\";

constexpr auto dword = "REG_DWORD";
constexpr auto text = "REG_SZ";
constexpr auto anyText = "REG_SZ, REG_EXPAND_SZ";

constexpr auto installer = "installer";
constexpr auto administrator = "administrator";
constexpr auto agent = "agent";
constexpr auto plugin = "plug-in";
constexpr auto both = "plug-in, agent";
constexpr auto windows = "Windows";

using Rows = std::vector<RegistryValue>;

Rows ofTheLog()
{
    const std::wstring key = machine + VxQrlLogging::loggingKey;
    return {
        {key, VxQrlLogging::logLevelValue, dword, administrator, both,
            "1 fatal, 2 error, 3 warning, 4 info, 5 debug, 6 verbose; 4 without it"},
        {key, VxQrlLogging::maxSizeValue, dword, administrator, both,
            "size in KB at which a log's file is rotated; 100 without it"},
        {key, VxQrlLogging::rotateCountValue, dword, administrator, both,
            "how many rotated files stay, 99 at most; 2 without it"},
        {key, VxQrlLogging::debugOutputValue, dword, administrator, both,
            "other than 0: lines go to a debugger as well"},
    };
}

Rows ofTheLogsFolder()
{
    constexpr auto notTaken = "asked for in vain: the logger takes the answer for missing, and goes by the environment";
    const std::wstring folders = VxQrlLogging::shellFolders;
    const std::wstring logging = VxQrlLogging::loggingKey;
    return {
        {machine + logging, VxQrlLogging::rootPathValue, anyText, administrator, both, notTaken},
        {user + logging, VxQrlLogging::rootPathValue, anyText, "user", agent, notTaken},
        {machine + folders, VxQrlLogging::machineFolderValue, anyText, windows, both, notTaken},
        {user + folders, VxQrlLogging::userFolderValue, anyText, windows, agent, notTaken},
        {user + folders, VxQrlLogging::lowIntegrityFolderValue, anyText, windows, agent, notTaken},
    };
}

Rows ofLibraries()
{
    constexpr auto types = "REG_SZ, REG_EXPAND_SZ, REG_MULTI_SZ";
    const auto numbered = machine + vx::delayload::librariesKey + L'\\' + std::to_wstring(vx::delayload::ownComponent);
    return {
        {numbered, L"*", types, installer, both,
            "value by the name of one of the host's libraries: its full path, or a file name beside the program or in "
            "the system folder"},
        {machine + vx::delayload::unnumberedLibrariesKey, L"*", types, installer, "nothing of the product",
            "the same for a component without a number"},
    };
}

Rows ofTheProduct()
{
    return {
        {installationKey, installationDirectory, anyText, installer, both, "folder that holds the agent"},
        {suiteKey, suiteConfiguration, anyText, installer, agent, "first part of what downloads call themselves"},
        {suiteKey, suiteVersion, anyText, installer, agent, "second part"},
        {suiteKey, restartCommand, anyText, installer, agent, "program that asks a user to reboot"},
    };
}

Rows ofDeployments()
{
    return {
        {patchStorageKey, storedPatches, text, agent, agent,
            "JSON: the patches of a deployment that waits for a reboot"},
        {patchStorageKey, storedStatuses, text, agent, both, "JSON: what was reported of them"},
        {patchStorageKey, storedFinished, dword, agent, both, "1 at the deployment's end"},
    };
}

Rows ofTheServiceStopper()
{
    return {
        {triggerKey, L"", "key", "others", plugin,
            "while it is there, and from then on until the plug-in is loaded anew, the Windows Update service is kept "
            "stopped; the plug-in deletes it at its first run after a boot"},
        {triggerKey, triggerTimeValue, "REG_QWORD", "others", plugin,
            "seconds since 1970 when the time to a forced reboot began"},
        {machine + watchedKey, L"", "key", "others", plugin, "told of keys that come and go in it"},
    };
}

Rows ofWindowsUpdates()
{
    static constexpr const char* policies[] = {"1 switches automatic updates off", "what they do by themselves",
        "day of the week, 0 for each", "hour of the day"};
    Rows rows;
    for (std::size_t at = 0; at < windowsUpdatesPolicy.names.size(); ++at)
        rows.push_back({windowsUpdatesPolicy.key, windowsUpdatesPolicy.names[at], dword, "administrator, agent", agent,
            policies[at]});
    for (std::size_t at = 0; at < savedWindowsUpdates.names.size(); ++at)
        rows.push_back({savedWindowsUpdates.key, savedWindowsUpdates.names[at], dword, agent, agent,
            "the policy's value before a deployment paused the updates; 0 once they were resumed"});
    return rows;
}

} // namespace

std::vector<RegistryValue> registryValues()
{
    Rows all;
    for (const auto& rows : {ofTheProduct(), ofDeployments(), ofTheServiceStopper(), ofWindowsUpdates(), ofTheLog(),
             ofTheLogsFolder(), ofLibraries()})
        all.insert(all.end(), rows.begin(), rows.end());
    return all;
}

std::string registryPage()
{
    std::string page = head;
    for (const auto& row : registryValues())
        page += tableRow({quoted(vx::str::toUtf8(row.key)), row.name.empty() ? "" : quoted(vx::str::toUtf8(row.name)),
            row.type, row.writtenBy, row.readBy, row.meaning});
    return page;
}

} // namespace tools
