#include "common/patches/patchrecords.h"

#include "common/patches/recordfields.h"
#include "common/utils/jsonvalue.h"

#include <algorithm>

namespace vx::tarn::common {

namespace {

using namespace details;

template <typename Record>
constexpr Field fields[] = {};

template <>
constexpr Field fields<PatchSpecifier>[] = {field<&PatchSpecifier::id>("id"), field<&PatchSpecifier::region>("region")};

constexpr Field droppedSpecifier[] = {dropped<std::wstring>("id"), dropped<std::int64_t>("region")};

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
constexpr Field fields<ListedUpdate>[] = {
    readOnly<&MissingUpdate::bulletinId>("bulletin_id"),
    readOnly<&MissingUpdate::category>("category"),
    dropped<std::vector<std::wstring>>("cve_id"),
    dropped<std::wstring>("description_url"),
    dropped<std::wstring>("end_of_life"),
    readOnly<&MissingUpdate::patchSpecifier>("patch_specifier"),
    readOnly<&MissingUpdate::productName>("product_name"),
    readOnly<&MissingUpdate::servicePack>("service_pack"),
    readOnly<&MissingUpdate::severity>("severity"),
    dropped<std::wstring>("update_id"),
    readOnly<&MissingUpdate::updateName>("update_name"),
    dropped<std::wstring>("user_friendly_update_name"),
    dropped<std::wstring>("vendor"),
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
bool readRecord(const json& value, Record& record)
{
    static_assert(std::ranges::is_sorted(fields<Record>, {}, &Field::key));
    return readMembers(value, fields<Record>, &record);
}

template <typename Record>
json writeRecord(const Record& record)
{
    return writeMembers(fields<Record>, &record);
}

} // namespace

bool details::read(const json& value, PatchSpecifier& target)
{
    return readRecord(value, target);
}

bool details::read(const json& value, PatchStatus& target)
{
    return readRecord(value, target);
}

template <>
bool details::check<PatchSpecifier>(const json& value)
{
    return readMembers(value, droppedSpecifier, nullptr);
}

json details::write(const PatchSpecifier& specifier)
{
    return writeRecord(specifier);
}

json details::write(const PatchStatus& status)
{
    return writeRecord(status);
}

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
Record fromJson(const json& value)
{
    Record record;
    readRecord(value, record);
    return record;
}

template <typename Record>
std::vector<Record> listFromJson(const json& value)
{
    const auto& array = utils::arrayIn(value);
    std::vector<Record> records(array.size());
    for (std::size_t i = 0; i < array.size(); ++i)
        readRecord(array[i], records[i]);
    return records;
}

template <typename Record>
void readEach(json& list, const std::function<void(Record&, json&, bool)>& take)
{
    static_cast<void>(utils::arrayIn(list));
    for (json& element : list) {
        Record record;
        const bool isAsWritten = readRecord(element, record);
        take(record, element, isAsWritten);
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

template DeploymentItem fromJson(const json&);
template MissingUpdate fromJson(const json&);
template InstallationLogEntry fromJson(const json&);
template std::vector<DeploymentItem> listFromJson(const json&);
template std::vector<MissingUpdate> listFromJson(const json&);
template std::vector<InstallationLogEntry> listFromJson(const json&);
template void readEach(json&, const std::function<void(DeploymentItem&, json&, bool)>&);
template void readEach(json&, const std::function<void(ListedUpdate&, json&, bool)>&);
template void readEach(json&, const std::function<void(LoggedState&, json&, bool)>&);
template json listToJson(const std::vector<DeploymentItem>&);

} // namespace vx::tarn::common
