#include "logreading/record.h"
#include "tarnctl/log/filter.h"
#include "tarnctl/log/pageoutput.h"
#include "tarnctl/log/textoutput.h"
#include "tarnctl/log/traceoutput.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>
#include <sstream>

namespace tarnctl::log {
namespace {

using nlohmann::json;

const std::vector<std::string> lines = {
    "2026-11-22 10:00:00.000 [0010.0001]  D:   } vx::before",
    "2026-11-22 10:00:01.000 [0010.0001]  D: { vx::f",
    "2026-11-22 10:00:02.000 [0010.0002] *E: Failed </script> \x01 5",
    "a line of another program",
    "2026-11-22 10:00:03.000 [0010.0001]  D: } vx::f",
    "2026-11-22 10:00:03.500 [0010.0002] *E: Failed </script> \x01 6",
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

std::string between(const std::string& text, const std::string& begin, const std::string& end)
{
    const auto from = text.find(begin) + begin.size();
    return text.substr(from, text.find(end, from) - from);
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
    EXPECT_EQ(passed({}), "01234567");
    EXPECT_EQ(
        passed({.since = parseSince("2026-11-22 10:00:02", now), .level = {}, .thread = {}, .pattern = {}}), "234567");
    EXPECT_EQ(passed({.since = parseSince("57s", now), .level = {}, .thread = {}, .pattern = {}}), "4567");
    EXPECT_EQ(passed({.since = {}, .level = logreading::Level::Error, .thread = {}, .pattern = {}}), "235");
    EXPECT_EQ(passed({.since = {}, .level = {}, .thread = 2, .pattern = {}}), "235");
    EXPECT_EQ(passed({.since = {}, .level = {}, .thread = {}, .pattern = std::regex("o[tf]")}), "3");
    for (const char* text : {"", "5", "5w", "m", "-1m", "2026-13-01", "2026-11-22 10"})
        EXPECT_FALSE(parseSince(text, now)) << text;
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

TEST(PageOutput, holdsLinesAndFindingsWhateverStandsInThem)
{
    std::ostringstream stream;
    PageOutput output(stream);
    give(output);
    const auto page = stream.str();
    const auto data = between(page, "id=\"log\">", "</script>");
    EXPECT_EQ(std::count(data.begin(), data.end(), '\n'), static_cast<std::ptrdiff_t>(lines.size()));
    EXPECT_EQ(data.find('<'), std::string::npos);
    const auto story = json::parse(between(page, "id=\"story\">", "</script>"));
    std::vector<std::string> findings;
    for (const auto& finding : story.at("findings"))
        findings.push_back(finding.at("grade").get<std::string>() + " " + finding.at("text").get<std::string>());
    EXPECT_THAT(findings, testing::ElementsAre("error agent start failed, exit code 5 after 0 tries",
                              "error 2 times: Failed </script> \x01 5"));
}

} // namespace
} // namespace tarnctl::log
