#pragma once

#include "common/settings/tarnpatchsettings.h"
#include "tarnhd/startreasons/startreasons.h"
#include "vxtl/lock.h"

#include <array>
#include <cstdint>
#include <memory>
#include <optional>

namespace vx::tarn {

/// The remote requests' names in the log.
const char* nameOf(AgentStartReason request);
inline constexpr std::array<AgentStartReason, 2> remoteRequests{
    AgentStartReason::RemoteScan, AgentStartReason::RemoteDeployment};

/// Remembers each request that asks for an agent start, and knows which of them somebody is at work on. A round answers
/// all that were set before it, and acknowledges the values that their requests had when they were set: what comes
/// later is for the next one. Any thread; set reads the store.
class RequestBook : public StartReasons, public std::enable_shared_from_this<RequestBook> {
public:
    explicit RequestBook(const TarnpatchSettings& settings);

    void set(AgentStartReason reason) override;
    AgentStartReason get() const override;
    std::unique_ptr<Round> take() override;

    /// Set and not taken.
    bool isPending(AgentStartReason request) const;
    /// Pending, or a round answers it.
    bool isAttended(AgentStartReason request) const;
    /// Attended since judge said Serve, and its number is the same still. Reads the store.
    bool isServed(AgentStartReason request) const;
    /// Whether a round is under way, one that answers no request included.
    bool isAnyAtWork() const;
    /// Whoever has set it has not done all that belongs to it: no round answers it, not even one that has begun. An
    /// attempt that has not even set it does not count.
    void withdraw(AgentStartReason request);

    /// What is to become of a request that is open although nobody is at work on it.
    enum class Verdict { Serve, LeaveFromNowOn, Leave };
    struct Judgement {
        Verdict verdict;
        unsigned served; ///< how often the answer was Serve, this one included
        unsigned runs;   ///< rounds that have answered it
    };
    /// Counts each Serve. Three of them, or three rounds, are enough; a new value begins anew.
    Judgement judge(AgentStartReason request, std::int64_t start);

private:
    class BookRound;

    struct Entry {
        bool isPending = false;
        std::optional<std::int64_t> pendingStart; ///< empty when it could not be read
        unsigned roundsAtWork = 0;
        unsigned withdrawals = 0; ///< a round that began before the last one does not count
        std::int64_t start = 0;   ///< the value that the counts are of
        unsigned served = 0;
        unsigned runs = 0;
        bool isLeft = false;

        bool isAttended() const { return isPending || roundsAtWork > 0; }
        void countFor(std::int64_t value);
    };

    static std::size_t indexOf(AgentStartReason request) { return static_cast<std::size_t>(request) - 1; }

    const TarnpatchSettings m_settings;
    mutable sync::Mutex m_mutex;
    AgentStartReason m_latest = AgentStartReason::None; ///< guarded by m_mutex
    unsigned m_roundsAtWork = 0;                        ///< guarded by m_mutex
    std::array<Entry, remoteRequests.size()> m_entries; ///< guarded by m_mutex
};

} // namespace vx::tarn
