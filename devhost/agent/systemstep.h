#pragma once

#include "vxtl/enumtext.h"

namespace devhost::agent {

/// What a run does for its deployment in Windows itself, beside the deployment.
enum class SystemStep {
    PauseUpdates,
    ResumeUpdates,
    RestoreUpdates,
    Deploy,         ///< the place of the deployment among the others
    Prompt,         ///< for a reboot, in the agent's own session
    PromptSessions, ///< the same in each session that the settings mean
};

inline constexpr auto systemStepTexts = vx::enumTexts<SystemStep>({
    {SystemStep::PauseUpdates, "pause_updates"},
    {SystemStep::ResumeUpdates, "resume_updates"},
    {SystemStep::RestoreUpdates, "restore_updates"},
    {SystemStep::Deploy, "deploy"},
    {SystemStep::Prompt, "prompt"},
    {SystemStep::PromptSessions, "prompt_sessions"},
});
constexpr vx::EnumTexts textsOf(SystemStep)
{
    return {"SystemStep", systemStepTexts};
}

} // namespace devhost::agent
