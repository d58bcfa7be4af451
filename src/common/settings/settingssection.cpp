#include "common/settings/settingssection.h"

#include "logging/logstream.h"
#include "settings-api/exceptions.h"

#include <nlohmann/json.hpp>

namespace vx::tarn {

namespace {

using logging::Level;
using logging::LogStream;

template <typename Value, typename Read>
Value readOr(const Value& defaultValue, const std::wstring& key, Read read)
{
    try {
        return read(key);
    } catch (const settings::NotFoundException& exception) {
        LogStream(Level::Debug) << exception;
        LogStream(Level::Info) << "Setting '" << key << "' not found - fallback to default value";
        return defaultValue;
    }
}

} // namespace

bool SettingsSection::readBool(const wchar_t* key, bool defaultValue) const
{
    return readOr(defaultValue, key, [&](const std::wstring& name) { return m_store->getBoolValue(name); });
}

std::int32_t SettingsSection::readInt32(const wchar_t* key, std::int32_t defaultValue) const
{
    return readOr(defaultValue, key, [&](const std::wstring& name) { return m_store->getInt32Value(name); });
}

std::int64_t SettingsSection::readInt64(const wchar_t* key, std::int64_t defaultValue) const
{
    return readOr(defaultValue, key, [&](const std::wstring& name) { return m_store->getInt64Value(name); });
}

std::wstring SettingsSection::readString(const wchar_t* key, const wchar_t* defaultValue) const
{
    return readOr(
        std::wstring(defaultValue), key, [&](const std::wstring& name) { return m_store->getStringValue(name); });
}

nlohmann::json SettingsSection::readJson(const wchar_t* key, const nlohmann::json& defaultValue) const
{
    return readOr(defaultValue, key, [&](const std::wstring& name) { return m_store->getJsonValue(name); });
}

} // namespace vx::tarn
