#include "tarnhd/recovery/openrequests.h"

#include "tarnhd/recovery/changeanswers.h"
#include "tarnhd/recovery/recoverydriver.h"
#include "tarnhd/startreasons/remoteoperation.h"
#include "vxtl/guarded.h"

#include <algorithm>

namespace vx::tarn {

using logging::Level;
using logging::LogStream;

OpenRequests::OpenRequests(const TarnpatchSettings& settings, std::shared_ptr<RequestBook> book, ChangeAnswers& answers,
    RecoveryDriver& driver)
    : m_settings(settings), m_book(std::move(book)), m_answers(answers), m_driver(driver)
{}

std::optional<std::int64_t> OpenRequests::findOpen(AgentStartReason request) const
{
    if (m_book->isAttended(request))
        return std::nullopt;
    const auto start = startOf(m_settings.remoteOperations, request);
    const auto ack = ackOf(m_settings.remoteOperations, request);
    // Once more: somebody may have begun with it between the two reads.
    if (start == ack || m_book->isAttended(request))
        return std::nullopt;
    // The agent that has asked for the wait acknowledges by itself, and may be about to.
    if (request == AgentStartReason::RemoteDeployment && m_settings.installation.completion.wait())
        return std::nullopt;
    return start;
}

// Set, but the start event is gone: a start of the manager drops it.
bool OpenRequests::isForgotten(AgentStartReason request) const
{
    return m_book->isPending(request) && !m_book->isAnyAtWork() && m_driver.isAgentStartTaken();
}

bool OpenRequests::isAnyLeftAlone() const
{
    return std::ranges::any_of(remoteRequests,
        [this](AgentStartReason request) { return isForgotten(request) || findOpen(request).has_value(); });
}

void OpenRequests::serve()
{
    guarded([&] { askForForgotten(); });
    for (const AgentStartReason request : remoteRequests)
        guarded([&] { m_answers.serve(request, [&] { return judge(request); }); });
}

// Once for both: the second event could come behind the run that the first one begins.
void OpenRequests::askForForgotten()
{
    bool isAny = false;
    const auto look = [&](AgentStartReason request) {
        if (!isForgotten(request))
            return;
        LogStream(Level::Info) << "Recovery: the start for the " << nameOf(request) << " is asked for once more.";
        isAny = true;
    };
    // While nobody answers: an answer sets the reason before it asks for the start.
    for (const AgentStartReason request : remoteRequests)
        m_answers.serve(request, [&] { return look(request), false; });
    if (isAny)
        m_driver.startAgent();
}

bool OpenRequests::judge(AgentStartReason request)
{
    const auto start = findOpen(request);
    if (!start)
        return false;
    const auto [verdict, served, runs] = m_book->judge(request, *start);
    if (verdict == RequestBook::Verdict::Serve)
        LogStream(Level::Info) << "Recovery: the " << nameOf(request) << " " << *start
                               << " was found open with nobody at work on it, it is served (" << served << ").";
    else if (verdict == RequestBook::Verdict::LeaveFromNowOn)
        LogStream(Level::Warning) << "Recovery: the " << nameOf(request) << " " << *start
                                  << " is left open: it was served " << served << " times, and " << runs
                                  << " runs of the agent did not close it.";
    return verdict == RequestBook::Verdict::Serve;
}

} // namespace vx::tarn
