#pragma once

#include "qrl-probe/hostlife.h"
#include "qrl-probe/reportfile.h"
#include "vxtl/lock.h"

namespace tools::qrlprobe {

/// The functions that go into the host's table.
struct Callbacks {
    vx::qrl::PluginInitializeFunction initialize;
    vx::qrl::PluginFunction main;
    vx::qrl::PluginFunction stop;
    vx::qrl::PluginEventFunction onPowerEvent;
    vx::qrl::PluginEventFunction onSessionChangeEvent;
    vx::qrl::PluginResumeFunction onResumeFromLowPowerMode;
};

/// The plug-in that does nothing but watch its host, one for each load of the library. Any thread; the host's calls
/// come with the stack pointer that they were made with. The report is written anew with each change of what it says.
class Probe {
public:
    explicit Probe(const Callbacks& callbacks) : m_callbacks(callbacks), m_host(describeProcess()) {}
    Probe(const Probe&) = delete;
    Probe& operator=(const Probe&) = delete;

    /// 0: done; 1: refused.
    std::uint32_t initialize(
        std::uintptr_t stack, const char* name, vx::qrl::hosterAPI* hoster, vx::qrl::pluginAPI* record) noexcept;
    /// Blocks until the stop. 0: ran and ended; 1: did not run.
    std::uint32_t main(std::uintptr_t stack, vx::qrl::pluginAPI* record) noexcept;
    /// 0: done.
    std::uint32_t stop(std::uintptr_t stack, vx::qrl::pluginAPI* record) noexcept;
    void event(Call call, std::uintptr_t stack, vx::qrl::pluginAPI* record) noexcept;

    /// The library is about to go. Lets a main that is still inside return, and waits some seconds for that. False when
    /// somebody was inside, who may use this object still.
    bool unload() noexcept;
    /// All other threads are gone, wherever they were.
    void endProcess() noexcept;

private:
    class Visit;

    void fill(vx::qrl::pluginAPI& record);
    void tellHost(std::uint32_t state);
    void run();
    template <typename Change>
    void change(Change change);
    void publish();
    std::string report();

    const Callbacks m_callbacks;
    const std::string m_host;
    const ReportFile m_file;
    std::string m_name;                     ///< written by the first initialize
    vx::qrl::hosterAPI* m_hoster = nullptr; ///< the host's, null where it has no use; written by the first initialize
    vx::qrl::ReportPluginStateFunction m_report = nullptr; ///< the host record's, as it was at the first initialize
    vx::qrl::pluginAPI* m_record = nullptr;                ///< the host's; written by the first initialize
    vx::sync::Mutex m_mutex;                               ///< never held across a call into the host
    vx::sync::ConditionVariable m_changed;                 ///< of m_life and m_isLetGo
    HostLife m_life;                                       ///< guarded by m_mutex
    std::size_t m_writtenCalls = 0;                        ///< guarded by m_mutex; how many of m_life's the report has
    bool m_isLetGo = false;                                ///< guarded by m_mutex; main is to return without a stop
};

} // namespace tools::qrlprobe
