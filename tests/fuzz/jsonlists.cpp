// Any JSON is read as a second, plainer reading reads it: refused with a type error or a conversion's
// std::invalid_argument when a member does not fit, and otherwise written back as what was read.

#include "common/patches/patchinfo.h"
#include "common/patches/patchrecords.h"
#include "input.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <stdexcept>

using namespace vx::tarn::common;
using nlohmann::json;

namespace {

enum class Kind { Text, Number, Texts, State, Result, Specifier, Status };
using enum Kind;
using Form = std::vector<std::pair<const char*, Kind>>;

const Form specifier{{"id", Text}, {"region", Number}};
const Form status{{"value", State}, {"code", Text}};
const Form queueItem{{"operation_id", Text}, {"update_id", Text}};
const Form missingUpdate{{"patch_specifier", Specifier}, {"update_id", Text}, {"bulletin_id", Text},
    {"product_name", Text}, {"service_pack", Text}, {"update_name", Text}, {"end_of_life", Text}, {"severity", Number},
    {"category", Number}, {"vendor", Text}, {"user_friendly_update_name", Text}, {"cve_id", Texts},
    {"description_url", Text}};
const Form logEntry{{"patch_specifier", Specifier}, {"update_id", Text}, {"installation_time", Number},
    {"bulletin_id", Text}, {"product_name", Text}, {"service_pack", Text}, {"update_name", Text},
    {"installation_result", Result}, {"status", Status}};

// In each the first is the default.
const json states{"installation_requested", "installation_failed", "installation_executing",
    "installation_completed_pending_reboot", "installation_canceled", "file_downloading", "file_download_failed",
    "file_download_completed", "file_manual_download_required", "installation_completed",
    "installation_will_continue_after_reboot", "file_validation_failed", "file_is_missing", "installation_hung_up",
    "installation_excluded"};
const json results{"installation_not_started", "download_success", "download_curl_error", "download_win_error",
    "download_com_error", "download_error", "installation_success", "installation_error", "installation_unknown",
    "installation_hung_up", "signature_verification_error", "no_signature", "excluded"};

std::int64_t integer(const json& value)
{
    if (!value.is_number_float())
        return value.get<std::int64_t>();
    const auto number = static_cast<long double>(value.get<double>());
    return static_cast<std::int64_t>(std::clamp<long double>(number, INT64_MIN, INT64_MAX));
}

std::optional<json> expected(const json& value, const Form& form);

/// The member as it has to be written back; nothing when it has to be refused.
std::optional<json> expectedMember(json value, Kind kind)
{
    static const json defaults{"", 0, json::array(), *states.begin(), *results.begin(), json::object(), json::object()};
    if (value.is_null())
        value = defaults[static_cast<std::size_t>(kind)];
    const auto isText = [](const json& one) { return one.is_string(); };
    const auto keptIf = [&](bool fits) { return fits ? std::optional(value) : std::nullopt; };
    switch (kind) {
    case Text: return keptIf(isText(value));
    case Number: return value.is_number() ? std::optional<json>(integer(value)) : std::nullopt;
    case Texts: return keptIf(value.is_array() && std::all_of(value.begin(), value.end(), isText));
    case State: return keptIf(std::count(states.begin(), states.end(), value) == 1);
    case Result: return keptIf(std::count(results.begin(), results.end(), value) == 1);
    case Specifier: return expected(value, specifier);
    case Status: return expected(value, status);
    }
}

std::optional<json> expected(const json& value, const Form& form)
{
    if (!value.is_object())
        return std::nullopt;
    json record = json::object();
    for (const auto& [key, kind] : form)
        if (const auto member = expectedMember(value.value(key, json()), kind))
            record[key] = *member;
    return record.size() == form.size() ? std::optional(record) : std::nullopt;
}

std::optional<json> expectedList(const json& value, const Form& form)
{
    if (!value.is_array())
        return std::nullopt;
    json list = json::array();
    for (const json& element : value)
        if (const auto record = expected(element, form))
            list.push_back(*record);
    return list.size() == value.size() ? std::optional(list) : std::nullopt;
}

json written(const DeploymentItem& item)
{
    return toJson(item);
}

json written(const MissingUpdate& update)
{
    const PatchInfo patch(update);
    fuzz::require(patch.severity == (update.severity & 0xFFFF) && patch.category == (update.category & 0xFFFF), "cut");
    MissingUpdate back = toMissingUpdate(patch, update.updateId);
    back.severity = update.severity;
    back.category = update.category;
    return toJson(back);
}

/// The log has no writer of its own: a missing update carries what both have in common.
json written(const InstallationLogEntry& entry)
{
    MissingUpdate patch;
    patch.patchSpecifier = entry.patchSpecifier;
    patch.updateId = entry.updateId;
    patch.severity = entry.installationTime;
    patch.bulletinId = entry.bulletinId;
    patch.productName = entry.productName;
    patch.servicePack = entry.servicePack;
    patch.updateName = entry.updateName;
    json record = toJson(patch);
    record["status"] = toJson(entry.status);
    record["installation_time"] = record["severity"];
    return record;
}

json written(const LoggedState& state)
{
    return {{"update_id", toJson(DeploymentItem{{}, state.updateId})["update_id"]}, {"status", toJson(state.status)}};
}

json written(const ListedUpdate& update)
{
    MissingUpdate whole;
    static_cast<ListedUpdate&>(whole) = update;
    json record = written(whole);
    for (const char* key :
        {"cve_id", "description_url", "end_of_life", "update_id", "user_friendly_update_name", "vendor"})
        record.erase(key);
    return record;
}

template <typename Record, typename Whole>
std::vector<Record> readOneByOne(json value)
{
    std::vector<Record> records;
    readEach<Record>(value, [&](Record& record, json& element, bool isAsWritten) {
        if constexpr (!std::is_void_v<Whole>)
            fuzz::require(isAsWritten == (toJson(fromJson<Whole>(element)).dump() == element.dump()), "as written");
        records.push_back(record);
    });
    return records;
}

template <typename Read>
void check(const json& value, const Form& form, Read read)
{
    const auto list = expectedList(value, form);
    try {
        const auto records = read(value);
        fuzz::require(list && records.size() == list->size(), "a wrong list is refused");
        for (std::size_t i = 0; i < records.size(); ++i) {
            const json record = written(records[i]);
            for (const auto& [key, kind] : form)
                fuzz::require(kind == Result || !record.contains(key) || record.at(key) == list->at(i).at(key), key);
        }
    } catch (const json::type_error& e) {
        fuzz::require(e.id == 302 && !list, "type error 302 of a wrong list alone");
    } catch (const std::invalid_argument& e) {
        fuzz::require(std::string_view(e.what()).starts_with("Invalid value for ") && !list, "unknown word");
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const auto input = fuzz::json(data, size);
    if (!input)
        return 0;
    const json& value = *input;
    check(value, queueItem, readOneByOne<DeploymentItem, DeploymentItem>);
    check(value, missingUpdate, listFromJson<MissingUpdate>);
    check(value, missingUpdate, readOneByOne<ListedUpdate, MissingUpdate>);
    check(value, logEntry, listFromJson<InstallationLogEntry>);
    check(value, logEntry, readOneByOne<LoggedState, void>);
    return 0;
}
