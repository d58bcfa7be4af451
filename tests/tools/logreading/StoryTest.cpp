#include "logreading/story.h"
#include "logreading/gaps.h"

#include <gtest/gtest.h>

namespace logreading {
namespace {

Story tell(std::initializer_list<std::string> lines)
{
    Story story;
    int second = 0;
    for (const auto& line : lines) {
        char header[64];
        std::snprintf(header, sizeof(header), "2026-11-22 10:00:%02d.000 [0010.%.4s]  I: ", second++, line.c_str());
        const auto text = header + line.substr(5);
        const auto record = parseRecord(text);
        EXPECT_TRUE(record) << text;
        if (record)
            story.take(*record);
    }
    return story;
}

TEST(Record, isReadFromItsHeader)
{
    const auto record = parseRecord("2026-02-28 23:59:58.007 [00ff.1a2b] .W:     { vx::f");
    ASSERT_TRUE(record);
    EXPECT_EQ(formatMoment(record->time), "2026-02-28 23:59:58.007");
    EXPECT_EQ(record->process, 0xFF);
    EXPECT_EQ(record->thread, 0x1A2B);
    EXPECT_EQ(record->level, Level::Warning);
    EXPECT_EQ(record->depth, 2);
    EXPECT_EQ(record->scope, Scope::Entered);
    EXPECT_EQ(record->message, "vx::f");
}

TEST(Record, isNoForeignLine)
{
    for (const char* line : {"", "text", "2026-02-30 10:00:00.000 [0010.0020]  I: no such day",
             "2026-02-28 24:00:00.000 [0010.0020]  I: no such hour", "2026-02-28 10:00:00.000 [0010.0020] XX: no level",
             "2026-02-28 10:00:00.000 [0010.002G]  I: no thread", "2026-02-28 10:00:00.000 [0010.0020]  I:"})
        EXPECT_FALSE(parseRecord(line)) << line;
}

TEST(Story, knowsWhoAskedForAStartAndHowItEnded)
{
    const auto story = tell({
        "0001 ***  LOGGING STARTED  *** (UTC+1:00, session: 0x0)",
        "0002 Run processing",
        "0002 Tarnpatch enabled status: wasEnabled = 0, enable = 1",
        "0003 Deployment task was put to the queue. 'ALL'.",
        "0004 Tarnpatch maximum rescanning period is 24 hours. It's 86400 seconds.",
        "0003 Scan start time: 1",
        "0005 Scan start time: 2",
        "0005 Scan start time: 3",
        "0009 tarnag.exe start event signaled.",
        "0009 Start reason is: 2",
        "0009 Starting process C:\\a. Arguments: b\\tarnag.exe. Arguments: -c complete",
        "0009 Process finished with return code: 8",
        "0009 Scheduling next try to run tarnag.exe (2/10)",
        "0009 Starting process C:\\a. Arguments: b\\tarnag.exe. Arguments: -c complete",
        "0009 Process finished with return code: 0",
        "0009 Update a deployment remote operation status: 7",
        "0009 Waiting for event...",
        "0009 tarnag.exe start event signaled.",
        "0009 Starting process C:\\tarnag.exe. Arguments: ",
        "0001 ***  LOGGING ENDED  ***",
    });
    ASSERT_EQ(story.runs().size(), 1u);
    EXPECT_TRUE(story.runs()[0].serving && story.runs()[0].end);
    ASSERT_EQ(story.starts().size(), 2u);
    const auto& start = story.starts()[0];
    ASSERT_EQ(start.asks.size(), 3u);
    EXPECT_EQ(start.asks[0].cause, Cause::RemoteInstallation);
    EXPECT_EQ(start.asks[0].detail, "ALL'.");
    EXPECT_EQ(start.asks[1].cause, Cause::FeatureOn);
    EXPECT_EQ(start.asks[2].cause, Cause::Unknown) << "what another thread said is not its reason";
    EXPECT_EQ(start.serves, Cause::RemoteInstallation);
    EXPECT_EQ(start.arguments, "-c complete");
    EXPECT_EQ(start.tries, 2u);
    EXPECT_EQ(start.outcome, Outcome::Finished);
    EXPECT_EQ(start.acknowledged, 7);
    EXPECT_EQ(start.end - start.begin, 7000);
    EXPECT_EQ(story.starts()[1].outcome, Outcome::Open);
    EXPECT_TRUE(story.starts()[1].asks.empty());
}

TEST(Story, beginsAnewWithANewLife)
{
    auto story = tell({
        "0001 ***  LOGGING STARTED  ***",
        "0003 Scan start time: 1",
        "0009 tarnag.exe start event signaled.",
        "0009 Start reason is: 1",
        "0003 Scan start time: 2",
        "0001 ***  LOGGING STARTED  ***",
        "0003 Scan start time: 3",
        "0009 tarnag.exe start event signaled.",
        "0009 Start reason is: 0",
    });
    ASSERT_EQ(story.runs().size(), 2u);
    EXPECT_EQ(story.runs()[1].lastSignal, parseMoment("2026-11-22 10:00:06"));
    ASSERT_EQ(story.starts().size(), 2u);
    EXPECT_EQ(story.starts()[0].outcome, Outcome::Abandoned);
    EXPECT_EQ(story.starts()[0].asks.at(0).cause, Cause::RemoteScan) << "told by the reason alone";
    EXPECT_EQ(story.starts()[1].asks.size(), 1u) << "the event went with its process";
    EXPECT_EQ(story.openSince(Cause::RemoteScan), parseMoment("2026-11-22 10:00:01"));
    EXPECT_FALSE(story.openSince(Cause::RemoteInstallation));
    for (const char* line : {"2026-11-22 10:01:00.000 [0010.0009]  I: Start reason is: 1",
             "2026-11-22 10:01:00.000 [0010.0009]  I: Update a scanning remote operation status: 7"})
        story.take(*parseRecord(line));
    EXPECT_FALSE(story.openSince(Cause::RemoteScan));
}

TEST(Gaps, areWhereAThreadLeavesWhatItDidNotEnter)
{
    const struct {
        std::size_t gaps;
        std::vector<const char*> messages;
    } rows[] = {
        {0, {"    } the log begins within", "  } scopes", "  { again", "  } again"}},
        {0, {"{ a", "  { b", "      text of any depth", "  } b", "} a", "{ c"}},
        {1, {"{ a", "  } b", "} a"}},
        {1, {"{ a", "    { c", "    } c"}},
        {0, {"{ a", "***  LOGGING STARTED", "{ a"}},
    };
    for (const auto& [count, messages] : rows) {
        Gaps gaps;
        for (const std::string message : messages)
            gaps.take(*parseRecord("2026-11-22 10:00:00.000 [0010.0009]  D: " + message));
        EXPECT_EQ(gaps.count(), count) << messages[1];
    }
}

} // namespace
} // namespace logreading
