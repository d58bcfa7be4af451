#pragma once

#include "tarnhd/actionscheduler/actionbase.h"

#include <memory>

namespace vx::tarn::common {
class CommonFactory;
class IUpdaterLauncher;
} // namespace vx::tarn::common

namespace vx::tarn {

class TarnpatchSettings;

/// An action that may ask for a scan. Borrows factory and settings, which outlive it; the launcher is its own, so
/// the time since its last start counts this action's requests only. Execution throws what the launcher and the
/// settings throw; its result is always success.
class Action : public ActionBase {
public:
    /// Blocks until the start event can be opened; throws when it can't.
    Action(common::CommonFactory* commonFactory, const TarnpatchSettings* settings);
    ~Action() override;
    Action(const Action&) = delete;
    Action& operator=(const Action&) = delete;

protected:
    common::CommonFactory* const m_commonFactory; ///< borrowed
    const TarnpatchSettings* const m_settings;    ///< borrowed
    const std::shared_ptr<common::IUpdaterLauncher> m_updaterLauncher;
};

} // namespace vx::tarn
