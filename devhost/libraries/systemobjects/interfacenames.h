#pragma once

#include "vxtl-com/automaticupdates2.h"
#include "vxtl-com/weeklytrigger.h"

#include <prsht.h>

#include <gpedit.h>

__CRT_UUID_DECL(IGroupPolicyObject, 0xea502723, 0xa23d, 0x11d1, 0xa7, 0xd3, 0x00, 0x00, 0xf8, 0x75, 0x71, 0xe3)

namespace devhost::systemobjects {

/// What a planned failure calls an interface.
template <typename Interface>
inline constexpr const char* nameOf = nullptr;

template <>
inline constexpr const char* nameOf<ITaskService> = "ITaskService";
template <>
inline constexpr const char* nameOf<ITaskFolder> = "ITaskFolder";
template <>
inline constexpr const char* nameOf<IRegisteredTaskCollection> = "IRegisteredTaskCollection";
template <>
inline constexpr const char* nameOf<IRegisteredTask> = "IRegisteredTask";
template <>
inline constexpr const char* nameOf<ITaskDefinition> = "ITaskDefinition";
template <>
inline constexpr const char* nameOf<IRegistrationInfo> = "IRegistrationInfo";
template <>
inline constexpr const char* nameOf<IPrincipal> = "IPrincipal";
template <>
inline constexpr const char* nameOf<ITaskSettings> = "ITaskSettings";
template <>
inline constexpr const char* nameOf<ITriggerCollection> = "ITriggerCollection";
template <>
inline constexpr const char* nameOf<ITrigger> = "ITrigger";
template <>
inline constexpr const char* nameOf<IDailyTrigger> = "IDailyTrigger";
template <>
inline constexpr const char* nameOf<vx::com::IWeeklyTrigger> = "IWeeklyTrigger";
template <>
inline constexpr const char* nameOf<IActionCollection> = "IActionCollection";
template <>
inline constexpr const char* nameOf<IAction> = "IAction";
template <>
inline constexpr const char* nameOf<IExecAction> = "IExecAction";
template <>
inline constexpr const char* nameOf<vx::com::IAutomaticUpdates2> = "IAutomaticUpdates2";
template <>
inline constexpr const char* nameOf<vx::com::IAutomaticUpdatesResults> = "IAutomaticUpdatesResults";
template <>
inline constexpr const char* nameOf<IGroupPolicyObject> = "IGroupPolicyObject";

} // namespace devhost::systemobjects
