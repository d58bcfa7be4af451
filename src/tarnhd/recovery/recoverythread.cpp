#include "tarnhd/recovery/recoverythread.h"

#include "tarnhd/recovery/recovery.h"

namespace vx::tarn {

RecoveryThread::RecoveryThread(Recovery& recovery, Subscriptions& subscriptions)
    : m_recovery(recovery), m_thread([this, &subscriptions] { m_recovery.run(subscriptions); })
{}

RecoveryThread::~RecoveryThread()
{
    m_recovery.stop();
}

} // namespace vx::tarn
