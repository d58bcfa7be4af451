#pragma once

#include "common/settings/settingsenumerations.h"

#include <cstdint>
#include <functional>
#include <nlohmann/json_fwd.hpp>
#include <string>
#include <vector>

// Records that the plug-in and the agent exchange as JSON in the store and the registry. Plain values.
//
// Reading: every key is optional; a missing key or null keeps the default, unknown keys are ignored. A
// wrong type throws the JSON library's type error 302, an unknown enumeration text
// std::invalid_argument. Writing: every field is written; a value outside its enumeration throws
// std::invalid_argument.

namespace vx::tarn::common {

/// What names a patch where it comes from. Unlike the update_id it is not derived from the patch's texts.
struct PatchSpecifier {
    std::wstring id; ///< a GUID's text
    std::int64_t region = 0;
};

/// How far the installation of a patch has come.
struct PatchStatus {
    ValueItem value{};
    std::wstring code; ///< free text that the agent gives with the state
};

/// One element of the deployment queue.
struct DeploymentItem {
    std::wstring operationId; ///< decimal milliseconds since the Unix epoch of the moment of queueing
    std::wstring descriptor;  ///< what to install; its JSON key is "update_id", whatever it names
};

/// What identifies a missing update and what filters match. Read out of the whole record, with the same checks.
struct ListedUpdate {
    PatchSpecifier patchSpecifier;
    std::wstring bulletinId;
    std::wstring productName;
    std::wstring servicePack;
    std::wstring updateName;
    std::int64_t severity = 0; ///< 1 critical, 2 important
    std::int64_t category = 0;
};

/// A patch that a scan found missing, as the agent publishes it.
struct MissingUpdate : ListedUpdate {
    std::wstring updateId;
    std::wstring endOfLife;
    std::wstring vendor;
    std::wstring userFriendlyUpdateName;
    std::vector<std::wstring> cveIds;
    std::wstring descriptionUrl;
};

/// What the publisher needs of an entry in the installation log. Read out of the whole record, with the same checks.
struct LoggedState {
    std::wstring updateId;
    PatchStatus status;
};

/// The last that the agent did with a patch. Of several entries with one update_id the first counts.
struct InstallationLogEntry : LoggedState {
    PatchSpecifier patchSpecifier;
    std::int64_t installationTime = 0; ///< in the agent's unit
    std::wstring bulletinId;
    std::wstring productName;
    std::wstring servicePack;
    std::wstring updateName;
    InstallationResultItem installationResult{};
};

nlohmann::json toJson(const DeploymentItem& item);
nlohmann::json toJson(const MissingUpdate& update);
nlohmann::json toJson(const InstallationLogEntry& entry);
nlohmann::json toJson(const PatchStatus& status);

/// Reads one record: DeploymentItem, MissingUpdate or InstallationLogEntry.
template <typename Record>
Record fromJson(const nlohmann::json& value);

/// Reads an array of records in order. Anything but an array throws type error 302.
template <typename Record>
std::vector<Record> listFromJson(const nlohmann::json& value);
/// Reads an array one by one, DeploymentItem, ListedUpdate or LoggedState, and hands each record over together with
/// its element, while that is still in the processor's cache: a long list is far larger. isAsWritten tells that the
/// element is just as the record would be written: for a LoggedState the whole entry, for a ListedUpdate the whole
/// update behind a PatchInfo, which cuts severity and category to 16 bits.
template <typename Record>
void readEach(
    nlohmann::json& list, const std::function<void(Record&, nlohmann::json& element, bool isAsWritten)>& take);

/// Writes an array of records in order.
template <typename Record>
nlohmann::json listToJson(const std::vector<Record>& records);

} // namespace vx::tarn::common
