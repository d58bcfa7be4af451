#include "host/remoteoperation.h"

#include "host/printer.h"
#include "host/stopsignal.h"
#include "host/storemonitor.h"
#include "vxtl/clock.h"

#include <nlohmann/json.hpp>

namespace devhost::host {

RemoteOperation::RemoteOperation(const Context& context, std::string_view startKey, std::string_view ackKey)
    : m_context(context), m_startKey(startKey), m_ackKey(ackKey), m_values(context.instance)
{}

std::int64_t RemoteOperation::counter(const std::string& key)
{
    const auto value = m_values.get(key);
    return value ? value->asInt64() : 0;
}

std::int64_t RemoteOperation::open()
{
    const auto number = next();
    send(number);
    return number;
}

std::int64_t RemoteOperation::next()
{
    return counter(m_startKey) + 1;
}

void RemoteOperation::send(std::int64_t number)
{
    m_values.set(m_startKey, store::Value::fromInt64(number));
    m_context.printer.event("request", "request " + std::to_string(number) + " is open", {{"start", number}});
}

RemoteOperation::Outcome RemoteOperation::openAndWait(std::chrono::seconds timeout)
{
    const auto begin = vx::uptime();
    const auto number = next();
    Signal closed;
    store::Client changes(m_context.instance);
    changes.subscribe(m_ackKey, [&](const store::Change&) {
        // A newer request of somebody else closes this one, too.
        const auto ack = counter(m_ackKey);
        if (ack == number || ack == counter(m_startKey))
            closed.set();
    });
    changes.subscribe("status.windows.tarnpatch.*",
        [&](const store::Change& change) { printChange(m_context.printer, m_values, change); });
    send(number);
    const auto milliseconds = std::chrono::duration_cast<std::chrono::milliseconds>(timeout).count();
    if (!closed.waitOr(m_context.stop, static_cast<unsigned long>(milliseconds)))
        return Outcome::TimedOut;
    if (!closed.isSet())
        return Outcome::Stopped;
    const auto taken = (vx::uptime() - begin).count();
    m_context.printer.event("acknowledged",
        "request " + std::to_string(number) + " was acknowledged after " + std::to_string(taken) + " ms",
        {{"ack", number}, {"milliseconds", taken}});
    return Outcome::Acknowledged;
}

} // namespace devhost::host
