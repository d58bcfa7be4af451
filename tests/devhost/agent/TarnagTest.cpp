#include "childprocess.h"
#include "store/client.h"
#include "store/server.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>
#include <sstream>
#include <windows.h>

namespace {

namespace store = devhost::store;
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

    /// Gives the agent the store's client library and an instance of its own.
    std::wstring useStore()
    {
        const wchar_t* library = L"vx_qrl_meridia_32.dll";
        std::filesystem::copy_file(support::programFolder() / library, folder.path() / library);
        const auto instance = L"agent-test" + std::to_wstring(GetCurrentProcessId());
        SetEnvironmentVariableW(L"TARNHD_INSTANCE", instance.c_str());
        return instance;
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
    script(R"({"runs": [{"exitCode": 3}], "complete": [{"exitCode": 3, "idle": true}]})");
    const struct {
        const wchar_t* arguments;
        json listed;
    } rows[] = {
        {L"", json::array()},
        {L"-c complete", {"-c", "complete"}},
        {L"--command=queue --severity=important", {"--command=queue", "--severity=important"}},
        {L"--command=queue --severity=", {"--command=queue", "--severity="}},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(run(row.arguments), 3u);
        const auto entries = journal();
        ASSERT_GE(entries.size(), 2u);
        const auto& begin = entries[entries.size() - 2];
        EXPECT_EQ(begin.at("event"), "start");
        EXPECT_EQ(begin.at("arguments"), row.listed);
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

TEST_F(TarnagTest, writesItsResultsToTheStore)
{
    const auto instance = useStore();
    store::Server server((folder.path() / "store.json").native(), instance);
    server.start();
    script(R"({"runs": [{"missingUpdates": [{"update_id": "A"}], "exitCode": 0, "set": {
        "status.windows.tarnpatch.installation.last_installation.restart_computer_needed": true,
        "windows.tarnpatch.scanning.automatic.polling_interval": 5, "x.text": "\u20ac"}}]})");
    const auto agent = start();
    EXPECT_EQ(agent->wait(), 0u) << agent->errors();
    store::Client client(instance);
    EXPECT_EQ(client.get("status.windows.tarnpatch.scanning.last_scanning.missing_updates"),
        store::Value::fromObject(R"([{"update_id":"A"}])"));
    EXPECT_EQ(client.get("status.windows.tarnpatch.installation.last_installation.restart_computer_needed"),
        store::Value::fromBool(true));
    EXPECT_EQ(client.get("windows.tarnpatch.scanning.automatic.polling_interval"), store::Value::fromInt32(5));
    EXPECT_EQ(client.get("x.text"), store::Value::fromString("\xE2\x82\xAC"));
}

TEST_F(TarnagTest, endsWithACodeOfItsOwnWithoutAStore)
{
    useStore();
    script(R"({"runs": [{"missingUpdates": []}]})");
    const auto agent = start();
    EXPECT_EQ(agent->wait(), 21u);
    EXPECT_THAT(agent->errors(), testing::StartsWith("tarnag: "));
    EXPECT_EQ(journal().back().at("exit_code"), 21);
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
