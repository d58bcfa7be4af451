#include "tarnhd/currentoperations/currentoperations.h"

#include "common/patches/updateid.h"
#include "support/fakesettings.h"
#include "vxtl/str.h"

namespace vx::tarn {
namespace {

using nlohmann::json;
using testing::ElementsAre;

struct CurrentOperationsTest : testing::Test {
    std::shared_ptr<support::FakeSettings> store = std::make_shared<support::FakeSettings>();
    const TarnpatchSettings settings{support::FakeSettings::handle(store)};
    const TarnpatchStatus status{support::FakeSettings::handle(store)};
    CurrentOperations operations{support::FakeSettings::handle(store)};

    static std::string id(const std::string& name)
    {
        return str::toUtf8(common::deriveUpdateId(L"", L"", L"", str::fromUtf8(name)));
    }
    void queue(const char* text) { store->set(settings.installation.deploymentQueue, {{{"update_id", text}}}); }
    void missing(std::initializer_list<const char*> names)
    {
        json list = json::array();
        for (const char* name : names)
            list.push_back({{"update_name", name}, {"update_id", "stale"}, {"severity", 1}});
        store->set(status.scanning.lastScanning.missingUpdates, list);
    }
    /// Name and state of each entry.
    void logged(std::initializer_list<std::pair<const char*, const char*>> entries)
    {
        json list = json::array();
        for (const auto& [name, state] : entries)
            list.push_back({{"update_id", id(name)}, {"status", {{"value", state}, {"code", "c"}}}});
        store->set(status.installation.log.entries, list);
    }
    json list() const { return store->get(settings.currentStatus.patchesToInstall); }
    /// What is published now as "name:state" texts.
    std::vector<std::string> published()
    {
        operations.update();
        std::vector<std::string> result;
        for (const json& patch : list()) {
            EXPECT_EQ(patch["update_id"], id(patch["update_name"]));
            result.push_back(std::string(patch["update_name"]) + ":" + std::string(patch["status"]["value"]));
        }
        return result;
    }
};

TEST_F(CurrentOperationsTest, mergesQueueMissingUpdatesAndLog)
{
    EXPECT_THAT(published(), ElementsAre());
    EXPECT_TRUE(list().is_array());
    missing({"new", "running", "failed", "done", "excluded", "twice"});
    logged({{"running", "installation_executing"}, {"failed", "installation_failed"},
        {"done", "installation_completed"}, {"excluded", "installation_excluded"}, {"twice", "file_downloading"},
        {"twice", "installation_completed"}, {"gone", "installation_failed"}});
    EXPECT_THAT(published(),
        ElementsAre("running:installation_executing", "failed:installation_failed", "twice:file_downloading"));
    queue("ALL");
    EXPECT_THAT(published(), ElementsAre("new:installation_requested", "running:installation_executing",
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
    json given(2, complete);
    given[0].erase("vendor");
    for (const auto& [where, value] : changes)
        given.emplace_back(complete)[json::json_pointer(where)] = value;
    store->set(status.scanning.lastScanning.missingUpdates, given);
    queue("ALL");
    published();
    json expected = complete;
    expected["update_id"] = id("a");
    expected["status"] = {{"value", "installation_requested"}, {"code", ""}};
    EXPECT_EQ(list().dump(), json(given.size(), expected).dump());
}

TEST_F(CurrentOperationsTest, leavesThePublishedListAloneWhenAnInputIsMalformed)
{
    missing({"a"});
    queue("ALL");
    published();
    logged({{"a", "dancing"}});
    EXPECT_THROW(operations.update(), std::invalid_argument);
    store->set(status.installation.log.entries, "no list");
    EXPECT_THROW(operations.update(), json::type_error);
    EXPECT_EQ(list().size(), 1u);
}

} // namespace
} // namespace vx::tarn
