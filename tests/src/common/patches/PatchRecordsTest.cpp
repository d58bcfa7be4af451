#include "common/patches/patchrecords.h"
#include "common/patches/patchinfo.h"
#include "support/thrown.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

namespace vx::tarn::common {
namespace {

using nlohmann::json;
using support::thrown;

json fullUpdate()
{
    return {{"patch_specifier", {{"id", "GUID"}, {"region", -3}}}, {"update_id", "U"}, {"bulletin_id", "B"},
        {"product_name", "P\u00fc"}, {"service_pack", "S"}, {"update_name", "N"}, {"end_of_life", "E"},
        {"severity", 65537}, {"category", 3}, {"vendor", "V"}, {"user_friendly_update_name", "F"},
        {"cve_id", {"C1", "C2"}}, {"description_url", "D"}};
}

TEST(PatchRecords, writeWhatTheyRead)
{
    EXPECT_EQ(toJson(fromJson<MissingUpdate>(fullUpdate())), fullUpdate());
    const json item{{"operation_id", "17"}, {"update_id", "ALL"}};
    EXPECT_EQ(toJson(fromJson<DeploymentItem>(item)), item);
}

TEST(PatchRecords, keepDefaultsForMissingAndNullKeys)
{
    const auto update = fromJson<MissingUpdate>(json::parse(R"({"update_name":null,"patch_specifier":null,"x":1})"));
    EXPECT_EQ(update.updateName, L"");
    EXPECT_EQ(update.patchSpecifier.id, L"");
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

TEST(PatchRecords, refuseWrongTypesWithTheLibrarysError)
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
        SCOPED_TRACE(text);
        const auto error = thrown<json::type_error>([&] { listFromJson<MissingUpdate>(json::parse(text)); });
        EXPECT_EQ(error.id, 302);
        EXPECT_THAT(error.what(), testing::HasSubstr(message));
    }
}

TEST(PatchRecords, refuseUnknownStates)
{
    const std::pair<const char*, const char*> rows[] = {
        {R"([{"status":{"value":"done"}}])", "Invalid value for ValueItem"},
        {R"([{"installation_result":"done"}])", "Invalid value for InstallationResultItem"},
    };
    for (const auto& [text, message] : rows) {
        const auto read = [&] { listFromJson<InstallationLogEntry>(json::parse(text)); };
        EXPECT_STREQ(thrown<std::invalid_argument>(read).what(), message);
    }
}

TEST(PatchInfo, cutsSeverityTo16BitsAndTakesAnEmptySpecifierOver)
{
    const PatchInfo patch(fromJson<MissingUpdate>(fullUpdate()));
    EXPECT_EQ(patch.severity, 1);
    EXPECT_EQ(PatchInfo().specifier.id, L"00000000-0000-0000-0000-000000000000");
    EXPECT_EQ(PatchInfo(MissingUpdate{}).specifier.id, L"");
}

TEST(PatchInfo, goesBackWithTheGivenIdentifierAndNothingElseLost)
{
    json expected = fullUpdate();
    expected["update_id"] = "NEW";
    expected["severity"] = 1;
    EXPECT_EQ(toJson(toMissingUpdate(PatchInfo(fromJson<MissingUpdate>(fullUpdate())), L"NEW")), expected);
}

} // namespace
} // namespace vx::tarn::common
