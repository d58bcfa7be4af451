#include "childprocess.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>
#include <sstream>
#include <windows.h>

namespace {

using nlohmann::json;
using support::ChildProcess;
using testing::HasSubstr;

constexpr unsigned long accessViolation = 0xC0000005;

/// Runs a copy of tarnag.exe in a folder of its own.
class TarnagTest : public testing::Test {
protected:
    TarnagTest() { std::filesystem::copy_file(support::programFolder() / "tarnag.exe", folder.path() / "tarnag.exe"); }

    void script(const std::string& text) { support::writeFile(folder.path() / "tarnag.script.json", text); }

    std::unique_ptr<ChildProcess> start(const std::wstring& arguments = {})
    {
        return std::make_unique<ChildProcess>(
            L"\"" + (folder.path() / "tarnag.exe").native() + L"\" " + arguments, folder.path());
    }

    unsigned long run(const std::wstring& arguments = {}) { return start(arguments)->wait().value_or(999); }

    std::vector<json> journal() const
    {
        std::vector<json> entries;
        std::istringstream lines(support::readFile(folder.path() / "tarnag.runs.jsonl"));
        for (std::string line; std::getline(lines, line);)
            entries.push_back(json::parse(line));
        return entries;
    }

    support::TemporaryFolder folder;
};

} // namespace

TEST_F(TarnagTest, carriesOutOneEntryPerStart)
{
    script(R"({"runs": [{"exitCode": 8}, {"stdout": "hello"}, {"crash": true}, {"exitCode": 1025}]})");
    EXPECT_EQ(run(), 8u);
    const auto second = start();
    EXPECT_EQ(second->wait(), 0u);
    EXPECT_THAT(second->output(), HasSubstr("hello"));
    EXPECT_EQ(run(), accessViolation);
    EXPECT_EQ(run(), 1025u);
    EXPECT_EQ(run(), 1025u);
}

TEST_F(TarnagTest, listsItsStartsWithTheProductsCommandLines)
{
    script(R"({"runs": [{"exitCode": 3}]})");
    const std::vector<std::pair<std::wstring, json>> rows{
        {L"", json::array()},
        {L"-c complete", {"-c", "complete"}},
        {L"--command=queue --severity=important", {"--command=queue", "--severity=important"}},
        {L"--command=queue --severity=", {"--command=queue", "--severity="}},
    };
    for (const auto& [arguments, listed] : rows) {
        EXPECT_EQ(run(arguments), 3u);
        const auto entries = journal();
        ASSERT_GE(entries.size(), 2u);
        const auto& begin = entries[entries.size() - 2];
        EXPECT_EQ(begin.at("event"), "start");
        EXPECT_EQ(begin.at("arguments"), listed);
        EXPECT_EQ(entries.back().at("exit_code"), 3);
        EXPECT_EQ(entries.back().at("pid"), begin.at("pid"));
    }
}

TEST_F(TarnagTest, waitsForTheEventItIsTold)
{
    const auto name = "tarnag-test-" + std::to_string(GetCurrentProcessId());
    const auto go = CreateEventA(nullptr, TRUE, FALSE, (name + "-go").c_str());
    const auto started = CreateEventA(nullptr, TRUE, FALSE, (name + "-started").c_str());
    script(R"({"runs": [{"startedEvent": ")" + name + R"(-started", "waitForEvent": ")" + name +
           R"(-go", "exitCode": 5}]})");
    const auto agent = start();
    EXPECT_EQ(WaitForSingleObject(started, 60'000), WAIT_OBJECT_0);
    EXPECT_FALSE(agent->wait(std::chrono::milliseconds(0)));
    EXPECT_EQ(journal().size(), 1u);
    SetEvent(go);
    EXPECT_EQ(agent->wait(), 5u);
    CloseHandle(go);
    CloseHandle(started);
}

TEST_F(TarnagTest, keepsTheListWholeWhenManyRunAtOnce)
{
    script(R"({"runs": [{"exitCode": 1}, {"exitCode": 2}, {"exitCode": 3}, {"exitCode": 4}, {"exitCode": 5}]})");
    std::vector<std::unique_ptr<ChildProcess>> agents;
    for (int i = 0; i < 5; ++i)
        agents.push_back(start());
    std::vector<unsigned long> codes;
    for (auto& agent : agents)
        codes.push_back(agent->wait().value_or(999));
    EXPECT_THAT(codes, testing::UnorderedElementsAre(1, 2, 3, 4, 5));
    EXPECT_EQ(journal().size(), 10u);
}

TEST_F(TarnagTest, refusesABadScriptOrCommandLineWithOneLine)
{
    script("{\"runs\": 1}");
    for (const auto* arguments : {L"", L"--frob", L"--script C:\\missing.json"}) {
        const auto agent = start(arguments);
        EXPECT_EQ(agent->wait(), 2u);
        EXPECT_THAT(agent->errors(), testing::StartsWith("tarnag: "));
        EXPECT_EQ(std::ranges::count(agent->errors(), '\n'), 1) << agent->errors();
    }
}
