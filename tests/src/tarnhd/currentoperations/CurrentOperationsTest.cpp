#include "tarnhd/currentoperations/currentoperations.h"

#include "common/patches/updateid.h"
#include "support/fakesettings.h"
#include "support/logcapture.h"
#include "vxtl/str.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

namespace vx::tarn {
namespace {

using nlohmann::json;

const TarnpatchSettings keys{nullptr};
const TarnpatchStatus statusKeys{nullptr};
const std::wstring queueKey = keys.installation.deploymentQueue.key();
const std::wstring missingKey = statusKeys.scanning.lastScanning.missingUpdates.key();
const std::wstring logKey = statusKeys.installation.log.entries.key();
const std::wstring resultKey = keys.currentStatus.patchesToInstall.key();

struct CurrentOperationsTest : testing::Test {
    std::shared_ptr<support::FakeSettings> store = std::make_shared<support::FakeSettings>();
    CurrentOperations operations{support::FakeSettings::handle(store)};

    static std::string id(const std::string& name)
    {
        return str::toUtf8(common::deriveUpdateId(L"", L"", L"", str::fromUtf8(name)));
    }
    void queue(const std::string& text) { store->setJsonValue(queueKey, json::array({{{"update_id", text}}})); }
    void missing(std::initializer_list<const char*> names)
    {
        json list = json::array();
        for (const char* name : names)
            list.push_back({{"update_name", name}, {"update_id", "stale"}, {"severity", 1}});
        store->setJsonValue(missingKey, list);
    }
    static json entry(const std::string& name, const char* state)
    {
        return {{"update_id", id(name)}, {"status", {{"value", state}, {"code", "c"}}}};
    }
    /// The published list as "name:state" texts.
    std::vector<std::string> published()
    {
        operations.update();
        std::vector<std::string> result;
        for (const json& patch : store->getJsonValue(resultKey)) {
            EXPECT_EQ(patch["update_id"], id(patch["update_name"]));
            result.push_back(
                patch["update_name"].get<std::string>() + ":" + patch["status"]["value"].get<std::string>());
        }
        return result;
    }
};

TEST_F(CurrentOperationsTest, publishesAnEmptyListFromAnEmptyStore)
{
    EXPECT_THAT(published(), testing::IsEmpty());
    EXPECT_TRUE(store->getJsonValue(resultKey).is_array());
}

TEST_F(CurrentOperationsTest, mergesQueueMissingUpdatesAndLog)
{
    missing({"new", "running", "failed", "done", "excluded", "twice"});
    store->setJsonValue(logKey, {entry("running", "installation_executing"), entry("failed", "installation_failed"),
                                    entry("done", "installation_completed"), entry("excluded", "installation_excluded"),
                                    entry("twice", "file_downloading"), entry("twice", "installation_completed"),
                                    entry("gone", "installation_failed")});
    EXPECT_THAT(published(),
        testing::ElementsAre("running:installation_executing", "failed:installation_failed", "twice:file_downloading"));
    queue("ALL");
    EXPECT_THAT(published(), testing::ElementsAre("new:installation_requested", "running:installation_executing",
                                 "failed:installation_failed", "twice:file_downloading"));
    queue("critical");
    EXPECT_EQ(published().size(), 3u);
}

// The complete record is taken over as it stands, the others are built from what was read.
TEST_F(CurrentOperationsTest, publishesTheSameWhetherOrNotTheScanWroteEveryKeyAsWeDo)
{
    const json complete{{"patch_specifier", {{"id", ""}, {"region", -1}}}, {"update_id", "stale"}, {"bulletin_id", ""},
        {"product_name", ""}, {"service_pack", ""}, {"update_name", "a"}, {"end_of_life", ""}, {"severity", 1},
        {"category", 0}, {"vendor", ""}, {"user_friendly_update_name", ""}, {"cve_id", json::array()},
        {"description_url", ""}};
    const std::pair<const char*, json> changes[] = {{"/unknown", 1}, {"/vendor", nullptr}, {"/severity", 1.5},
        {"/severity", 65537}, {"/category", 65536}, {"/category", -65536}, {"/patch_specifier/region", UINT64_MAX},
        {"/patch_specifier/unknown", 1}};
    json list(2, complete);
    list[0].erase("vendor");
    for (const auto& [where, value] : changes)
        list.emplace_back(complete)[json::json_pointer(where)] = value;
    store->setJsonValue(missingKey, list);
    queue("ALL");
    published();
    json expected = complete;
    expected["update_id"] = id("a");
    expected["status"] = {{"value", "installation_requested"}, {"code", ""}};
    EXPECT_EQ(store->getJsonValue(resultKey).dump(), json(list.size(), expected).dump());
}

TEST_F(CurrentOperationsTest, warnsOfABadRuleAtEachPatchAlsoALoggedOne)
{
    missing({"a", "b"});
    store->setJsonValue(logKey, json::array({entry("a", "installation_failed")}));
    queue("SEVERITY=x");
    support::LogCapture log;
    published();
    EXPECT_EQ(log.count("Failed to convert severity to number: "), 2u);
}

TEST_F(CurrentOperationsTest, leavesThePublishedListAloneWhenAnInputIsMalformed)
{
    missing({"a"});
    queue("ALL");
    published();
    store->setJsonValue(logKey, json::array({{{"status", {{"value", "dancing"}}}}}));
    EXPECT_THROW(operations.update(), std::invalid_argument);
    store->setJsonValue(logKey, "no list");
    EXPECT_THROW(operations.update(), json::type_error);
    EXPECT_EQ(store->getJsonValue(resultKey).size(), 1u);
}

} // namespace
} // namespace vx::tarn
