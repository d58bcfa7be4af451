#include "tarnhd/handler/schedulerthread.h"

#include "tarnhd/actionscheduler/actionscheduler.h"
#include "vxtl/guarded.h"

namespace vx::tarn {

SchedulerThread::SchedulerThread(ActionScheduler& scheduler, std::chrono::milliseconds period)
    : m_scheduler(scheduler), m_period(period), m_thread([this] { m_scheduler.start(m_period, true); })
{}

SchedulerThread::~SchedulerThread()
{
    // An owner that leaves with an exception has not been stopped.
    guarded([this] { m_scheduler.stop(); });
}

} // namespace vx::tarn
