#pragma once

#include "common/reportevents/reportstates.h"
#include "common/utils/guid.h"

#include <cstdint>
#include <nlohmann/json_fwd.hpp>
#include <string>
#include <variant>

namespace vx::tarn::common {

/// How far a deployment has come on a machine.
struct MachineStateReport {
    utils::Guid deploymentId{};
    std::int64_t machineId = 0;
    MachineStateTarget status{};
    bool failure = false;
    bool terminal = false;
    std::int64_t timestamp = 0; ///< in the agent's unit

    friend bool operator==(const MachineStateReport&, const MachineStateReport&) = default;
};

/// How far a deployment has come with one patch on a machine.
struct PatchStateReport {
    utils::Guid deploymentId{};
    std::int64_t machineId = 0;
    std::int64_t patchId = 0;
    PatchStateTarget status{};
    bool failure = false;
    bool terminal = false;
    std::int64_t timestamp = 0; ///< in the agent's unit

    friend bool operator==(const PatchStateReport&, const PatchStateReport&) = default;
};

/// One state of the machine or of one patch. The type tells which of the record, the return code and the
/// address count. A plain value.
struct ReportEvent {
    ReportEventType type{};
    std::variant<std::monostate, PatchStateReport, MachineStateReport> record;
    std::int32_t retCode = 0;
    std::wstring trackingUri;

    friend bool operator==(const ReportEvent&, const ReportEvent&) = default;
};

/// Writes what the type carries. A record that does not fit the type is written with its defaults, a type or state
/// that is in no table as null.
nlohmann::json toJson(const ReportEvent& event);

/// Every key that the type carries is required. Throws the JSON library's errors and std::runtime_error
/// "Bad GUID format". An unknown state, null too, leaves the field at its default; an event of unknown type has the
/// type's default and nothing else.
ReportEvent reportEventFromJson(const nlohmann::json& value);

} // namespace vx::tarn::common
