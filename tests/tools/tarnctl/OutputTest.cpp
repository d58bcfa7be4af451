#include "logreading/record.h"
#include "tarnctl/log/filter.h"
#include "tarnctl/log/textoutput.h"
#include "tarnctl/log/traceoutput.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <sstream>

namespace tarnctl::log {
namespace {

using nlohmann::json;

const std::vector<std::string> lines = {
    "2026-11-22 10:00:00.000 [0010.0001]  D:   } vx::before",
    "2026-11-22 10:00:01.000 [0010.0001]  D: { vx::f",
    "2026-11-22 10:00:02.000 [0010.0002] *E: Failed </script> \x01\r5",
    "a line of another program",
    "2026-11-22 10:00:03.000 [0010.0001]  D: } vx::f",
    "2026-11-22 10:00:03.500 [0010.0002] *E: Failed </script> \x01\r6",
    "2026-11-22 10:00:04.000 [0010.0003]  I: tarnag.exe start event signaled.",
    "2026-11-22 10:00:05.000 [0010.0003]  I: Process finished with return code: 5",
};

void give(Output& output)
{
    for (const auto& line : lines) {
        const auto record = logreading::parseRecord(line);
        output.line(line, record ? &*record : nullptr);
    }
    output.end();
}

TEST(Filter, letsALineOfAnotherProgramGoWithTheRecordBeforeIt)
{
    const auto passed = [](Wanted wanted) {
        Filter filter(std::move(wanted));
        std::string places;
        for (std::size_t place = 0; place < lines.size(); ++place) {
            const auto record = logreading::parseRecord(lines[place]);
            places += filter.passes(lines[place], record ? &*record : nullptr) ? std::to_string(place) : "";
        }
        return places;
    };
    const auto now = *logreading::parseMoment("2026-11-22 10:01");
    const auto since = [&](const char* text) { return Wanted{parseSince(text, now), {}, {}, {}, {}}; };
    EXPECT_EQ(passed({}), "01234567");
    EXPECT_EQ(passed(since("2026-11-22 10:00:02")), "234567");
    EXPECT_EQ(passed(since("57s")), "4567");
    EXPECT_EQ(passed({{}, logreading::Level::Error, {}, {}, {}}), "235");
    EXPECT_EQ(passed({{}, {}, {}, 2, {}}), "235");
    EXPECT_EQ(passed({{}, {}, 0x11, 2, {}}), "");
    EXPECT_EQ(passed({{}, {}, {}, {}, Pattern("o[tf]")}), "3");
    for (const char* text : {"", "5", "5w", "m", "-1m", "2026-13-01", "2026-11-22 10"})
        EXPECT_FALSE(parseSince(text, now)) << text;
}

TEST(Pattern, isFoundInTimeAndForCharacters)
{
    const std::string hard(20'000, 'a');
    const struct {
        const char* pattern;
        std::string line;
        bool found;
    } rows[] = {
        {"b", "abc", true}, {"^b", "abc", false}, {"[b-z]$", "abc", true}, {"x|^abc", "abc", true},
        {"^.\u00FC{2}[\u00E9\u00E8]$", "\u00E4\u00FC\u00FC\u00E8", true},
        {"(a+)+$", hard + 'b', false}, // backtracks for ever where it may
    };
    for (const auto& [pattern, line, found] : rows)
        EXPECT_EQ(Pattern(pattern).isIn(line), found) << pattern;
    for (const char* pattern : {"[", "a)(b", "(a)\\1", "a{2,1}"})
        EXPECT_THROW(Pattern{pattern}, std::regex_error) << pattern;
}

TEST(JsonOutput, givesThePartsOfARecord)
{
    std::ostringstream stream;
    JsonOutput output(stream);
    give(output);
    std::istringstream read(stream.str());
    std::vector<json> objects;
    for (std::string line; std::getline(read, line);)
        objects.push_back(json::parse(line));
    ASSERT_EQ(objects.size(), lines.size());
    EXPECT_EQ(objects[1], json::parse(R"({"time": "2026-11-22 10:00:01.000", "process": "0010", "thread": "0001",
        "level": "debug", "depth": 0, "scope": "entered", "message": "vx::f"})"));
    EXPECT_EQ(objects[3], json::parse(R"({"line": "a line of another program"})"));
}

TEST(TraceOutput, closesWhatItOpens)
{
    std::ostringstream stream;
    TraceOutput output(stream);
    give(output);
    std::string phases;
    const auto trace = json::parse(stream.str());
    for (const auto& event : trace.at("traceEvents"))
        if (event.at("ph") != "M")
            phases += event.at("ph").get<std::string>() + event.at("name").get<std::string>().substr(0, 6) + " ";
    EXPECT_EQ(phases, "Bvx::f iFailed Evx::f iFailed Xplug-i Xtarnag ");
}

} // namespace
} // namespace tarnctl::log
