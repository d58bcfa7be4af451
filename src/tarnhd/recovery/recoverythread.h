#pragma once

#include "tarnhd/threads/joinedthread.h"

namespace vx::tarn {

class Recovery;
class Subscriptions;

/// The thread that recovery runs on. Destruction ends it and blocks until its current round is over.
class RecoveryThread {
public:
    /// Borrows both.
    RecoveryThread(Recovery& recovery, Subscriptions& subscriptions);
    ~RecoveryThread();
    RecoveryThread(const RecoveryThread&) = delete;
    RecoveryThread& operator=(const RecoveryThread&) = delete;

private:
    Recovery& m_recovery;
    JoinedThread m_thread;
};

} // namespace vx::tarn
