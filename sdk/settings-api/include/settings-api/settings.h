#pragma once

#include "settings-api/settingsimpl.h"

#include <memory>

namespace vx::settings {

/// The one handle through which code reads and writes the store. Copies share the provider. Any
/// thread; each call does and throws what the provider's operation of that name does.
class Settings {
public:
    explicit Settings(std::shared_ptr<details::SettingsImpl> impl) : m_impl(std::move(impl)) {}

    bool getBoolValue(const std::wstring& name) const { return m_impl->getBoolValue(name); }
    std::int32_t getInt32Value(const std::wstring& name) const { return m_impl->getInt32Value(name); }
    std::int64_t getInt64Value(const std::wstring& name) const { return m_impl->getInt64Value(name); }
    double getDoubleValue(const std::wstring& name) const { return m_impl->getDoubleValue(name); }
    std::wstring getStringValue(const std::wstring& name) const { return m_impl->getStringValue(name); }
    nlohmann::json getJsonValue(const std::wstring& name) const;
    void setBoolValue(const std::wstring& name, bool value) const { m_impl->setBoolValue(name, value); }
    void setInt32Value(const std::wstring& name, std::int32_t value) const { m_impl->setInt32Value(name, value); }
    void setInt64Value(const std::wstring& name, std::int64_t value) const { m_impl->setInt64Value(name, value); }
    void setDoubleValue(const std::wstring& name, double value) const { m_impl->setDoubleValue(name, value); }
    void setStringValue(const std::wstring& name, const std::wstring& value) const
    {
        m_impl->setStringValue(name, value);
    }
    void setJsonValue(const std::wstring& name, const nlohmann::json& value) const
    {
        m_impl->setJsonValue(name, value);
    }
    SubscriptionId subscribeForChanges(const std::wstring& name, const ChangeCallback& callback) const
    {
        return m_impl->subscribeForChanges(name, callback);
    }
    void unsubscribeFromChanges(SubscriptionId id) const { m_impl->unsubscribeFromChanges(id); }

private:
    std::shared_ptr<details::SettingsImpl> m_impl;
};

} // namespace vx::settings
