#include "logreading/story.h"

#include <array>
#include <charconv>
#include <utility>

namespace logreading {

namespace {

// The plug-in's own lines. Those of an ask stand on one thread, right before "Scan start time: ".
struct AskRow {
    std::string_view text;
    Cause cause;
};
constexpr std::array<AskRow, 6> askRows = {{
    {"Deployment task was put to the queue. '", Cause::RemoteInstallation},
    {"tarnag.exe start requested", Cause::StoreChange},
    {"Tarnpatch maximum rescanning period is ", Cause::Period},
    {"Start after reboot scan if expired", Cause::StartUp},
    {"Trying to start scan after windows update if expired. ", Cause::WindowsUpdate},
    {"waitPostRebootDeployCompleted: Found that installation has been finished.", Cause::FinishedDeployment},
}};
// Found by their beginnings.
constexpr std::array<std::string_view, 9> rebootTexts = {"WUS stopper trigger key found as: 1",
    "Now time to reboot: ", "Performing system to reboot", "ExitWindowsEx for reboot successfully completed.",
    "Failed to acquire shutdown privileges", "Error initiating shutdown.",
    "Reboot command line: ", "Set reboot variable has been successfully performed at session ",
    "Failed to perform reboot for session: "};
// Leads to a signal on the scheduler's thread, which says nothing itself.
constexpr std::string_view switchedOnText = "Tarnpatch enabled status: wasEnabled = 0, enable = 1";
constexpr std::string_view signalText = "Scan start time: ";
constexpr std::string_view takenText = "tarnag.exe start event signaled.";
constexpr std::string_view bannerText = "***  LOGGING STARTED";
constexpr std::array<std::string_view, 2> closingTexts = {"***  LOGGING ENDED", "***  LOG AUTO-CLOSED"};

std::optional<std::int64_t> numberAt(std::string_view text)
{
    std::int64_t value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    return error == std::errc() ? std::optional(value) : std::nullopt;
}

/// The text behind `front`; empty when the message does not begin with it.
std::optional<std::string_view> behind(std::string_view message, std::string_view front)
{
    return message.starts_with(front) ? std::optional(message.substr(front.size())) : std::nullopt;
}

/// Whether a line of the plug-in's that means something here begins with this letter.
bool mayTell(std::string_view message)
{
    static constexpr auto letters = [] {
        std::array<bool, 256> table{};
        for (const char letter : std::string_view("DtTSFPUNWREw"))
            table[static_cast<unsigned char>(letter)] = true;
        return table;
    }();
    // Read at nearly each key.
    return !message.empty() && letters[static_cast<unsigned char>(message.front())] &&
           !message.starts_with("Setting '") && !message.starts_with("Failed to read a ");
}

std::uint32_t threadOf(const Record& record)
{
    return std::uint32_t{record.process} << 16 | record.thread;
}

/// An exit code of the agent, and what the plug-in makes of it.
Outcome outcomeOf(std::int64_t code)
{
    constexpr std::int64_t alreadyRunning = 8;
    return code == 0 ? Outcome::Finished : code == alreadyRunning ? Outcome::Busy : Outcome::Failed;
}

Cause servedBy(std::int64_t reason)
{
    return reason == 1 ? Cause::RemoteScan : reason == 2 ? Cause::RemoteInstallation : Cause::Unknown;
}

/// A remote scan request says nothing before its signal.
void nameCause(AgentStart& start)
{
    for (auto ask = start.asks.rbegin(); start.serves == Cause::RemoteScan && ask != start.asks.rend(); ++ask)
        if (ask->cause == Cause::Unknown) {
            ask->cause = Cause::RemoteScan;
            return;
        }
}

/// Takes one line about a start; false when it is none of them.
bool tell(AgentStart& start, const Record& record)
{
    const auto message = record.message;
    if (const auto reason = behind(message, "Start reason is: ")) {
        start.serves = servedBy(numberAt(*reason).value_or(0));
        nameCause(start);
    } else if (const auto process = behind(message, "Starting process ")) {
        constexpr std::string_view mark = ". Arguments: ";
        const auto place = process->rfind(mark);
        start.arguments = place == std::string_view::npos ? "" : process->substr(place + mark.size());
        start.started = record.time;
        start.exitCode.reset();
        ++start.tries;
    } else if (const auto code = behind(message, "Process finished with return code: ")) {
        start.exitCode = numberAt(*code);
        start.outcome = outcomeOf(start.exitCode.value_or(1));
    } else if (const auto scan = behind(message, "Update a scanning remote operation status: ")) {
        start.acknowledged = numberAt(*scan);
    } else if (const auto deployment = behind(message, "Update a deployment remote operation status: ")) {
        start.acknowledged = numberAt(*deployment);
    } else if (message.starts_with("Thread stop event detected while tarnag running.")) {
        start.outcome = Outcome::Abandoned;
    } else if (message.starts_with("Failed to start tarnpatch agent")) {
        start.outcome = Outcome::Failed;
    } else {
        return message.starts_with("Scheduling next try to run tarnag.exe") ||
               message.starts_with("There was no remote operation for tarnag");
    }
    return true;
}

} // namespace

std::string_view nameOf(Cause cause)
{
    switch (cause) {
    case Cause::Unknown: return "unknown";
    case Cause::RemoteScan: return "remote scan request";
    case Cause::RemoteInstallation: return "remote installation request";
    case Cause::StoreChange: return "deployment queue or a changed rule";
    case Cause::Period: return "longest time between two scans";
    case Cause::StartUp: return "start-up of the machine";
    case Cause::WindowsUpdate: return "installed Windows update";
    case Cause::FeatureOn: return "feature switched on";
    case Cause::FinishedDeployment: return "deployment finished after a reboot";
    }
    return {};
}

std::string_view nameOf(Outcome outcome)
{
    switch (outcome) {
    case Outcome::Open: return "running";
    case Outcome::Finished: return "finished";
    case Outcome::Failed: return "failed";
    case Outcome::Busy: return "another agent was busy";
    case Outcome::Abandoned: return "left alone at a stop";
    }
    return {};
}

void Story::take(const Record& record)
{
    takeRun(record);
    if (record.scope != Scope::None || !mayTell(record.message))
        return;
    const auto thread = threadOf(record);
    takeAsk(record, thread);
    takeStart(record, thread);
    takeReboot(record);
}

void Story::takeRun(const Record& record)
{
    const bool isBanner = record.message.starts_with(bannerText);
    if (isBanner || m_latestRun >= m_runs.size() || m_runs[m_latestRun].process != record.process) {
        const auto known = m_runOfProcess.find(record.process);
        if (isBanner || known == m_runOfProcess.end())
            return beginRun(record, isBanner);
        m_latestRun = known->second;
    }
    auto& run = m_runs[m_latestRun];
    run.last = record.time;
    if (record.message == "Run processing")
        run.serving = record.time;
    else if (record.message.starts_with(signalText))
        run.lastSignal = record.time;
    else if (record.message.starts_with(closingTexts[0]) || record.message.starts_with(closingTexts[1]))
        run.end = record.time;
}

void Story::beginRun(const Record& record, bool hasBanner)
{
    if (hasBanner)
        forgetLives();
    m_latestRun = m_runOfProcess[record.process] = m_runs.size();
    auto& run = m_runs.emplace_back();
    run.process = record.process;
    run.hasBanner = hasBanner;
    run.begin = run.last = record.time;
}

/// With its process the start event goes, and who waited for an agent; ids are given anew.
void Story::forgetLives()
{
    for (const auto& [thread, place] : m_startOfThread)
        if (m_starts[place].outcome == Outcome::Open)
            m_starts[place].outcome = Outcome::Abandoned;
    m_startOfThread.clear();
    m_reasonOfThread.clear();
    m_switchedOn.clear();
    m_asks.clear();
}

void Story::takeAsk(const Record& record, Thread thread)
{
    for (const auto& row : askRows) {
        if (const auto rest = behind(record.message, row.text)) {
            m_reasonOfThread[thread] = {record.time, row.cause, std::string(*rest)};
            return;
        }
    }
    if (record.message == switchedOnText)
        m_switchedOn.insert(record.process);
    if (!record.message.starts_with(signalText))
        return;
    Ask ask{record.time, Cause::Unknown, {}};
    if (auto reason = m_reasonOfThread.extract(thread))
        ask = {record.time, reason.mapped().cause, std::move(reason.mapped().detail)};
    else if (m_switchedOn.erase(record.process) > 0)
        ask.cause = Cause::FeatureOn;
    m_asks.push_back(std::move(ask));
}

void Story::takeStart(const Record& record, Thread thread)
{
    if (record.message == takenText) {
        m_startOfThread[thread] = m_starts.size();
        auto& start = m_starts.emplace_back();
        start.process = record.process;
        start.thread = record.thread;
        start.begin = start.end = record.time;
        start.asks = std::exchange(m_asks, {});
        return;
    }
    const auto known = m_startOfThread.find(thread);
    if (known == m_startOfThread.end())
        return;
    auto& start = m_starts[known->second];
    if (tell(start, record))
        start.end = record.time;
    else if (record.message == "Waiting for event..." || record.message == "Tarnpatch action thread exited")
        m_startOfThread.erase(known);
}

std::optional<Moment> Story::openSince(Cause kind) const
{
    std::optional<Moment> since;
    const auto note = [&](const std::vector<Ask>& asks) {
        for (const auto& ask : asks)
            if (!since && (ask.cause == kind || (kind == Cause::RemoteScan && ask.cause == Cause::Unknown)))
                since = ask.time;
    };
    for (const auto& start : m_starts) {
        if (start.serves == kind && start.acknowledged)
            since.reset();
        else if (start.serves == kind)
            note(start.asks);
    }
    note(m_asks);
    return since;
}

void Story::takeReboot(const Record& record)
{
    for (const auto text : rebootTexts)
        if (record.message.starts_with(text))
            m_rebootSteps.push_back({record.time, std::string(record.message)});
}

} // namespace logreading
