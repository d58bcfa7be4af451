#pragma once

#include "ipc/signal.h"
#include "records/recordfile.h"

#include <string>
#include <thread>

namespace devhost::host {

class Printer;

/// Shows what the stand-ins for the host's libraries are told, in whichever process of the instance, from construction
/// on. Owns a thread.
class RecordMonitor {
public:
    RecordMonitor(const std::wstring& instance, Printer& printer);
    /// What was told until now is shown first.
    ~RecordMonitor();
    RecordMonitor(const RecordMonitor&) = delete;
    RecordMonitor& operator=(const RecordMonitor&) = delete;

private:
    struct Place {
        explicit Place(const std::wstring& instance, const wchar_t* kind);

        const records::RecordFile file;
        std::uint64_t position = 0; ///< behind what was shown
    };

    void run();
    void showNew();

    Printer& m_printer;
    Place m_flyers, m_alerts; ///< the thread's while it runs
    const ipc::Signal m_stop;
    std::thread m_thread;
};

} // namespace devhost::host
