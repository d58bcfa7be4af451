#include "qrl-probe/hostlife.h"

#include <functional>
#include <gmock/gmock.h>

namespace tools::qrlprobe {

namespace {

using testing::HasSubstr;

const Introduction good{.name = "sample",
    .isRecordAligned = true,
    .size = 36,
    .isRecordWritable = true,
    .isHosterAligned = true,
    .isHosterReadable = true,
    .isReportCode = true};

/// A life that has come to its main, on thread 1.
struct RunningLife : HostLife {
    RunningLife()
    {
        record.size = 36;
        come(Call::Initialize, 2);
        EXPECT_TRUE(introduce(good));
        recordFilled(record);
        leave();
        come(Call::Main, 1);
        EXPECT_TRUE(beginMain(Apartment::None));
        reported(8);
    }
    void come(Call call, unsigned long thread, std::uintptr_t stack = 0x1000)
    {
        arrive({call, thread, stack, &record, readable});
    }
    void end()
    {
        come(Call::Stop, 2);
        leave();
        mainEnded(readable);
        leave();
    }

    vx::qrl::pluginAPI record{};
    std::size_t readable = sizeof record;
};

} // namespace

TEST(HostLife, failsWhatHostsDoAtTheWrongMoment)
{
    const struct {
        const char* trace;
        std::function<void(RunningLife&)> happens;
        const char* failed;
        const char* seen;
    } rows[] = {
        {"an unload under an event", [](auto& life) { life.end(), life.come(Call::PowerEvent, 3), life.unloading(); },
            "calls-after-end, unload", "seen: calls inside: 1"},
        {"an end of the process right behind the stop",
            [](auto& life) { life.come(Call::Stop, 2), life.processEnding(); }, "stop",
            "a stop, but main had no time to return"},
        {"an export behind the end", [](auto& life) { life.end(), life.come(Call::Initialize, 2), life.introduce({}); },
            "initialize-once", "another one"},
        {"a size that grows",
            [](auto& life) {
                life.record.size = 40, life.come(Call::SessionEvent, 2), life.record.size = 36, life.end();
            },
            "members", "another value at offset 0: session event on thread 0x2"},
        {"a record that is cleared behind the stop",
            [](auto& life) { life.come(Call::Stop, 2), life.record = {}, life.mainEnded(life.readable); }, "members",
            "another value at offset 0: main's end"},
        {"a record whose memory goes", [](auto& life) { life.readable = 35, life.come(Call::PowerEvent, 2); },
            "members", "memory that can't be read any more: power event on thread 0x2"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.trace);
        RunningLife life;
        row.happens(life);
        EXPECT_EQ(life.findings().verdict(), std::string("verdict: FAILED: ") + row.failed);
        std::string changed;
        for (const auto check : life.findings().takeChanges())
            changed += life.findings().line(check) + "\n";
        EXPECT_THAT(changed, HasSubstr(row.seen));
        EXPECT_TRUE(life.findings().takeChanges().empty());
    }
}

TEST(HostLife, refusesOnlyARecordThatCantHoldTheCallbacks)
{
    const struct {
        const char* trace;
        void (*spoil)(Introduction&);
        bool isUsable;
        const char* failed;
    } rows[] = {
        {"no room", [](auto& given) { given.size = 16; }, false, "size"},
        {"no record", [](auto& given) { given.size.reset(), given.isRecordWritable = false; }, false, "record"},
        {"an odd size", [](auto& given) { given.size = 37; }, true, "size"},
        {"a name without a text", [](auto& given) { given.name = ""; }, true, "name"},
        {"no report function", [](auto& given) { given.isReportCode = false; }, true, "hoster"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.trace);
        auto given = good;
        row.spoil(given);
        HostLife life;
        life.arrive({Call::Initialize, 2, 0x1000, nullptr, 0});
        EXPECT_EQ(life.introduce(given), row.isUsable);
        EXPECT_EQ(life.findings().verdict(), std::string("verdict: FAILED: ") + row.failed);
    }
}

} // namespace tools::qrlprobe
