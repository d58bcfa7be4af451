#include "tarnctl/health/checks.h"
#include "tarnctl/health/gather.h"
#include "tarnctl/why/conditions.h"
#include "vxtl/win32exception.h"

#include <functional>
#include <gmock/gmock.h>

namespace tarnctl::health {
namespace {

constexpr std::int64_t hour = 3600;

/// A machine on which all is well.
Facts healthy()
{
    Facts facts;
    facts.now = 1'000'000'000;
    facts.profileTime.value = facts.now - hour;
    facts.enabledWanted.value = facts.enabledOn.value = true;
    facts.scan.value = facts.installation.value = Request{3, 3};
    facts.recovery.value = false;
    facts.queued.value = facts.missingUpdates.value = facts.installationLog.value = facts.publishedPatches.value = 0;
    facts.completion.value = CompletionWait{};
    facts.deploymentInProgress.value = false;
    facts.lastScan.value = facts.now - 47 * hour;
    facts.scanPeriodHours.value = 24;
    facts.proxy.value.emplace();
    facts.agentProgram.value = "C:\\tarnag.exe";
    facts.agentRunSeconds.value.emplace();
    facts.pluginProcesses.value = {0x1234};
    facts.patchStorage.value = false;
    facts.task.value = ScheduledTask{};
    facts.stopRequest.value = StopRequest{};
    facts.rebootDue.value.emplace();
    facts.updates.value.emplace();
    facts.logPlace.value = LogPlace{"C:\\log", true, LogPlace::Access::Writable, 4};
    facts.log.value.emplace();
    return facts;
}

std::string findings(const Facts& facts)
{
    std::string names;
    for (const auto& verdict : examine(facts)) {
        EXPECT_EQ(verdict.grade == Grade::Good, verdict.advice.empty()) << verdict.check;
        EXPECT_FALSE(verdict.evidence.empty()) << verdict.check;
        if (verdict.grade == Grade::Finding)
            (names += names.empty() ? "" : ", ") += verdict.check;
    }
    return names;
}

TEST(Health, findsWhatIsWrongAndNothingElse)
{
    static const std::vector<std::string> leftOpen{"remote installation 4", "remote scan 3"};
    static const std::vector<std::int64_t> failuresAroundSuccess{5, 5, 0, 5, 5};
    static const Fact<std::string> notThere{{}, "not there", true};
    static const ScheduledTask differentTask{true, true, "another hour"};
    static const auto waitSince = [](std::int64_t since) { return CompletionWait{true, since, 15}; };
    struct {
        const char* found;
        std::function<void(Facts&)> change;
    } const cases[] = {
        {"", [](Facts&) {}},
        {"plug-in", [](Facts& f) { f.pluginProcesses.value->push_back(2); }},
        {"profile", [](Facts& f) { f.profileTime.value = 0; }},
        {"feature", [](Facts& f) { f.enabledOn.value = false; }},
        {"scan request", [](Facts& f) { f.scan.value->start = 4; }},
        {"", [](Facts& f) { f.scan.value->start = 4, f.agentRunSeconds.value->push_back(5); }},
        {"", [](Facts& f) { f.scan.value->start = 4, f.recovery.value = true, f.log.value->leftOpen = leftOpen; }},
        {"installation request",
            [](Facts& f) {
                f.installation.value->start = 4, f.recovery.value = true, f.log.value->leftOpen = leftOpen;
            }},
        {"plug-in, installation request",
            [](Facts& f) { f.installation.value->start = 2, f.pluginProcesses.value->clear(); }},
        {"", [](Facts& f) { f.installation.value->start = 4, f.log.value->installationAsked = 60; }},
        {"installation request",
            [](Facts& f) { f.installation.value->start = 4, f.log.value->installationAsked = 61; }},
        {"feature, scan request",
            [](Facts& f) { f.scan.value->start = 4, f.log.value->scanAsked = 1, f.enabledOn.value = false; }},
        {"deployment queue", [](Facts& f) { f.queued.value = 1; }},
        {"", [](Facts& f) { f.queued.value = 1, f.completion.value = waitSince(f.now); }},
        {"deployment", [](Facts& f) { f.deploymentInProgress.value = true; }},
        {"", [](Facts& f) { f.deploymentInProgress.value = true, f.completion.value = waitSince(f.now - 900); }},
        {"reboot wait", [](Facts& f) { f.completion.value = waitSince(f.now - 901); }},
        {"agent program", [](Facts& f) { f.agentProgram = notThere; }},
        {"agent run", [](Facts& f) { f.agentRunSeconds.value->assign(1, 6 * hour + 1); }},
        {"agent exit codes", [](Facts& f) { f.log.value->exitCodes.assign(3, 5); }},
        {"", [](Facts& f) { f.log.value->exitCodes = failuresAroundSuccess; }},
        {"last scan", [](Facts& f) { f.lastScan.value = f.now - 48 * hour - 1; }},
        {"last scan", [](Facts& f) { f.lastScan.value = -1; }},
        {"last scan", [](Facts& f) { f.lastScan.value = f.now + 1; }},
        {"scheduled task", [](Facts& f) { f.task.value->wanted = true; }},
        {"scheduled task", [](Facts& f) { f.task.value = differentTask; }},
        {"update service", [](Facts& f) { f.stopRequest.value->isThere = f.stopRequest.value->serviceRuns = true; }},
        {"forced reboot", [](Facts& f) { f.rebootDue.value = f.now - 61; }},
        {"", [](Facts& f) { f.rebootDue.value = f.now - 60; }},
        {"automatic updates", [](Facts& f) { f.updates.value->isPaused = true; }},
        {"", [](Facts& f) { f.updates.value->isPaused = true, f.agentRunSeconds.value->push_back(5); }},
        {"proxy", [](Facts& f) { f.proxy.value->fault = "no host"; }},
        {"log folder", [](Facts& f) { f.logPlace.value->access = LogPlace::Access::Refused; }},
        {"log folder", [](Facts& f) { f.logPlace.value->exists = false; }},
        {"log lines", [](Facts& f) { f.log.value->endsMissing = 1; }},
        {"log lines", [](Facts& f) { f.log.value->gaps = 1; }},
        {"log lines", [](Facts& f) { f.pluginProcesses.value->assign(1, 0x10000); }},
        {"", [](Facts& f) { f.log.value->isLastOpen = true; }},
        {"plug-in, log lines", [](Facts& f) { f.log.value->isLastOpen = true, f.pluginProcesses.value->clear(); }},
        {"log level", [](Facts& f) { f.logPlace.value->level = 6; }},
        {"log level", [](Facts& f) { f.logPlace.value->level = -1; }},
    };
    for (const auto& [found, change] : cases) {
        auto facts = healthy();
        change(facts);
        EXPECT_EQ(findings(facts), found);
    }
}

TEST(Why, saysWhatKeepsAStartAndWhenTheNextIsDue)
{
    using why::conditions;
    using why::Subject;
    auto facts = healthy();
    EXPECT_EQ(conditions(facts, Subject::Reboot), std::vector<std::string>{"nobody asks for one"});
    facts.lastScan.value = facts.now - 24 * hour + 61;
    const std::string due =
        "without a request the next scan is due in 2 minutes, at the plug-in's next look at what is due";
    EXPECT_EQ(conditions(facts, Subject::Scan), std::vector<std::string>{due});
    facts.enabledOn.value = false;
    facts.scan.value = Request{4, 3};
    EXPECT_EQ(
        conditions(facts, Subject::Scan), (std::vector<std::string>{"the feature is off", "request 4 is open", due}));
    facts.log.value->lastSignal = 23 * hour;
    EXPECT_THAT(conditions(facts, Subject::Scan).back(), testing::HasSubstr("in 60 minutes")) << "the log knows better";
    facts.stopRequest.value = StopRequest{true, true};
    facts.rebootDue.value = facts.now;
    EXPECT_EQ(conditions(facts, Subject::Reboot).back(), "one is forced now");
    facts.queued = {{}, "element 1: no text", true};
    EXPECT_THAT(conditions(facts, Subject::Install),
        testing::Contains("the deployment queue can't be read: element 1: no text"));
}

TEST(Health, tellsWhatCouldNotBeReadFromWhatIsWrong)
{
    Facts facts;
    facts.storeTrouble = "away";
    for (const auto& verdict : examine(facts))
        EXPECT_EQ(verdict.grade, Grade::Unreadable) << verdict.check;
    facts = healthy();
    facts.queued = {{}, "element 2: type must be object", true};
    facts.pluginProcesses = {{}, "2 processes may not be looked into", false};
    facts.agentRunSeconds.value = {5, std::nullopt};
    facts.logPlace.value->access = LogPlace::Access::Unknown;
    std::string unreadable;
    for (const auto& verdict : examine(facts))
        unreadable += verdict.grade == Grade::Unreadable ? std::string(verdict.check) + ", " : "";
    EXPECT_EQ(unreadable, "plug-in, agent run, log folder, ");
    EXPECT_EQ(findings(facts), "deployment queue");
}

TEST(Health, knowsAWrongValueByTheException)
{
    const struct {
        std::function<int()> read;
        bool isWrong;
    } rows[] = {
        {[]() -> int { throw WrongError("missing"); }, true},
        {[]() -> int { return nlohmann::json::parse("{"); }, true},
        {[]() -> int { VX_THROW(vx::settings::InvalidTypeException, L"key"); }, true},
        {[]() -> int { VX_THROW(vx::BaseException, L"another type"); }, true},
        {[]() -> int { throw std::invalid_argument("no enumerator"); }, true},
        {[]() -> int { VX_THROW(vx::settings::ServerUnreachableException, L"key"); }, false},
        {[]() -> int { VX_THROW_WIN32(5); }, false},
    };
    for (const auto& [read, isWrong] : rows) {
        Fact<int> fact;
        gather(fact, read);
        EXPECT_EQ(fact.isWrong, isWrong) << fact.trouble;
    }
}

} // namespace
} // namespace tarnctl::health
