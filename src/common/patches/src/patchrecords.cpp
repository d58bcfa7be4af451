#include "common/patchrecords.h"

#include "common/jsonnumber.h"
#include "vxtl/str.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <span>
#include <string_view>

namespace vx::tarn::common {

namespace {

using nlohmann::json;

/// One member of a record: its JSON key, and how it is read and written. Records share the code below through
/// tables of these, which are sorted by key as a JSON object's members are.
struct Field {
    std::string_view key;
    void (*read)(const json& value, void* record);
    json (*write)(const void* record) = nullptr; ///< null in a record that is only read, as the next
    bool (*isWritten)(const json& value) = nullptr;
};

// The value by reference, without the copy that the library's get makes; of another type with the same words as there.

[[noreturn]] void throwTypeError(const char* wanted, const json& value)
{
    throw json::type_error::create(
        302, std::string("type must be ") + wanted + ", but is " + value.type_name(), &value);
}

const std::string& stringIn(const json& value)
{
    if (const auto* text = value.get_ptr<const std::string*>())
        return *text;
    throwTypeError("string", value);
}

const json::array_t& arrayIn(const json& value)
{
    if (const auto* array = value.get_ptr<const json::array_t*>())
        return *array;
    throwTypeError("array", value);
}

const json::object_t& objectIn(const json& value)
{
    if (const auto* object = value.get_ptr<const json::object_t*>())
        return *object;
    throwTypeError("object", value);
}

std::wstring textOf(const json& value)
{
    return str::fromUtf8(stringIn(value));
}

void read(const json& value, std::wstring& target)
{
    target = textOf(value);
}

void read(const json& value, std::int64_t& target)
{
    target = utils::readInt64(value);
}

void read(const json& value, std::vector<std::wstring>& target)
{
    const auto& array = arrayIn(value);
    target.reserve(array.size());
    for (const json& element : array)
        target.push_back(textOf(element));
}

void read(const json& value, ValueItem& target)
{
    target = toValueItem(textOf(value));
}

void read(const json& value, InstallationResultItem& target)
{
    target = toInstallationResultItem(textOf(value));
}

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

// Whether a value that stands for a default of this type is just as `write` makes it.

bool isValueWritten(const json& value, const std::wstring&)
{
    return value.is_string();
}

bool isValueWritten(const json& value, std::int64_t)
{
    // One beyond the signed range is read as a negative number.
    return value.is_number_integer() && (!value.is_number_unsigned() || value.get<std::int64_t>() >= 0);
}

bool isValueWritten(const json& value, const std::vector<std::wstring>&)
{
    return value.is_array() && std::all_of(value.begin(), value.end(), [](const json& one) { return one.is_string(); });
}

bool isValueWritten(const json& value, ValueItem)
{
    return value.is_string();
}

/// Both sides are sorted, so one walk meets them all.
void readMembers(const json& value, std::span<const Field> fields, void* record)
{
    const auto& object = objectIn(value);
    auto member = object.begin();
    for (const Field& field : fields) {
        while (member != object.end() && member->first < field.key)
            ++member;
        if (member != object.end() && member->first == field.key && !member->second.is_null())
            field.read(member->second, record);
    }
}

json writeMembers(std::span<const Field> fields, const void* record)
{
    json::object_t object;
    for (const Field& field : fields)
        object.emplace_hint(object.end(), field.key, field.write(record));
    return object;
}

bool areMembersWritten(const json& value, std::span<const Field> fields)
{
    const auto* object = value.get_ptr<const json::object_t*>();
    return object && std::equal(object->begin(), object->end(), fields.begin(), fields.end(),
                         [](const auto& member, const Field& field) {
                             return member.first == field.key && field.isWritten(member.second);
                         });
}

void read(const json& value, PatchSpecifier& target);
void read(const json& value, PatchStatus& target);
json write(const PatchSpecifier& specifier);
json write(const PatchStatus& status);
bool isValueWritten(const json& value, const PatchSpecifier&);

template <typename Record, typename Value>
Record recordOf(Value Record::*);
template <typename Record, typename Value>
Value valueOf(Value Record::*);

template <auto member>
constexpr Field readOnly(std::string_view key)
{
    using Record = decltype(recordOf(member));
    return {key, [](const json& value, void* record) { read(value, static_cast<Record*>(record)->*member); }};
}

/// For a record that does not keep the member: read for what is wrong with it, and a text not even converted.
template <typename Value>
constexpr Field dropped(std::string_view key)
{
    return {key, [](const json& value, void*) {
                if constexpr (std::is_same_v<Value, std::wstring>) {
                    static_cast<void>(stringIn(value));
                } else {
                    Value target{};
                    read(value, target);
                }
            }};
}

template <auto member>
constexpr Field field(std::string_view key)
{
    using Record = decltype(recordOf(member));
    Field both = readOnly<member>(key);
    both.write = [](const void* record) { return write(static_cast<const Record*>(record)->*member); };
    both.isWritten = [](const json& value) { return isValueWritten(value, decltype(valueOf(member)){}); };
    return both;
}

template <typename Record>
constexpr Field fields[] = {};

template <>
constexpr Field fields<PatchSpecifier>[] = {field<&PatchSpecifier::id>("id"), field<&PatchSpecifier::region>("region")};

template <>
constexpr Field fields<PatchStatus>[] = {field<&PatchStatus::code>("code"), field<&PatchStatus::value>("value")};

template <>
constexpr Field fields<DeploymentItem>[] = {
    field<&DeploymentItem::operationId>("operation_id"), field<&DeploymentItem::updateId>("update_id")};

template <>
constexpr Field fields<MissingUpdate>[] = {
    field<&MissingUpdate::bulletinId>("bulletin_id"),
    field<&MissingUpdate::category>("category"),
    field<&MissingUpdate::cveIds>("cve_id"),
    field<&MissingUpdate::descriptionUrl>("description_url"),
    field<&MissingUpdate::endOfLife>("end_of_life"),
    field<&MissingUpdate::patchSpecifier>("patch_specifier"),
    field<&MissingUpdate::productName>("product_name"),
    field<&MissingUpdate::servicePack>("service_pack"),
    field<&MissingUpdate::severity>("severity"),
    field<&MissingUpdate::updateId>("update_id"),
    field<&MissingUpdate::updateName>("update_name"),
    field<&MissingUpdate::userFriendlyUpdateName>("user_friendly_update_name"),
    field<&MissingUpdate::vendor>("vendor"),
};

template <>
constexpr Field fields<InstallationLogEntry>[] = {
    readOnly<&InstallationLogEntry::bulletinId>("bulletin_id"),
    readOnly<&InstallationLogEntry::installationResult>("installation_result"),
    readOnly<&InstallationLogEntry::installationTime>("installation_time"),
    readOnly<&InstallationLogEntry::patchSpecifier>("patch_specifier"),
    readOnly<&InstallationLogEntry::productName>("product_name"),
    readOnly<&InstallationLogEntry::servicePack>("service_pack"),
    readOnly<&InstallationLogEntry::status>("status"),
    readOnly<&InstallationLogEntry::updateId>("update_id"),
    readOnly<&InstallationLogEntry::updateName>("update_name"),
};

template <>
constexpr Field fields<LoggedState>[] = {
    dropped<std::wstring>("bulletin_id"),
    dropped<InstallationResultItem>("installation_result"),
    dropped<std::int64_t>("installation_time"),
    dropped<PatchSpecifier>("patch_specifier"),
    dropped<std::wstring>("product_name"),
    dropped<std::wstring>("service_pack"),
    readOnly<&LoggedState::status>("status"),
    readOnly<&LoggedState::updateId>("update_id"),
    dropped<std::wstring>("update_name"),
};

template <typename Record>
void readRecord(const json& value, Record& record)
{
    static_assert(std::ranges::is_sorted(fields<Record>, {}, &Field::key));
    readMembers(value, fields<Record>, &record);
}

template <typename Record>
json writeRecord(const Record& record)
{
    return writeMembers(fields<Record>, &record);
}

void read(const json& value, PatchSpecifier& target)
{
    readRecord(value, target);
}

void read(const json& value, PatchStatus& target)
{
    readRecord(value, target);
}

json write(const PatchSpecifier& specifier)
{
    return writeRecord(specifier);
}

json write(const PatchStatus& status)
{
    return writeRecord(status);
}

bool isValueWritten(const json& value, const PatchSpecifier&)
{
    return areMembersWritten(value, fields<PatchSpecifier>);
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

json toJson(const PatchStatus& status)
{
    return writeRecord(status);
}

json toJson(const PatchToInstall& patch)
{
    json object = writeRecord<MissingUpdate>(patch);
    object["status"] = write(patch.status);
    return object;
}

template <typename Record>
bool isAsWritten(const json& value)
{
    return areMembersWritten(value, fields<Record>);
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
    const auto& array = arrayIn(value);
    std::vector<Record> records(array.size());
    for (std::size_t i = 0; i < array.size(); ++i)
        readRecord(array[i], records[i]);
    return records;
}

template <typename Record>
void readEach(json& list, const std::function<void(Record&, json&)>& take)
{
    static_cast<void>(arrayIn(list));
    for (json& element : list) {
        Record record;
        readRecord(element, record);
        take(record, element);
    }
}

template <typename Record>
json listToJson(const std::vector<Record>& records)
{
    json::array_t array;
    array.reserve(records.size());
    for (const Record& record : records)
        array.push_back(toJson(record));
    return array;
}

template bool isAsWritten<DeploymentItem>(const json&);
template bool isAsWritten<MissingUpdate>(const json&);
template DeploymentItem fromJson(const json&);
template MissingUpdate fromJson(const json&);
template InstallationLogEntry fromJson(const json&);
template std::vector<DeploymentItem> listFromJson(const json&);
template std::vector<MissingUpdate> listFromJson(const json&);
template std::vector<InstallationLogEntry> listFromJson(const json&);
template void readEach(json&, const std::function<void(MissingUpdate&, json&)>&);
template void readEach(json&, const std::function<void(LoggedState&, json&)>&);
template json listToJson(const std::vector<DeploymentItem>&);

} // namespace vx::tarn::common
