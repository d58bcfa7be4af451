#include "common/patches/patchrecords.h"
#include "common/patches/patchinfo.h"
#include "support/thrown.h"

#include <nlohmann/json.hpp>

using namespace vx::tarn;
using namespace vx::tarn::common;
using nlohmann::json;

const json fullUpdate{{"patch_specifier", {{"id", "GUID"}, {"region", -3}}}, {"update_id", "U"}, {"bulletin_id", "B"},
    {"product_name", "P\u00fc"}, {"service_pack", "S"}, {"update_name", "N"}, {"end_of_life", "E"}, {"severity", 65537},
    {"category", 3}, {"vendor", "V"}, {"user_friendly_update_name", "F"}, {"cve_id", {"C1", "C2"}},
    {"description_url", "D"}};

TEST(PatchRecords, writeWhatTheyRead)
{
    const auto update = fromJson<MissingUpdate>(fullUpdate);
    EXPECT_EQ(toJson(update), fullUpdate);
    const json item{{"operation_id", "17"}, {"update_id", "ALL"}};
    EXPECT_EQ(toJson(fromJson<DeploymentItem>(item)), item);
    // By way of a patch with the given identifier, and the severity cut to 16 bits.
    json expected = fullUpdate;
    expected["update_id"] = "NEW";
    expected["severity"] = 1;
    EXPECT_EQ(toJson(toMissingUpdate(PatchInfo(update), L"NEW")), expected);
}

TEST(PatchRecords, keepDefaultsForMissingAndNullKeys)
{
    const auto update = fromJson<MissingUpdate>(json::parse(R"({"update_name":null,"patch_specifier":null,"x":1})"));
    EXPECT_EQ(update.updateName, L"");
    EXPECT_EQ(PatchInfo(update).specifier.id, L"") << "not a patch's own default";
    EXPECT_EQ(update.patchSpecifier.region, 0);
    const auto entry = fromJson<InstallationLogEntry>(json::object());
    EXPECT_EQ(entry.status.value, ValueItem::InstallationRequested);
    EXPECT_EQ(entry.installationResult, InstallationResultItem::InstallationNotStarted);
}

TEST(PatchRecords, cutFloatingNumbers)
{
    const std::pair<const char*, std::int64_t> rows[] = {
        {"2.9", 2}, {"-2.9", -2}, {"1e300", INT64_MAX}, {"-1e300", INT64_MIN}, {"18446744073709551615", -1}};
    for (const auto& [text, number] : rows)
        EXPECT_EQ(fromJson<MissingUpdate>({{"severity", json::parse(text)}}).severity, number) << text;
}

TEST(PatchRecords, refuseWrongTypesWithTheLibrarysErrorAndUnknownStates)
{
    const std::pair<const char*, const char*> rows[] = {
        {R"([5])", "type must be object, but is number"},
        {R"({})", "type must be array, but is object"},
        {R"([{"update_name":1}])", "type must be string, but is number"},
        {R"([{"severity":"high"}])", "type must be number, but is string"},
        {R"([{"cve_id":"C"}])", "type must be array, but is string"},
        {R"([{"cve_id":[null]}])", "type must be string, but is null"},
        {R"([{},{"patch_specifier":[]}])", "type must be object, but is array"},
    };
    for (const auto& [text, message] : rows) {
        const auto error = support::thrown<json::type_error>([&] { listFromJson<MissingUpdate>(json::parse(text)); });
        EXPECT_EQ(error.id, 302) << text;
        EXPECT_THAT(error.what(), testing::HasSubstr(message)) << text;
    }
    for (const char* text : {R"([{"status":{"value":"installation"}}])", R"([{"installation_result":"excluded "}])"})
        EXPECT_THROW(listFromJson<InstallationLogEntry>(json::parse(text)), std::invalid_argument) << text;
}
