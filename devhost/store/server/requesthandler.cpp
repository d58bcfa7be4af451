#include "store/server/requesthandler.h"

#include "logging/logstream.h"
#include "vxtl/parsejson.h"

#include <nlohmann/json.hpp>
#include <unordered_map>

namespace devhost::store {

namespace {

using nlohmann::json;
using vx::logging::Level;
using vx::logging::LogStream;

constexpr std::size_t longestName = 1024;
constexpr std::size_t longestReply = 64 * 1024 * 1024;

std::string nameOf(const json& request)
{
    std::string name = request.at("name").get<std::string>();
    if (name.empty() || name.size() > longestName)
        throw StoreException(ErrorCode::InvalidParameter, "name");
    return name;
}

/// For values: a closing "*" would make a subscription to it one to many.
std::string valueNameOf(const json& request)
{
    std::string name = nameOf(request);
    if (name.ends_with('*'))
        throw StoreException(ErrorCode::InvalidParameter, "name");
    return name;
}

json failure(ErrorCode code, const char* text = nullptr)
{
    json reply{{"code", static_cast<int>(code)}};
    if (text)
        reply["text"] = text;
    return reply;
}

} // namespace

RequestHandler::RequestHandler(ValueStore values, Save save) : m_values(std::move(values)), m_save(std::move(save)) {}

std::string RequestHandler::handle(const std::string& request, Role role)
{
    json reply{{"code", 0}};
    try {
        dispatch(vx::parseJson(request), role, reply);
    } catch (const StoreException& exception) {
        reply = failure(exception.code());
    } catch (const json::exception& exception) {
        reply = failure(ErrorCode::InvalidParameter, exception.what());
    } catch (const std::exception& exception) {
        reply = failure(ErrorCode::Unknown, exception.what());
    }
    std::string text = reply.dump();
    return text.size() <= longestReply ? text : failure(ErrorCode::SizeLimit).dump();
}

void RequestHandler::dispatch(const json& request, Role role, json& reply)
{
    struct Entry {
        Operation kind;
        Operate operate;
    };
    static const std::unordered_map<std::string, Entry> entries{
        {"open", {Operation::Open, &RequestHandler::open}},
        {"get", {Operation::Get, &RequestHandler::get}},
        {"set", {Operation::Set, &RequestHandler::set}},
        {"remove", {Operation::Set, &RequestHandler::remove}},
        {"list", {Operation::Get, &RequestHandler::list}},
        {"subscribe", {Operation::Subscribe, &RequestHandler::subscribe}},
        {"unsubscribe", {Operation::Unsubscribe, &RequestHandler::unsubscribe}},
        {"plan", {Operation::All, &RequestHandler::plan}},
    };
    const std::string operation = request.at("op").get<std::string>();
    const auto found = entries.find(operation);
    if (found == entries.end() || (found->second.operate == &RequestHandler::plan && role != Role::Tool))
        throw StoreException(ErrorCode::NotAllowed, operation);
    if (role == Role::Application) {
        const std::string name = request.value("name", std::string());
        if (const auto code = m_faults.take(found->second.kind, name)) {
            LogStream(Level::Info) << "Planned fault: " << operation << ' ' << name << " ends with "
                                   << static_cast<int>(*code);
            reply["code"] = static_cast<int>(*code);
            return;
        }
    }
    (this->*found->second.operate)(request, reply);
}

void RequestHandler::open(const json& request, json&)
{
    LogStream(Level::Info) << "Opened by " << request.value("client", std::string()) << ", profile "
                           << request.value("profile", std::string()) << ", account "
                           << request.value("account", std::string());
}

void RequestHandler::get(const json& request, json& reply)
{
    const std::string name = valueNameOf(request);
    const std::lock_guard lock(m_mutex);
    const auto* entry = m_values.find(name);
    if (!entry)
        throw StoreException(ErrorCode::NotFound, name);
    reply.update(entry->value.toJson());
}

void RequestHandler::set(const json& request, json&)
{
    const std::string name = valueNameOf(request);
    Value value = Value::fromJson(request);
    if (value.type() == Type::Object && !json::accept(value.asObject()))
        throw StoreException(ErrorCode::InvalidParameter, name);
    const std::lock_guard lock(m_mutex);
    if (const auto* entry = m_values.find(name)) {
        if (entry->value.type() != value.type())
            throw StoreException(ErrorCode::InvalidType, name);
        if (entry->value == value)
            return;
    }
    change(name, std::move(value));
}

void RequestHandler::remove(const json& request, json&)
{
    const std::string name = valueNameOf(request);
    const std::lock_guard lock(m_mutex);
    if (!m_values.find(name))
        throw StoreException(ErrorCode::NotFound, name);
    change(name, std::nullopt);
}

void RequestHandler::change(const std::string& name, std::optional<Value> value)
{
    auto previous = m_values.put(name, std::move(value));
    try {
        m_save(m_values.serialize());
    } catch (const std::exception& exception) {
        m_values.restore(name, std::move(previous));
        LogStream(Level::Error) << "The store's file was not written. " << exception.what();
        throw;
    }
    m_subscribers.publish(name, notification(name));
}

void RequestHandler::list(const json& request, json& reply)
{
    const std::string prefix = request.value("prefix", std::string());
    json values = json::object();
    const std::lock_guard lock(m_mutex);
    const auto& entries = m_values.entries();
    for (auto entry = entries.lower_bound(prefix); entry != entries.end() && entry->first.starts_with(prefix); ++entry)
        values[entry->first] = entry->second.value.toJson();
    reply["values"] = std::move(values);
}

void RequestHandler::subscribe(const json& request, json& reply)
{
    const std::string name = nameOf(request);
    const std::lock_guard lock(m_mutex);
    m_subscribers.add(request.at("session").get<std::string>(), name);
    reply["revision"] = m_values.revision();
    reply["present"] = m_values.find(name) != nullptr;
}

void RequestHandler::unsubscribe(const json& request, json&)
{
    const std::string name = nameOf(request);
    if (!request.value("keep", false))
        m_subscribers.remove(request.at("session").get<std::string>(), name);
}

void RequestHandler::plan(const json& request, json& reply)
{
    m_faults.apply(request);
    // Connections for notifications lie in wait, and only they close themselves.
    m_subscribers.wakeAll();
    reply["plan"] = toJson(m_faults.state());
}

std::shared_ptr<Subscriber> RequestHandler::attach(const json& hello, std::function<void()> wake)
{
    auto subscriber = std::make_shared<Subscriber>(std::move(wake));
    std::set<std::string> names;
    const std::lock_guard lock(m_mutex);
    for (const auto& [name, known] : hello.at("known").items()) {
        names.insert(name);
        if (changedSince(name, known))
            subscriber->push(notification(name));
    }
    m_subscribers.attach(hello.at("session").get<std::string>(), std::move(names), subscriber);
    return subscriber;
}

void RequestHandler::detach(const std::string& session, const Subscriber* subscriber)
{
    m_subscribers.detach(session, subscriber);
}

bool RequestHandler::changedSince(const std::string& name, const json& known) const
{
    if (name.ends_with('*'))
        return false;
    const auto* entry = m_values.find(name);
    const auto revision = known.at("revision").get<std::int64_t>();
    if (known.at("present").get<bool>() != (entry != nullptr))
        return true;
    // A store that is behind what the client saw is another one.
    return entry && (entry->revision > revision || m_values.revision() < revision);
}

std::string RequestHandler::notification(const std::string& name) const
{
    const auto* entry = m_values.find(name);
    return json{
        {"name", name}, {"type", entry ? static_cast<int>(entry->value.type()) : 0}, {"revision", m_values.revision()}}
        .dump();
}

} // namespace devhost::store
