#pragma once

#include "tarnhd/actionscheduler/actionbase.h"
#include "tarnhd/recovery/recovery.h"

namespace vx::tarn {

/// Periodic: looks for requests that nobody serves. Borrows the recovery, which serves them on its own thread.
class RequestCheck : public ActionBase {
public:
    explicit RequestCheck(Recovery& recovery) : m_recovery(recovery) {}

    common::ExitStatus execute() override
    {
        m_recovery.checkRequests();
        return common::exitstatus::success;
    }

private:
    Recovery& m_recovery;
};

} // namespace vx::tarn
