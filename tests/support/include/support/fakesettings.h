#pragma once

#include "settings-api/settings.h"

#include <exception>
#include <map>
#include <memory>
#include <mutex>
#include <vector>

namespace support {

/// A store in memory. A missing name throws NotFoundException, a value of another kind InvalidTypeException. A
/// write calls the subscribers of its name before it returns, on the writing thread. Any thread.
class FakeSettings : public vx::settings::details::SettingsImpl {
public:
    virtual ~FakeSettings() = default;

    /// The handle that the product's classes take.
    static std::shared_ptr<vx::settings::Settings> handle(std::shared_ptr<FakeSettings> store)
    {
        return std::make_shared<vx::settings::Settings>(std::move(store));
    }

    /// Reads and writes of the name throw `error`; null heals. The empty name stands for all names.
    void fail(const std::wstring& name, std::exception_ptr error);
    /// Calls the subscribers of the name.
    void notify(const std::wstring& name);
    void erase(const std::wstring& name);
    bool contains(const std::wstring& name) const;
    /// Names in the order of successful writes.
    std::vector<std::wstring> writes() const;
    std::size_t subscriptions() const;

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
    vx::settings::SubscriptionId subscribeForChanges(
        const std::wstring& name, const vx::settings::ChangeCallback& callback) override;
    void unsubscribeFromChanges(vx::settings::SubscriptionId id) override;

private:
    struct Subscription {
        std::wstring name;
        vx::settings::ChangeCallback callback;
    };

    void throwIfFailing(const std::wstring& name) const;
    nlohmann::json read(const std::wstring& name) const;
    void write(const std::wstring& name, nlohmann::json value);

    mutable std::mutex m_mutex; ///< never held while a subscriber runs
    std::map<std::wstring, std::shared_ptr<const nlohmann::json>> m_values;
    std::map<std::wstring, std::exception_ptr> m_errors;
    std::map<vx::settings::SubscriptionId, Subscription> m_subscriptions;
    vx::settings::SubscriptionId m_lastId = 0;
    std::vector<std::wstring> m_writes;
};

} // namespace support
