#pragma once

#include "tarnhd/recovery/recoverydriver.h"

#include <memory>
#include <vector>

namespace vx::settings {
class Settings;
}
namespace vx::tarn::common {
class Event;
class IUpdaterLauncher;
} // namespace vx::tarn::common

namespace vx::tarn {

class TarnpatchManager;

/// What recovery asks for, done with the handler's objects. Borrows them.
class HandlerRecovery : public RecoveryDriver {
public:
    using StoreAccesses = std::vector<std::weak_ptr<settings::Settings>>;

    HandlerRecovery(common::Event& statusChangedEvent, TarnpatchManager& manager,
        common::IUpdaterLauncher& updaterLauncher, const StoreAccesses& accesses);

    void publish() override;
    void startAgent() override;
    bool isAgentStartTaken() const override;
    void writeKeptValues() override;

private:
    common::Event& m_statusChangedEvent;
    TarnpatchManager& m_manager;
    common::IUpdaterLauncher& m_updaterLauncher;
    const StoreAccesses& m_accesses;
};

} // namespace vx::tarn
