#include "common/settings/keyrow.h"

#include "logging/logstream.h"
#include "settings-api/exceptions.h"
#include "vxtl/str.h"

#include <nlohmann/json.hpp>

namespace vx::tarn {

using settings::Settings;

namespace {

using logging::Level;
using logging::LogStream;

void logFallback(const settings::NotFoundException& exception, const std::wstring& key)
{
    LogStream(Level::Debug) << exception;
    LogStream(Level::Info) << "Setting '" << key << "' not found - fallback to default value";
}

} // namespace

KeyRow::KeyRow(const KeyStore& store, const wchar_t* name, const KeyKind& kind, KeyDefault fallback)
    : m_info{name, &kind, fallback}, m_settings(store.settings.get())
{
    if (store.list)
        store.list->add(m_info);
}

template <typename Get, typename Default>
auto KeyRow::readOr(Get get, Default fallback) const
{
    const std::wstring name = key();
    // Only absence has a default. A value of the wrong type, or a store that refuses, is for the caller to see.
    try {
        return (m_settings->*get)(name);
    } catch (const settings::NotFoundException& exception) {
        logFallback(exception, name);
        return fallback();
    }
}

bool KeyRow::read(std::type_identity<bool>) const
{
    return readOr(&Settings::getBoolValue, [this] { return m_info.fallback.number != 0; });
}

std::int32_t KeyRow::read(std::type_identity<std::int32_t>) const
{
    return readOr(&Settings::getInt32Value, [this] { return static_cast<std::int32_t>(m_info.fallback.number); });
}

std::int64_t KeyRow::read(std::type_identity<std::int64_t>) const
{
    return readOr(&Settings::getInt64Value, [this] { return m_info.fallback.number; });
}

std::wstring KeyRow::read(std::type_identity<std::wstring>) const
{
    return readOr(&Settings::getStringValue, [this] { return str::fromUtf8(m_info.fallback.text); });
}

nlohmann::json KeyRow::read(std::type_identity<nlohmann::json>) const
{
    return readOr(&Settings::getJsonValue, [] { return nlohmann::json::array(); });
}

void KeyRow::write(bool value) const
{
    m_settings->setBoolValue(key(), value);
}

void KeyRow::write(std::int64_t value) const
{
    m_settings->setInt64Value(key(), value);
}

void KeyRow::write(const std::wstring& value) const
{
    m_settings->setStringValue(key(), value);
}

void KeyRow::write(const nlohmann::json& value) const
{
    m_settings->setJsonValue(key(), value);
}

} // namespace vx::tarn
