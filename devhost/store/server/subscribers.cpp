#include "store/server/subscribers.h"

#include "store/protocol/patterns.h"

#include <algorithm>
#include <utility>

namespace devhost::store {

void Subscriber::push(std::string frame)
{
    {
        const std::lock_guard lock(m_mutex);
        m_frames.push_back(std::move(frame));
    }
    m_wake();
}

std::vector<std::string> Subscriber::take()
{
    const std::lock_guard lock(m_mutex);
    return std::exchange(m_frames, {});
}

void Subscribers::attach(
    const std::string& session, std::set<std::string> names, std::shared_ptr<Subscriber> subscriber)
{
    const std::lock_guard lock(m_mutex);
    m_sessions[session] = {std::move(names), std::move(subscriber)};
}

void Subscribers::detach(const std::string& session, const Subscriber* subscriber)
{
    const std::lock_guard lock(m_mutex);
    const auto found = m_sessions.find(session);
    if (found != m_sessions.end() && found->second.subscriber.get() == subscriber)
        m_sessions.erase(found);
}

void Subscribers::add(const std::string& session, const std::string& name)
{
    const std::lock_guard lock(m_mutex);
    if (const auto found = m_sessions.find(session); found != m_sessions.end())
        found->second.names.insert(name);
}

void Subscribers::remove(const std::string& session, const std::string& name)
{
    const std::lock_guard lock(m_mutex);
    if (const auto found = m_sessions.find(session); found != m_sessions.end())
        found->second.names.erase(name);
}

void Subscribers::publish(const std::string& name, const std::string& frame)
{
    const std::lock_guard lock(m_mutex);
    for (const auto& [id, session] : m_sessions)
        if (std::ranges::any_of(session.names, [&](const auto& wanted) { return matches(wanted, name); }))
            session.subscriber->push(frame);
}

void Subscribers::wakeAll()
{
    const std::lock_guard lock(m_mutex);
    for (const auto& [id, session] : m_sessions)
        session.subscriber->wake();
}

} // namespace devhost::store
