#pragma once

#include "common/reboot/rebootdialog.h"
#include "vxtl/clock.h"

#include <string>

namespace vx::registry {
class Registry;
}

namespace vx::tarn::common {

/// Tells users of a reboot with the host product's restart program, which the registry names. One thread.
class VxRestart : public RebootDialog {
public:
    VxRestart(std::shared_ptr<settings::Settings> settings, ProcessMaker createProcess,
        std::shared_ptr<IUserSessions> sessions, std::shared_ptr<registry::Registry> registry,
        WallClock now = systemTicks);

    /// Starts the program in the session of this process; a failure is logged and false.
    bool showRebootDialog() override;
    bool rebootForSession(const SharedHandle& token) override;

    /// The restart program and its arguments. The time to force the reboot counts from this call. A failure is logged
    /// and false.
    bool getExecutable(std::wstring& executable, std::wstring& arguments);

private:
    /// The same, with the log line of those who can't go on without.
    bool requireExecutable(std::wstring& executable, std::wstring& arguments);

    const std::shared_ptr<registry::Registry> m_registry;
    const WallClock m_now;
};

} // namespace vx::tarn::common
