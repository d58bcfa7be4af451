#include "handlerlist.h"

#include "logging/details/threadid.h"
#include "logging/nodestructor.h"

#include <algorithm>

namespace vx::tarn::common {

using logging::details::currentThreadId;

HandlerList& HandlerList::instance()
{
    // The library's threads may outlast the static objects.
    static NoDestructor<HandlerList> list;
    return *list;
}

void HandlerList::set(const void* server, const IPCServer::Handler& handler)
{
    SharedHandler shared = handler ? std::make_shared<const IPCServer::Handler>(handler) : nullptr;
    const std::lock_guard lock(m_mutex);
    m_handlers[server].swap(shared);
}

void HandlerList::remove(const void* server)
{
    SharedHandler removed;
    std::unique_lock lock(m_mutex);
    if (const auto found = m_handlers.find(server); found != m_handlers.end()) {
        removed.swap(found->second);
        m_handlers.erase(found);
    }
    m_returned.wait(lock, [&] { return !isCalledElsewhere(server); });
}

// A handler that removes itself would wait for its own return.
bool HandlerList::isCalledElsewhere(const void* server) const
{
    return std::any_of(m_calls.begin(), m_calls.end(), [self = currentThreadId(), server](const UnderWay& call) {
        return call.server == server && call.thread != self;
    });
}

HandlerList::Call::Call(const void* server) : m_entry{{server, currentThreadId()}}, m_place(m_entry.begin())
{
    HandlerList& list = instance();
    const std::lock_guard lock(list.m_mutex);
    if (const auto found = list.m_handlers.find(server); found != list.m_handlers.end())
        m_handler = found->second;
    list.m_calls.splice(list.m_calls.end(), m_entry);
}

HandlerList::Call::~Call()
{
    HandlerList& list = instance();
    // What the handler holds may be its server's owner's, who is let go by the next lines.
    m_handler.reset();
    const std::lock_guard lock(list.m_mutex);
    list.m_calls.erase(m_place);
    list.m_returned.notify_all();
}

} // namespace vx::tarn::common
