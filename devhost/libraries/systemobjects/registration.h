#pragma once

#include "machine/machinestate.h"

#include <windows.h>

#include <oleauto.h>
#include <taskschd.h>

// What is added to the scheduler, and how it refuses that. All texts of variants may be VT_EMPTY.
namespace devhost::systemobjects {

/// Adds the folder with those above it.
HRESULT addFolder(machine::MachineState& state, const std::string& path, const VARIANT& sddl);

/// What a caller of RegisterTaskDefinition gives.
struct Registration {
    std::string path;
    nlohmann::json definition;
    LONG flags;
    const VARIANT& user;
    const VARIANT& password;
    TASK_LOGON_TYPE logonType;
    const VARIANT& securityDescriptor;
};

HRESULT registerTask(machine::MachineState& state, const Registration& registration);

} // namespace devhost::systemobjects
