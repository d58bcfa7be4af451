#pragma once

#include "common/settings/tarnpatchsettings.h"
#include "tarnhd/startreasons/startreasons.h"
#include "vxtl/lock.h"

namespace vx::tarn {

/// Keeps one reason: the later of two wins. A round acknowledges the request as it stands at its end.
class LatestReason : public StartReasons {
public:
    explicit LatestReason(const TarnpatchSettings& settings);

    void set(AgentStartReason reason) override;
    AgentStartReason get() const override;
    std::unique_ptr<Round> take() override;

private:
    const TarnpatchSettings m_settings;
    mutable sync::Mutex m_mutex;
    AgentStartReason m_reason = AgentStartReason::None; ///< guarded by m_mutex
};

} // namespace vx::tarn
