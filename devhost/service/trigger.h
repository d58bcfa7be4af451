#pragma once

#include "vxtl/enumtext.h"

#include <cstdint>

// The registry key by which somebody asks for the stop of the Windows Update service and for a reboot. The functions
// throw Win32Exception.
namespace devhost::service {

/// How the time of the request is written; the plug-in takes the first only.
enum class TriggerType { Qword, Dword, String, None };

inline constexpr auto triggerTypeTexts = vx::enumTexts<TriggerType>({{TriggerType::Qword, "qword"},
    {TriggerType::Dword, "dword"}, {TriggerType::String, "string"}, {TriggerType::None, "none"}});
constexpr vx::EnumTexts textsOf(TriggerType)
{
    return {"TriggerType", triggerTypeTexts};
}

/// `created`: since when, in seconds since the Unix epoch.
void makeTrigger(std::int64_t created, TriggerType type = TriggerType::Qword);
/// Whether there was one.
bool deleteTrigger();

} // namespace devhost::service
