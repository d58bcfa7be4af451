#include "common/patches/patchrecords.h"

#include "common/patches/recordfields.h"
#include "common/utils/jsonvalue.h"

#include <algorithm>

namespace vx::tarn::common {

namespace {

using namespace details;

// One table a record, read and written by the same code: a read that converts member by member in templates would be
// there once for each record, and these are a good part of the library.
template <typename Record>
constexpr Field fields[] = {};

template <>
constexpr Field fields<PatchSpecifier>[] = {
    field<PatchSpecifier, &PatchSpecifier::id>("id"), field<PatchSpecifier, &PatchSpecifier::region>("region")};

// What is dropped is checked all the same: a list that the one reader takes must not be refused by another.
constexpr Field droppedSpecifier[] = {
    dropped<void, &PatchSpecifier::id>("id"), dropped<void, &PatchSpecifier::region>("region")};

template <>
constexpr Field fields<PatchStatus>[] = {
    field<PatchStatus, &PatchStatus::code>("code"), field<PatchStatus, &PatchStatus::value>("value")};

template <>
constexpr Field fields<DeploymentItem>[] = {field<DeploymentItem, &DeploymentItem::operationId>("operation_id"),
    field<DeploymentItem, &DeploymentItem::descriptor>("update_id")};

template <>
constexpr Field fields<MissingUpdate>[] = {
    field<MissingUpdate, &MissingUpdate::bulletinId>("bulletin_id"),
    field<MissingUpdate, &MissingUpdate::category>("category"),
    field<MissingUpdate, &MissingUpdate::cveIds>("cve_id"),
    field<MissingUpdate, &MissingUpdate::descriptionUrl>("description_url"),
    field<MissingUpdate, &MissingUpdate::endOfLife>("end_of_life"),
    field<MissingUpdate, &MissingUpdate::patchSpecifier>("patch_specifier"),
    field<MissingUpdate, &MissingUpdate::productName>("product_name"),
    field<MissingUpdate, &MissingUpdate::servicePack>("service_pack"),
    field<MissingUpdate, &MissingUpdate::severity>("severity"),
    field<MissingUpdate, &MissingUpdate::updateId>("update_id"),
    field<MissingUpdate, &MissingUpdate::updateName>("update_name"),
    field<MissingUpdate, &MissingUpdate::userFriendlyUpdateName>("user_friendly_update_name"),
    field<MissingUpdate, &MissingUpdate::vendor>("vendor"),
};

template <>
constexpr Field fields<ListedUpdate>[] = {
    readOnly<ListedUpdate, &ListedUpdate::bulletinId>("bulletin_id"),
    narrowed<ListedUpdate, &ListedUpdate::category>("category"),
    dropped<ListedUpdate, &MissingUpdate::cveIds>("cve_id"),
    dropped<ListedUpdate, &MissingUpdate::descriptionUrl>("description_url"),
    dropped<ListedUpdate, &MissingUpdate::endOfLife>("end_of_life"),
    readOnly<ListedUpdate, &ListedUpdate::patchSpecifier>("patch_specifier"),
    readOnly<ListedUpdate, &ListedUpdate::productName>("product_name"),
    readOnly<ListedUpdate, &ListedUpdate::servicePack>("service_pack"),
    narrowed<ListedUpdate, &ListedUpdate::severity>("severity"),
    dropped<ListedUpdate, &MissingUpdate::updateId>("update_id"),
    readOnly<ListedUpdate, &ListedUpdate::updateName>("update_name"),
    dropped<ListedUpdate, &MissingUpdate::userFriendlyUpdateName>("user_friendly_update_name"),
    dropped<ListedUpdate, &MissingUpdate::vendor>("vendor"),
};

template <>
constexpr Field fields<InstallationLogEntry>[] = {
    field<InstallationLogEntry, &InstallationLogEntry::bulletinId>("bulletin_id"),
    field<InstallationLogEntry, &InstallationLogEntry::installationResult>("installation_result"),
    field<InstallationLogEntry, &InstallationLogEntry::installationTime>("installation_time"),
    field<InstallationLogEntry, &InstallationLogEntry::patchSpecifier>("patch_specifier"),
    field<InstallationLogEntry, &InstallationLogEntry::productName>("product_name"),
    field<InstallationLogEntry, &InstallationLogEntry::servicePack>("service_pack"),
    field<InstallationLogEntry, &InstallationLogEntry::status>("status"),
    field<InstallationLogEntry, &InstallationLogEntry::updateId>("update_id"),
    field<InstallationLogEntry, &InstallationLogEntry::updateName>("update_name"),
};

template <>
constexpr Field fields<LoggedState>[] = {
    dropped<LoggedState, &InstallationLogEntry::bulletinId>("bulletin_id"),
    dropped<LoggedState, &InstallationLogEntry::installationResult>("installation_result"),
    dropped<LoggedState, &InstallationLogEntry::installationTime>("installation_time"),
    dropped<LoggedState, &InstallationLogEntry::patchSpecifier>("patch_specifier"),
    dropped<LoggedState, &InstallationLogEntry::productName>("product_name"),
    dropped<LoggedState, &InstallationLogEntry::servicePack>("service_pack"),
    readOnly<LoggedState, &LoggedState::status>("status"),
    readOnly<LoggedState, &LoggedState::updateId>("update_id"),
    dropped<LoggedState, &InstallationLogEntry::updateName>("update_name"),
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

json toJson(const InstallationLogEntry& entry)
{
    return writeRecord(entry);
}

json toJson(const PatchStatus& status)
{
    return writeRecord(status);
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
