#include "tarnctl/health/checks.h"
#include "tarnctl/why/conditions.h"

#include <functional>
#include <gtest/gtest.h>

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
    facts.pluginProcesses.value = 1;
    facts.patchStorage.value = false;
    facts.task.value = ScheduledTask{};
    facts.stopRequest.value = StopRequest{};
    facts.updates.value = PausedUpdates{};
    facts.log.value = LogFacts{.path = "C:\\log",
        .isWritable = true,
        .level = 4,
        .endsMissing = 0,
        .unreadableLines = 0,
        .exitCodes = {},
        .leftOpen = {}};
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
    struct {
        const char* found;
        std::function<void(Facts&)> change;
    } const cases[] = {
        {"", [](Facts&) {}},
        {"plug-in", [](Facts& f) { f.pluginProcesses.value = 2; }},
        {"profile", [](Facts& f) { f.profileTime.value = 0; }},
        {"feature", [](Facts& f) { f.enabledOn.value = false; }},
        {"scan request",
            [](Facts& f) {
                f.scan.value = Request{4, 3};
            }},
        {"",
            [](Facts& f) {
                f.scan.value = Request{4, 3};
                f.agentRunSeconds.value = {5};
            }},
        {"",
            [](Facts& f) {
                f.scan.value = Request{4, 3};
                f.recovery.value = true;
                f.log.value->leftOpen = {"remote installation 4", "remote scan 3"};
            }},
        {"installation request",
            [](Facts& f) {
                f.installation.value = Request{4, 3};
                f.recovery.value = true;
                f.log.value->leftOpen = {"remote installation 4"};
            }},
        {"plug-in, installation request",
            [](Facts& f) {
                f.installation.value = Request{1, 2};
                f.pluginProcesses.value = 0;
            }},
        {"deployment queue", [](Facts& f) { f.queued.value = 1; }},
        {"deployment", [](Facts& f) { f.deploymentInProgress.value = true; }},
        {"",
            [](Facts& f) {
                f.deploymentInProgress.value = true;
                f.completion.value = CompletionWait{true, f.now - 900, 15};
            }},
        {"reboot wait",
            [](Facts& f) {
                f.completion.value = CompletionWait{true, f.now - 901, 15};
            }},
        {"agent program",
            [](Facts& f) {
                f.agentProgram = {{}, "not there"};
            }},
        {"agent run",
            [](Facts& f) {
                f.agentRunSeconds.value = {1, 6 * hour + 1};
            }},
        {"agent exit codes",
            [](Facts& f) {
                f.log.value->exitCodes = {0, 5, 5, 5};
            }},
        {"",
            [](Facts& f) {
                f.log.value->exitCodes = {5, 5, 0, 5, 5};
            }},
        {"last scan", [](Facts& f) { f.lastScan.value = f.now - 48 * hour - 1; }},
        {"last scan", [](Facts& f) { f.lastScan.value = -1; }},
        {"scheduled task", [](Facts& f) { f.task.value->wanted = true; }},
        {"scheduled task",
            [](Facts& f) {
                f.task.value = ScheduledTask{true, true, "another hour"};
            }},
        {"update service",
            [](Facts& f) {
                f.stopRequest.value = StopRequest{true, true, {}};
            }},
        {"forced reboot",
            [](Facts& f) {
                f.stopRequest.value = StopRequest{true, false, f.now - 1};
            }},
        {"",
            [](Facts& f) {
                f.stopRequest.value = StopRequest{true, false, f.now};
            }},
        {"automatic updates",
            [](Facts& f) {
                f.updates.value = PausedUpdates{true, true};
            }},
        {"",
            [](Facts& f) {
                f.updates.value = PausedUpdates{true, true};
                f.agentRunSeconds.value = {5};
            }},
        {"proxy", [](Facts& f) { f.proxy.value->fault = "no host"; }},
        {"log folder", [](Facts& f) { f.log.value->isWritable = false; }},
        {"log lines", [](Facts& f) { f.log.value->endsMissing = 1; }},
        {"log level", [](Facts& f) { f.log.value->level = 6; }},
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
    facts.stopRequest.value = StopRequest{true, true, facts.now};
    EXPECT_EQ(conditions(facts, Subject::Reboot).back(), "one is forced now");
}

TEST(Health, tellsWhatCouldNotBeRead)
{
    Facts facts;
    facts.storeTrouble = "away";
    for (const auto& verdict : examine(facts))
        EXPECT_NE(verdict.grade, Grade::Good) << verdict.check;
    facts = healthy();
    facts.queued = {{}, "element 2: type must be object"};
    for (const auto& verdict : examine(facts))
        EXPECT_EQ(verdict.grade == Grade::Unreadable, verdict.check == "deployment queue");
}

} // namespace
} // namespace tarnctl::health
