#include "store/server/valuestore.h"

#include "store/protocol/errorcode.h"
#include "vxtl/parsejson.h"

#include <nlohmann/json.hpp>

namespace devhost::store {

namespace {

constexpr auto formatName = "tarnhd store";
constexpr int formatVersion = 1;

} // namespace

ValueStore ValueStore::parse(const std::string& text)
{
    try {
        const nlohmann::json json = vx::parseJson(text);
        if (json.at("format") != formatName || json.at("version") != formatVersion)
            throw StoreException(ErrorCode::SchemaViolation, "format", "not a store of version 1");
        ValueStore store;
        store.m_revision = json.at("revision").get<std::int64_t>();
        for (const auto& [name, entry] : json.at("values").items())
            store.m_entries.emplace(name, Entry{Value::fromJson(entry), entry.at("revision").get<std::int64_t>()});
        return store;
    } catch (const nlohmann::json::exception& exception) {
        throw StoreException(ErrorCode::SchemaViolation, "content", exception.what());
    } catch (const StoreException& exception) {
        throw StoreException(ErrorCode::SchemaViolation, "content", exception.what());
    }
}

std::string ValueStore::serialize() const
{
    nlohmann::json values = nlohmann::json::object();
    for (const auto& [name, entry] : m_entries) {
        nlohmann::json json = entry.value.toJson();
        json["revision"] = entry.revision;
        values[name] = std::move(json);
    }
    // A person may look into the file, so each value has lines of its own.
    return nlohmann::json{{"format", formatName}, {"version", formatVersion}, {"revision", m_revision},
               {"values", std::move(values)}}
               .dump(1) +
           "\n";
}

const ValueStore::Entry* ValueStore::find(const std::string& name) const
{
    const auto found = m_entries.find(name);
    return found == m_entries.end() ? nullptr : &found->second;
}

std::optional<ValueStore::Entry> ValueStore::put(const std::string& name, std::optional<Value> value)
{
    std::optional<Entry> previous;
    if (const auto node = m_entries.extract(name))
        previous = std::move(node.mapped());
    ++m_revision;
    if (value)
        m_entries.emplace(name, Entry{std::move(*value), m_revision});
    return previous;
}

void ValueStore::restore(const std::string& name, std::optional<Entry> previous)
{
    --m_revision;
    m_entries.erase(name);
    if (previous)
        m_entries.emplace(name, std::move(*previous));
}

} // namespace devhost::store
