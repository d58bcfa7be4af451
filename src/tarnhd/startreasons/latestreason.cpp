#include "tarnhd/startreasons/latestreason.h"

#include "tarnhd/startreasons/remoteoperation.h"

#include <utility>

namespace vx::tarn {

namespace {

class LatestRound : public StartReasons::Round {
public:
    LatestRound(const TarnpatchSettings& settings, AgentStartReason reason) : m_settings(settings), m_reason(reason) {}

    AgentStartReason reason() const override { return m_reason; }
    void close() override
    {
        if (m_reason == AgentStartReason::None)
            sayThatNoneIsClosed();
        else
            acknowledge(m_settings.remoteOperations, m_reason, startOf(m_settings.remoteOperations, m_reason));
    }

private:
    const TarnpatchSettings m_settings;
    const AgentStartReason m_reason;
};

} // namespace

LatestReason::LatestReason(const TarnpatchSettings& settings) : m_settings(settings) {}

void LatestReason::set(AgentStartReason reason)
{
    const std::lock_guard lock(m_mutex);
    m_reason = reason;
}

AgentStartReason LatestReason::get() const
{
    const std::lock_guard lock(m_mutex);
    return m_reason;
}

std::unique_ptr<StartReasons::Round> LatestReason::take()
{
    const std::lock_guard lock(m_mutex);
    return std::make_unique<LatestRound>(m_settings, std::exchange(m_reason, AgentStartReason::None));
}

} // namespace vx::tarn
