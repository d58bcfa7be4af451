// Any JSON is read as a second, plainer reading reads it: refused with a type error or a conversion's
// std::invalid_argument when a member does not fit, and otherwise written back as what was read.

#include "common/patchinfo.h"
#include "common/patchrecords.h"
#include "input.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <set>
#include <stdexcept>

using namespace vx::tarn::common;
using nlohmann::json;

namespace {

enum class Kind { Text, Number, Texts, State, Result, Specifier, Status };
using Form = std::vector<std::pair<const char*, Kind>>;

const Form specifier{{"id", Kind::Text}, {"region", Kind::Number}};
const Form status{{"value", Kind::State}, {"code", Kind::Text}};
const Form queueItem{{"operation_id", Kind::Text}, {"update_id", Kind::Text}};
const Form missingUpdate{{"patch_specifier", Kind::Specifier}, {"update_id", Kind::Text}, {"bulletin_id", Kind::Text},
    {"product_name", Kind::Text}, {"service_pack", Kind::Text}, {"update_name", Kind::Text},
    {"end_of_life", Kind::Text}, {"severity", Kind::Number}, {"category", Kind::Number}, {"vendor", Kind::Text},
    {"user_friendly_update_name", Kind::Text}, {"cve_id", Kind::Texts}, {"description_url", Kind::Text}};
const Form logEntry{{"patch_specifier", Kind::Specifier}, {"update_id", Kind::Text},
    {"installation_time", Kind::Number}, {"bulletin_id", Kind::Text}, {"product_name", Kind::Text},
    {"service_pack", Kind::Text}, {"update_name", Kind::Text}, {"installation_result", Kind::Result},
    {"status", Kind::Status}};

const std::set<std::string> states{"installation_requested", "installation_failed", "installation_executing",
    "installation_completed_pending_reboot", "installation_canceled", "file_downloading", "file_download_failed",
    "file_download_completed", "file_manual_download_required", "installation_completed",
    "installation_will_continue_after_reboot", "file_validation_failed", "file_is_missing", "installation_hung_up",
    "installation_excluded"};
const std::set<std::string> results{"installation_not_started", "download_success", "download_curl_error",
    "download_win_error", "download_com_error", "download_error", "installation_success", "installation_error",
    "installation_unknown", "installation_hung_up", "signature_verification_error", "no_signature", "excluded"};

std::int64_t integer(const json& value)
{
    if (value.is_number_unsigned())
        return static_cast<std::int64_t>(value.get<std::uint64_t>());
    if (!value.is_number_float())
        return value.get<std::int64_t>();
    const auto number = static_cast<long double>(value.get<double>());
    return static_cast<std::int64_t>(std::clamp<long double>(number, INT64_MIN, INT64_MAX));
}

std::optional<json> expected(const json& value, const Form& form);

json defaultOf(Kind kind)
{
    switch (kind) {
    case Kind::Number: return 0;
    case Kind::Texts: return json::array();
    case Kind::State: return "installation_requested";
    case Kind::Specifier: return *expected(json::object(), specifier);
    case Kind::Status: return *expected(json::object(), status);
    default: return "";
    }
}

bool fits(const json& value, Kind kind)
{
    const auto isText = [](const json& one) { return one.is_string(); };
    switch (kind) {
    case Kind::Text: return isText(value);
    case Kind::Number: return value.is_number();
    case Kind::Texts: return value.is_array() && std::all_of(value.begin(), value.end(), isText);
    case Kind::State: return isText(value) && states.count(value.get<std::string>()) == 1;
    case Kind::Result: return isText(value) && results.count(value.get<std::string>()) == 1;
    default: return true;
    }
}

/// The member as it has to be written back; nothing when it has to be refused.
std::optional<json> expectedMember(const json& value, Kind kind)
{
    if (value.is_null())
        return defaultOf(kind);
    if (kind == Kind::Specifier || kind == Kind::Status)
        return expected(value, kind == Kind::Specifier ? specifier : status);
    if (!fits(value, kind))
        return std::nullopt;
    return kind == Kind::Number ? json(integer(value)) : value;
}

std::optional<json> expected(const json& value, const Form& form)
{
    if (!value.is_object())
        return std::nullopt;
    json record = json::object();
    for (const auto& [key, kind] : form) {
        const auto member = expectedMember(value.contains(key) ? value[key] : json(), kind);
        if (!member)
            return std::nullopt;
        record[key] = *member;
    }
    return record;
}

std::optional<json> expectedList(const json& value, const Form& form)
{
    if (!value.is_array())
        return std::nullopt;
    json list = json::array();
    for (const json& element : value) {
        const auto record = expected(element, form);
        if (!record)
            return std::nullopt;
        list.push_back(*record);
    }
    return list;
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

/// The log has no writer of its own: a patch to install carries what both have in common.
json written(const InstallationLogEntry& entry)
{
    PatchToInstall patch;
    patch.patchSpecifier = entry.patchSpecifier;
    patch.updateId = entry.updateId;
    patch.severity = entry.installationTime;
    patch.bulletinId = entry.bulletinId;
    patch.productName = entry.productName;
    patch.servicePack = entry.servicePack;
    patch.updateName = entry.updateName;
    patch.status = entry.status;
    json record = toJson(patch);
    record["installation_time"] = record["severity"];
    return record;
}

json written(const LoggedState& state)
{
    return {{"update_id", toJson(DeploymentItem{{}, state.updateId})["update_id"]}, {"status", toJson(state.status)}};
}

json written(const ListedUpdate& update)
{
    json record = written(static_cast<const MissingUpdate&>(update));
    for (const char* key :
        {"cve_id", "description_url", "end_of_life", "update_id", "user_friendly_update_name", "vendor"})
        record.erase(key);
    return record;
}

template <typename Record>
std::vector<Record> read(const json& value)
{
    return listFromJson<Record>(value);
}

template <typename Record, typename Whole>
std::vector<Record> readOneByOne(const json& value)
{
    json copy = value;
    std::vector<Record> records;
    readEach<Record>(copy, [&](Record& record, json& element, bool isAsWritten) {
        if constexpr (!std::is_void_v<Whole>)
            fuzz::require(isAsWritten == (toJson(fromJson<Whole>(element)).dump() == element.dump()), "as written");
        records.push_back(record);
    });
    return records;
}

template <>
std::vector<DeploymentItem> read(const json& value)
{
    return readOneByOne<DeploymentItem, DeploymentItem>(value);
}

template <>
std::vector<ListedUpdate> read(const json& value)
{
    return readOneByOne<ListedUpdate, MissingUpdate>(value);
}

template <>
std::vector<LoggedState> read(const json& value)
{
    return readOneByOne<LoggedState, void>(value);
}

template <typename Record>
void check(const json& value, const Form& form)
{
    const auto list = expectedList(value, form);
    try {
        const auto records = read<Record>(value);
        fuzz::require(list && records.size() == list->size(), "a wrong list is refused");
        for (std::size_t i = 0; i < records.size(); ++i) {
            const json record = written(records[i]);
            for (const auto& [key, kind] : form)
                fuzz::require(
                    kind == Kind::Result || !record.contains(key) || record.at(key) == list->at(i).at(key), key);
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
    const json value = json::parse(fuzz::bytes(data, size), nullptr, false);
    if (value.is_discarded())
        return 0;
    check<DeploymentItem>(value, queueItem);
    check<MissingUpdate>(value, missingUpdate);
    check<ListedUpdate>(value, missingUpdate);
    check<InstallationLogEntry>(value, logEntry);
    check<LoggedState>(value, logEntry);
    return 0;
}
