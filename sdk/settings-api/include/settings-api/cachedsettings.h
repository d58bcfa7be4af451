#pragma once

#include "logging/functionname.h"
#include "settings-api/details/settingscache.h"
#include "settings-api/settingsimpl.h"

#include <memory>

namespace vx::settings {

/// Remembers the last value seen or written of each setting, in memory only: a read still answers while the
/// provider fails, and a write that failed is repeated after the next read or write that succeeds. Any thread;
/// no lock is held across a call of the provider, so a provider may call back.
///
/// Reads throw NotFoundException, with "Cached value doesn't exist" in place of the name, when the provider fails
/// and nothing is cached, and the JSON library's type error when the cached value is of a type that does not
/// convert. Writes don't throw when the provider fails. Exceptions that are no std::exception pass through.
class CachedSettings : public details::SettingsImpl {
public:
    explicit CachedSettings(std::shared_ptr<details::SettingsImpl> provider);

    bool getBoolValue(const std::wstring& name) override;
    std::int32_t getInt32Value(const std::wstring& name) override;
    std::int64_t getInt64Value(const std::wstring& name) override;
    double getDoubleValue(const std::wstring& name) override;
    std::wstring getStringValue(const std::wstring& name) override;
    nlohmann::json getJsonValue(const std::wstring& name) override;
    void setBoolValue(const std::wstring& name, bool value) override;
    void setInt32Value(const std::wstring& name, std::int32_t value) override;
    void setInt64Value(const std::wstring& name, std::int64_t value) override;
    void setDoubleValue(const std::wstring& name, double value) override;
    void setStringValue(const std::wstring& name, const std::wstring& value) override;
    void setJsonValue(const std::wstring& name, const nlohmann::json& value) override;
    /// Subscriptions are the provider's own; a notification does not change what is cached.
    SubscriptionId subscribeForChanges(const std::wstring& name, const ChangeCallback& callback) override;
    void unsubscribeFromChanges(SubscriptionId id) override;

    virtual ~CachedSettings();
    CachedSettings(const CachedSettings&) = delete;
    CachedSettings& operator=(const CachedSettings&) = delete;

private:
    template <typename Kind>
    typename Kind::Value read(const std::wstring& name, const logging::FunctionName& function);
    template <typename Kind>
    typename Kind::Value readCached(const std::wstring& name, const logging::FunctionName& function) const;
    template <typename Kind>
    void write(const std::wstring& name, const typename Kind::Value& value);
    details::SynchronizeResult synchronize();

    std::shared_ptr<details::SettingsImpl> m_provider;
    details::SettingsCache m_cache;
};

} // namespace vx::settings
