#pragma once

#include "common/windowsupdates/iwindowsupdates.h"
#include "common/windowsupdates/windowsupdatesstate.h"

#include <memory>

namespace vx::registry {
class Registry;
}

namespace vx::tarn::common {

class IAutomaticUpdatesDriver;
class IGroupPolicy;

/// Writes the policy's values into the registry and has the policy saved. Policy and kept state stand below keys that
/// are opened and never made: a computer without the policy is left alone.
class WindowsUpdates : public IWindowsUpdates {
public:
    WindowsUpdates(std::shared_ptr<IGroupPolicy> groupPolicy, std::shared_ptr<registry::Registry> registry,
        std::shared_ptr<IAutomaticUpdatesDriver> automaticUpdates);

    ExitStatus pause() override;
    ExitStatus resume() override;
    ExitStatus restore() override;
    Ticks getLastInstallationDate() override;

private:
    /// As much as could be read.
    WindowsUpdatesState getSavedWindowsUpdatesState() const;
    void setSavedWindowsUpdatesState(const WindowsUpdatesState& state) const;
    /// False when not all could be read; the rest of `state` is as it was.
    bool getGroupPolicyWindowsUpdatesState(WindowsUpdatesState& state) const;
    /// Reads the policy into `current` and, when the two differ in whether there are updates, writes `desired`.
    void setGroupPolicyWindowsUpdatesState(const WindowsUpdatesState& desired, WindowsUpdatesState& current) const;
    void writePolicy(const WindowsUpdatesState& state) const;

    std::shared_ptr<IGroupPolicy> m_groupPolicy;
    std::shared_ptr<registry::Registry> m_registry;
    std::shared_ptr<IAutomaticUpdatesDriver> m_automaticUpdates;
    WindowsUpdatesState m_state; ///< what resume is to put back
};

} // namespace vx::tarn::common
