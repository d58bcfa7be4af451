#include "store/client/client.h"

#include "store/client/callchannel.h"
#include "store/client/handshake.h"
#include "store/client/notificationchannel.h"
#include "vxtl/clock.h"

#include <nlohmann/json.hpp>

#include <windows.h>

namespace devhost::store {

namespace {

constexpr unsigned long probePauseMs = 20;

} // namespace

std::wstring instanceFromEnvironment()
{
    wchar_t buffer[256];
    const DWORD length = GetEnvironmentVariableW(L"TARNHD_INSTANCE", buffer, 256);
    return length > 0 && length < 256 ? std::wstring(buffer, length) : L"default";
}

class Client::Implementation {
public:
    Implementation(std::wstring instance, Role role)
        : calls(std::make_shared<CallChannel>(std::move(instance), role)),
          notifications(std::make_shared<NotificationChannel>(calls, NotificationChannel::Pauses{}))
    {}
    ~Implementation() { notifications->stop(); }

    FaultState plan(nlohmann::json request)
    {
        request["op"] = "plan";
        return faultStateFromJson(calls->call(request, "fault plan").at("plan"));
    }

    std::shared_ptr<CallChannel> calls;
    std::shared_ptr<NotificationChannel> notifications;
};

Client::Client(std::wstring instance, Role role)
    : m_implementation(std::make_unique<Implementation>(std::move(instance), role))
{}

Client::~Client() = default;

bool Client::waitForServer(std::chrono::milliseconds timeout)
{
    const CallChannel& calls = *m_implementation->calls;
    const auto begin = vx::uptime();
    for (;;) {
        // A connection of its own: a call would use up a planned fault.
        if (openChannel(calls.instance(), calls.role(), {{"channel", "calls"}}, nullptr))
            return true;
        if (vx::uptime() - begin >= timeout)
            return false;
        // The system can wait for a pipe that is busy, not for one that does not exist yet.
        Sleep(probePauseMs);
    }
}

void Client::open(const std::string& profile, const std::string& account, const std::string& clientName)
{
    m_implementation->calls->call(
        {{"op", "open"}, {"profile", profile}, {"account", account}, {"client", clientName}}, "open");
}

std::optional<Value> Client::get(const std::string& name)
{
    try {
        return Value::fromJson(m_implementation->calls->call({{"op", "get"}, {"name", name}}, name));
    } catch (const StoreException& exception) {
        if (exception.code() == ErrorCode::NotFound)
            return std::nullopt;
        throw;
    }
}

void Client::set(const std::string& name, const Value& value)
{
    nlohmann::json request = value.toJson();
    request["op"] = "set";
    request["name"] = name;
    m_implementation->calls->call(request, name);
}

bool Client::remove(const std::string& name)
{
    try {
        m_implementation->calls->call({{"op", "remove"}, {"name", name}}, name);
        return true;
    } catch (const StoreException& exception) {
        if (exception.code() == ErrorCode::NotFound)
            return false;
        throw;
    }
}

std::map<std::string, Value> Client::list(const std::string& prefix)
{
    const nlohmann::json reply = m_implementation->calls->call({{"op", "list"}, {"prefix", prefix}}, "list");
    std::map<std::string, Value> values;
    for (const auto& [name, value] : reply.at("values").items())
        values.emplace(name, Value::fromJson(value));
    return values;
}

SubscriptionId Client::subscribe(const std::string& name, ChangeCallback callback)
{
    return m_implementation->notifications->subscribe(name, std::move(callback));
}

void Client::unsubscribe(SubscriptionId id)
{
    m_implementation->notifications->unsubscribe(id);
}

void Client::addFault(const Fault& fault)
{
    m_implementation->plan({{"faults", toJson(FaultState{{fault}, false, 0}).at("faults")}});
}

void Client::clearFaults()
{
    m_implementation->plan({{"clear", true}});
}

void Client::setRefuse(bool refuse)
{
    m_implementation->plan({{"refuse", refuse}});
}

void Client::setDelay(std::chrono::milliseconds delay)
{
    m_implementation->plan({{"delayMs", static_cast<unsigned>(delay.count())}});
}

FaultState Client::faultState()
{
    return m_implementation->plan(nlohmann::json::object());
}

} // namespace devhost::store
