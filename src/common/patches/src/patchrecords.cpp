#include "common/patchrecords.h"

#include "common/jsonnumber.h"
#include "vxtl/str.h"

#include <nlohmann/json.hpp>

#include <tuple>

namespace vx::tarn::common {

namespace {

using nlohmann::json;

/// One member of a record and its JSON key.
template <typename Record, typename Value>
struct Field {
    const char* key;
    Value Record::*member;
};

template <typename Record>
constexpr auto fields = nullptr;

template <>
constexpr auto fields<PatchSpecifier> =
    std::tuple{Field{"id", &PatchSpecifier::id}, Field{"region", &PatchSpecifier::region}};

template <>
constexpr auto fields<PatchStatus> = std::tuple{Field{"value", &PatchStatus::value}, Field{"code", &PatchStatus::code}};

template <>
constexpr auto fields<DeploymentItem> =
    std::tuple{Field{"operation_id", &DeploymentItem::operationId}, Field{"update_id", &DeploymentItem::updateId}};

template <>
constexpr auto fields<MissingUpdate> = std::tuple{Field{"patch_specifier", &MissingUpdate::patchSpecifier},
    Field{"update_id", &MissingUpdate::updateId}, Field{"bulletin_id", &MissingUpdate::bulletinId},
    Field{"product_name", &MissingUpdate::productName}, Field{"service_pack", &MissingUpdate::servicePack},
    Field{"update_name", &MissingUpdate::updateName}, Field{"end_of_life", &MissingUpdate::endOfLife},
    Field{"severity", &MissingUpdate::severity}, Field{"category", &MissingUpdate::category},
    Field{"vendor", &MissingUpdate::vendor}, Field{"user_friendly_update_name", &MissingUpdate::userFriendlyUpdateName},
    Field{"cve_id", &MissingUpdate::cveIds}, Field{"description_url", &MissingUpdate::descriptionUrl}};

template <>
constexpr auto fields<PatchToInstall> = std::tuple_cat(
    fields<MissingUpdate>, std::tuple{Field{"status", &PatchToInstall::status}});

template <>
constexpr auto fields<InstallationLogEntry> = std::tuple{
    Field{"patch_specifier", &InstallationLogEntry::patchSpecifier},
    Field{"update_id", &InstallationLogEntry::updateId},
    Field{"installation_time", &InstallationLogEntry::installationTime},
    Field{"bulletin_id", &InstallationLogEntry::bulletinId}, Field{"product_name", &InstallationLogEntry::productName},
    Field{"service_pack", &InstallationLogEntry::servicePack}, Field{"update_name", &InstallationLogEntry::updateName},
    Field{"installation_result", &InstallationLogEntry::installationResult},
    Field{"status", &InstallationLogEntry::status}};

template <typename Record>
void readRecord(const json& value, Record& record);

/// The value by reference, without the copy that the library's get makes.
template <typename Native>
const Native& referenceTo(const json& value)
{
    if (const auto* native = value.get_ptr<const Native*>())
        return *native;
    // Of another type: the library's own conversion words the type error.
    static_cast<void>(value.get<Native>());
    __builtin_unreachable();
}

const std::string& textOf(const json& value)
{
    return referenceTo<json::string_t>(value);
}

void read(const json& value, std::wstring& target)
{
    target = str::fromUtf8(textOf(value));
}

void read(const json& value, std::int64_t& target)
{
    target = utils::readInt64(value);
}

void read(const json& value, std::vector<std::wstring>& target)
{
    const auto& array = referenceTo<json::array_t>(value);
    target.clear();
    target.reserve(array.size());
    for (const json& element : array)
        target.push_back(str::fromUtf8(textOf(element)));
}

void read(const json& value, ValueItem& target)
{
    target = toValueItem(str::fromUtf8(textOf(value)));
}

void read(const json& value, InstallationResultItem& target)
{
    target = toInstallationResultItem(str::fromUtf8(textOf(value)));
}

template <typename Record>
void read(const json& value, Record& target)
{
    target = Record{};
    readRecord(value, target);
}

template <typename Record>
void readRecord(const json& value, Record& record)
{
    const auto& object = referenceTo<json::object_t>(value);
    std::apply(
        [&](const auto&... field) {
            const auto readOne = [&](const auto& one) {
                const auto found = object.find(one.key);
                if (found != object.end() && !found->second.is_null())
                    read(found->second, record.*one.member);
            };
            (readOne(field), ...);
        },
        fields<Record>);
}

template <typename Record>
json writeRecord(const Record& record);

json write(const std::wstring& text)
{
    return str::toUtf8(text);
}

json write(std::int64_t number)
{
    return number;
}

json write(const std::vector<std::wstring>& texts)
{
    json::array_t array;
    array.reserve(texts.size());
    for (const std::wstring& text : texts)
        array.emplace_back(str::toUtf8(text));
    return array;
}

json write(ValueItem value)
{
    return str::toUtf8(toText(value));
}

template <typename Record>
json write(const Record& record)
{
    return writeRecord(record);
}

template <typename Record>
json writeRecord(const Record& record)
{
    json::object_t object;
    std::apply(
        [&](const auto&... field) { (object.emplace(field.key, write(record.*field.member)), ...); }, fields<Record>);
    return object;
}

} // namespace

json toJson(const DeploymentItem& item)
{
    return writeRecord(item);
}

json toJson(const MissingUpdate& update)
{
    return writeRecord(update);
}

json toJson(const PatchToInstall& patch)
{
    return writeRecord(patch);
}

template <typename Record>
Record fromJson(const json& value)
{
    Record record;
    readRecord(value, record);
    return record;
}

template <typename Record>
std::vector<Record> listFromJson(const json& value)
{
    const auto& array = referenceTo<json::array_t>(value);
    std::vector<Record> records;
    records.reserve(array.size());
    for (const json& element : array)
        readRecord(element, records.emplace_back());
    return records;
}

template <typename Record>
json listToJson(const std::vector<Record>& records)
{
    json::array_t array;
    array.reserve(records.size());
    for (const Record& record : records)
        array.push_back(writeRecord(record));
    return array;
}

template DeploymentItem fromJson(const json&);
template MissingUpdate fromJson(const json&);
template InstallationLogEntry fromJson(const json&);
template std::vector<DeploymentItem> listFromJson(const json&);
template std::vector<MissingUpdate> listFromJson(const json&);
template std::vector<InstallationLogEntry> listFromJson(const json&);
template json listToJson(const std::vector<DeploymentItem>&);
template json listToJson(const std::vector<PatchToInstall>&);

} // namespace vx::tarn::common
