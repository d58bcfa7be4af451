#pragma once

#include "qrl-probe/apartment.h"
#include "qrl-probe/findings.h"
#include "qrl-probe/introduction.h"

#include <string>
#include <vector>

namespace tools::qrlprobe {

enum class Call { Initialize, Main, Stop, Resume, PowerEvent, SessionEvent };

/// One call of the host, as it comes in.
struct Arrival {
    Call call;
    unsigned long thread;
    std::uintptr_t stack; ///< the stack pointer that the call was made with, under the arguments
    const vx::qrl::pluginAPI* record;
    std::size_t readable; ///< bytes of it, as far as there can be any
};

/// Follows one load of the library through the host's calls, in their order, and judges them. One thread at a time;
/// the same few hundred bytes for however long the host runs.
class HostLife {
public:
    /// Every call, at its very beginning, and at its end.
    void arrive(const Arrival& arrival);
    void leave() { --m_inside; }

    /// Of the export, behind its arrival. False when the plug-in has to refuse: its record can't hold the callbacks,
    /// or it is in use.
    bool introduce(const Introduction& introduction);
    /// From now on the host is to leave the record alone. It stays the host's and is read at each call with it.
    void recordFilled(const vx::qrl::pluginAPI& record);
    /// Of main, behind its arrival, right before it reports the start. False when the plug-in is not to run.
    bool beginMain(Apartment apartment);
    /// The host record is not what it was, right before a report.
    void hosterChanged();
    /// How many bytes the report function took off the stack.
    void reported(std::uint32_t taken);
    /// Main has done its work; it is still to leave. `readable` bytes of the record are there.
    void mainEnded(std::size_t readable);
    void unloading();
    void processEnding();

    bool isStopped() const { return m_stops > 0; }
    bool isInside() const { return m_inside > 0; }
    Findings& findings() { return m_findings; }
    /// The first calls, each in a line without an end.
    const std::vector<std::string>& calls() const { return m_calls; }

private:
    enum class Phase { Loaded, Initialized, Running, Ended };

    void judgeCount(Check check, unsigned count);
    void judgeStack(const Arrival& arrival);
    void judgeRecord(const Arrival& arrival);
    void judgeMembers(std::size_t readable, const std::string& when);
    void judgeThread(const Arrival& arrival);
    void judgeStop(const std::string& what);
    void judgeEvent(const std::string& what);

    Findings m_findings;
    std::vector<std::string> m_calls;
    Phase m_phase = Phase::Loaded;
    unsigned m_inside = 0, m_initializes = 0, m_mains = 0, m_stops = 0;
    unsigned m_leastAlignment = 16;
    unsigned long m_mainThread = 0; ///< of the first main
    const vx::qrl::pluginAPI* m_record = nullptr;
    vx::qrl::pluginAPI m_filled{}; ///< as much of it as the record has room for
};

} // namespace tools::qrlprobe
