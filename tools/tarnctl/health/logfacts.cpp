#include "tarnctl/health/logfacts.h"

#include "logging-backend/configuration.h"
#include "logreading/gaps.h"
#include "logreading/logreader.h"
#include "logreading/story.h"
#include "tarnctl/log/console.h"
#include "vxtl/str.h"

#include <algorithm>
#include <windows.h>

namespace tarnctl::health {

using logreading::Cause;
using logreading::Moment;
using logreading::Story;

namespace {

bool isAdministrator()
{
    BYTE administrators[SECURITY_MAX_SID_SIZE];
    DWORD size = sizeof(administrators);
    BOOL member = FALSE;
    return CreateWellKnownSid(WinBuiltinAdministratorsSid, nullptr, administrators, &size) &&
           CheckTokenMembership(nullptr, administrators, &member) && member;
}

std::optional<std::int64_t> secondsSince(std::optional<Moment> moment)
{
    return moment ? std::optional((log::localNow() - *moment) / 1000) : std::nullopt;
}

void addStory(LogFacts& facts, const Story& story)
{
    for (const auto& start : story.starts())
        if (start.exitCode)
            facts.exitCodes.push_back(*start.exitCode);
    facts.scanAsked = secondsSince(story.openSince(Cause::RemoteScan));
    facts.installationAsked = secondsSince(story.openSince(Cause::RemoteInstallation));
    const auto& runs = story.runs();
    if (runs.empty())
        return;
    // The front of the first may have been rotated away.
    const bool hasBanners = std::any_of(runs.begin(), runs.end(), [](const auto& run) { return run.hasBanner; });
    const auto isOpen = [&](const auto& run) { return hasBanners && !run.end; };
    facts.endsMissing = static_cast<std::size_t>(std::count_if(runs.begin(), runs.end() - 1, isOpen));
    facts.isLastOpen = isOpen(runs.back());
    facts.lastSignal = secondsSince(runs.back().lastSignal);
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

} // namespace

LogFacts readLog()
{
    LogFacts facts;
    Story story;
    logreading::Gaps gaps;
    const auto sink = [&](std::string_view line) {
        if (const auto record = logreading::parseRecord(line)) {
            story.take(*record);
            gaps.take(*record);
            takeLeftRequest(record->message, facts.leftOpen);
        } else if (!line.empty()) {
            ++facts.unreadableLines;
        }
    };
    logreading::LogReader reader(logreading::logLocation());
    if (!reader.rewind())
        return facts;
    reader.read(sink);
    reader.finish(sink);
    facts.gaps = gaps.count();
    addStory(facts, story);
    return facts;
}

LogPlace readLogPlace()
{
    constexpr unsigned long usualLevel = 4;
    const auto folder = logreading::logLocation().parent_path();
    LogPlace place;
    place.path = vx::str::toUtf8Lossy(folder.native());
    place.level = static_cast<std::int32_t>(
        VxQrlLogging::Configuration(L"tarn", L"tarnhd").number(L"LogLevel").value_or(usualLevel));
    const auto handle =
        CreateFileW(folder.c_str(), FILE_ADD_FILE, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
            OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr);
    const auto error = handle == INVALID_HANDLE_VALUE ? GetLastError() : ERROR_SUCCESS;
    if (handle != INVALID_HANDLE_VALUE)
        CloseHandle(handle);
    place.exists = error != ERROR_FILE_NOT_FOUND && error != ERROR_PATH_NOT_FOUND;
    place.access = error == ERROR_SUCCESS ? LogPlace::Access::Writable
                   : isAdministrator()    ? LogPlace::Access::Refused
                                          : LogPlace::Access::Unknown;
    return place;
}

} // namespace tarnctl::health
