#pragma once

#include "ipc/signal.h"
#include "store/client/client.h"

#include <string>
#include <thread>

namespace devhost::host {

class Printer;

/// Shows every change of the store as it happens, and sees to it that the store holds a profile. The store
/// may come up later than this object. Owns a thread until the store is there.
class StoreMonitor {
public:
    /// Whether a store without a profile is given one: the plug-in waits for it.
    enum class Profile { Provide, LeaveAlone };

    StoreMonitor(std::wstring instance, Printer& printer, Profile profile);
    ~StoreMonitor();
    StoreMonitor(const StoreMonitor&) = delete;
    StoreMonitor& operator=(const StoreMonitor&) = delete;

private:
    void waitForStore();
    void attach();

    Printer& m_printer;
    Profile m_profile;
    ipc::Signal m_stop;
    store::Client m_values;
    store::Client m_changes; ///< destroyed first: its callback uses m_values
    std::thread m_thread;
};

/// The value as a console shows it that was not asked for this one: a text without the password in it.
store::Value forShow(const store::Value& value);

/// Prints a change with the value that the key has by now.
void printChange(Printer& printer, store::Client& values, const store::Change& change);

} // namespace devhost::host
