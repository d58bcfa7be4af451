#include "common/patches/patchrecords.h"
#include "common/patches/patchinfo.h"
#include "common/patches/updateid.h"
#include "support/thrown.h"
#include "vxtl/exception.h"
#include "vxtl/str.h"

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

// The expected texts come from another implementation of MD5 and Base64.
TEST(UpdateId, isTheUpperCasedBase64OfTheMd5OfTheUtf16UnitsOfTheJoinedText)
{
    EXPECT_EQ(deriveUpdateId(L"MS17-010", L"Windows 7", L"SP1", L"KB4012212"), L"BK8QLILTU79QVEY/HMNKYG==");
    EXPECT_EQ(deriveUpdateId(L"", L"MS17-010Windows 7SP1", L"KB", L"4012212"), L"BK8QLILTU79QVEY/HMNKYG==");
    const std::wstring beyondTheBasicPlane = vx::str::fromUtf8("\xc3\xbc\xf0\x9f\x98\x80x");
    EXPECT_EQ(deriveUpdateId(beyondTheBasicPlane, L"", L"", L""), L"LULGLE5A4OUECG+CQNOY1W==");
    const auto derive = [] { toMissingUpdate(PatchInfo()); };
    EXPECT_EQ(support::thrown<vx::BaseException>(derive).reason(), L"Bad argument: source is empty");
}
