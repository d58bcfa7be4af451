#include "store/client/client.h"

#include "store/client/callchannel.h"
#include "store/client/notificationchannel.h"
#include "vxtl/clock.h"

#include <nlohmann/json.hpp>

#include <windows.h>

namespace devhost::store {

namespace {

constexpr unsigned long probePauseMs = 20;

} // namespace

Client::Client(std::wstring instance, Role role)
    : m_calls(std::make_shared<CallChannel>(std::move(instance), role)),
      m_notifications(std::make_shared<NotificationChannel>(m_calls, NotificationChannel::Pauses{}))
{}

Client::~Client()
{
    m_notifications->stop();
}

bool Client::waitForServer(std::chrono::milliseconds timeout)
{
    const auto begin = vx::uptime();
    for (;;) {
        // A connection of its own: a call would use up a planned fault.
        if (m_calls->connect({{"channel", "calls"}}))
            return true;
        if (vx::uptime() - begin >= timeout)
            return false;
        // The system can wait for a pipe that is busy, not for one that does not exist yet.
        Sleep(probePauseMs);
    }
}

void Client::open(const std::string& profile, const std::string& account, const std::string& clientName)
{
    m_calls->call({{"op", "open"}, {"profile", profile}, {"account", account}, {"client", clientName}}, "open");
}

std::optional<Value> Client::get(const std::string& name)
{
    const nlohmann::json reply = callUnlessMissing("get", name);
    return reply.is_null() ? std::nullopt : std::optional(Value::fromJson(reply));
}

void Client::set(const std::string& name, const Value& value)
{
    nlohmann::json request = value.toJson();
    request["op"] = "set";
    request["name"] = name;
    m_calls->call(request, name);
}

bool Client::remove(const std::string& name)
{
    return !callUnlessMissing("remove", name).is_null();
}

/// The reply; null when there is no such value.
nlohmann::json Client::callUnlessMissing(const char* operation, const std::string& name)
{
    try {
        return m_calls->call({{"op", operation}, {"name", name}}, name);
    } catch (const StoreException& exception) {
        if (exception.code() == ErrorCode::NotFound)
            return nullptr;
        throw;
    }
}

std::map<std::string, Value> Client::list(const std::string& prefix)
{
    const nlohmann::json reply = m_calls->call({{"op", "list"}, {"prefix", prefix}}, "list");
    std::map<std::string, Value> values;
    for (const auto& [name, value] : reply.at("values").items())
        values.emplace(name, Value::fromJson(value));
    return values;
}

SubscriptionId Client::subscribe(const std::string& name, ChangeCallback callback)
{
    return m_notifications->subscribe(name, std::move(callback));
}

void Client::unsubscribe(SubscriptionId id)
{
    m_notifications->unsubscribe(id);
}

FaultState Client::plan(nlohmann::json request)
{
    request["op"] = "plan";
    return faultStateFromJson(m_calls->call(request, "fault plan").at("plan"));
}

void Client::addFault(const Fault& fault)
{
    plan({{"faults", toJson(FaultState{{fault}, false, 0}).at("faults")}});
}

void Client::clearFaults()
{
    plan({{"clear", true}});
}

void Client::setRefuse(bool refuse)
{
    plan({{"refuse", refuse}});
}

void Client::setDelay(std::chrono::milliseconds delay)
{
    plan({{"delayMs", static_cast<unsigned>(delay.count())}});
}

FaultState Client::faultState()
{
    return plan(nlohmann::json::object());
}

} // namespace devhost::store
