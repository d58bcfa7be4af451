#include "tarnhd/recovery/requestbook.h"

#include "tarnhd/startreasons/remoteoperation.h"
#include "vxtl/guarded.h"

#include <mutex>
#include <optional>
#include <vector>

namespace vx::tarn {

using logging::Level;
using logging::LogStream;

namespace {

constexpr unsigned enough = 3;

} // namespace

const char* nameOf(AgentStartReason request)
{
    return request == AgentStartReason::RemoteScan ? "remote scan" : "remote installation";
}

/// Holds the book: the action thread may outlive all the rest.
class RequestBook::BookRound : public StartReasons::Round {
public:
    explicit BookRound(std::shared_ptr<RequestBook> book) : m_book(std::move(book))
    {
        // Nothing may fail under the book's mutex, which the destructor takes.
        m_answered.reserve(remoteRequests.size());
        const std::lock_guard lock(m_book->m_mutex);
        ++m_book->m_roundsAtWork;
    }
    ~BookRound() override;
    BookRound(const BookRound&) = delete;
    BookRound& operator=(const BookRound&) = delete;

    AgentStartReason reason() const override { return m_reason; }
    void close() override;

    /// Under the book's mutex.
    void take(AgentStartReason latest);

private:
    struct Answered {
        AgentStartReason request;
        unsigned withdrawals;
        std::optional<std::int64_t> start;
    };

    bool isWithdrawn(const Answered& answered) const;

    const std::shared_ptr<RequestBook> m_book;
    AgentStartReason m_reason = AgentStartReason::None;
    std::vector<Answered> m_answered;
};

void RequestBook::BookRound::take(AgentStartReason latest)
{
    for (const AgentStartReason request : remoteRequests) {
        Entry& entry = m_book->m_entries[indexOf(request)];
        if (!entry.isPending)
            continue;
        m_answered.push_back({request, entry.withdrawals, entry.pendingStart});
        entry.isPending = false;
        ++entry.roundsAtWork;
        if (entry.pendingStart)
            entry.countFor(*entry.pendingStart);
        ++entry.runs;
        m_reason = request;
    }
    if (m_answered.size() < 2)
        return;
    m_reason = latest;
    LogStream(Level::Info) << "Recovery: this run answers both requests, the remote scan and the remote installation.";
}

RequestBook::BookRound::~BookRound()
{
    const std::lock_guard lock(m_book->m_mutex);
    --m_book->m_roundsAtWork;
    for (const Answered& answered : m_answered)
        if (Entry& entry = m_book->m_entries[indexOf(answered.request)]; entry.withdrawals == answered.withdrawals)
            --entry.roundsAtWork;
}

bool RequestBook::BookRound::isWithdrawn(const Answered& answered) const
{
    const std::lock_guard lock(m_book->m_mutex);
    return m_book->m_entries[indexOf(answered.request)].withdrawals != answered.withdrawals;
}

void RequestBook::BookRound::close()
{
    const auto& operations = m_book->m_settings.remoteOperations;
    bool isAnyClosed = false;
    for (const Answered& answered : m_answered) {
        if (isWithdrawn(answered))
            continue;
        acknowledge(
            operations, answered.request, answered.start ? *answered.start : startOf(operations, answered.request));
        isAnyClosed = true;
    }
    if (!isAnyClosed)
        sayThatNoneIsClosed();
}

void RequestBook::Entry::countFor(std::int64_t value)
{
    if (value == start)
        return;
    start = value;
    served = runs = 0;
    isLeft = false;
}

RequestBook::RequestBook(const TarnpatchSettings& settings) : m_settings(settings) {}

void RequestBook::set(AgentStartReason reason)
{
    // Now, not when the round begins: what comes in between is acknowledged by nobody who has not seen it.
    std::optional<std::int64_t> start;
    guarded("Recovery: failed to read a request: ", [&] { start = startOf(m_settings.remoteOperations, reason); });
    const std::lock_guard lock(m_mutex);
    m_latest = reason;
    if (reason == AgentStartReason::None)
        return;
    Entry& entry = m_entries[indexOf(reason)];
    entry.isPending = true;
    entry.pendingStart = start;
}

AgentStartReason RequestBook::get() const
{
    const std::lock_guard lock(m_mutex);
    return m_latest;
}

std::unique_ptr<StartReasons::Round> RequestBook::take()
{
    auto round = std::make_unique<BookRound>(shared_from_this());
    const std::lock_guard lock(m_mutex);
    round->take(std::exchange(m_latest, AgentStartReason::None));
    return round;
}

bool RequestBook::isPending(AgentStartReason request) const
{
    const std::lock_guard lock(m_mutex);
    return m_entries[indexOf(request)].isPending;
}

bool RequestBook::isAttended(AgentStartReason request) const
{
    const std::lock_guard lock(m_mutex);
    return m_entries[indexOf(request)].isAttended();
}

bool RequestBook::isServed(AgentStartReason request) const
{
    const auto served = [&]() -> std::optional<std::int64_t> {
        const std::lock_guard lock(m_mutex);
        const Entry& entry = m_entries[indexOf(request)];
        return entry.isAttended() && entry.served > 0 ? std::optional(entry.start) : std::nullopt;
    }();
    return served && startOf(m_settings.remoteOperations, request) == *served;
}

bool RequestBook::isAnyAtWork() const
{
    const std::lock_guard lock(m_mutex);
    return m_roundsAtWork > 0;
}

void RequestBook::withdraw(AgentStartReason request)
{
    const std::lock_guard lock(m_mutex);
    Entry& entry = m_entries[indexOf(request)];
    if (!entry.isAttended() && entry.served > 0)
        --entry.served;
    entry.isPending = false;
    entry.roundsAtWork = 0;
    ++entry.withdrawals;
    if (m_latest == request)
        m_latest = AgentStartReason::None;
}

RequestBook::Judgement RequestBook::judge(AgentStartReason request, std::int64_t start)
{
    const std::lock_guard lock(m_mutex);
    Entry& entry = m_entries[indexOf(request)];
    entry.countFor(start);
    if (entry.served < enough && entry.runs < enough)
        return {Verdict::Serve, ++entry.served, entry.runs};
    const bool wasLeft = std::exchange(entry.isLeft, true);
    return {wasLeft ? Verdict::Leave : Verdict::LeaveFromNowOn, entry.served, entry.runs};
}

} // namespace vx::tarn
