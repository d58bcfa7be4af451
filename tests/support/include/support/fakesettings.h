#pragma once

#include "settings-api/settings.h"
#include "vxtl/str.h"

#include <exception>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <nlohmann/json.hpp>
#include <vector>

namespace support {

/// A store in memory. A missing name throws NotFoundException, a value of another kind InvalidTypeException. A
/// write calls the subscribers of its name before it returns, on the writing thread. Any thread.
class FakeSettings : public vx::settings::details::SettingsImpl {
public:
    using Name = const std::wstring&;
    using json = nlohmann::json;

    virtual ~FakeSettings() = default;

    /// The handle that the product's classes take.
    static std::shared_ptr<vx::settings::Settings> handle(std::shared_ptr<FakeSettings> store)
    {
        return std::make_shared<vx::settings::Settings>(std::move(store));
    }

    /// Every operation on the name throws `error`; null heals. The empty name stands for all names.
    void fail(Name name, std::exception_ptr error);
    /// The same with an exception of its own for each call, as threads may share none.
    void breakDown(Name name = {});
    void repair(Name name = {}) { fail(name, nullptr); }
    /// Calls the subscribers of the name.
    void notify(Name name);
    void erase(Name name)
    {
        const std::lock_guard lock(m_mutex);
        m_values.erase(name);
    }
    bool contains(Name name) const
    {
        const std::lock_guard lock(m_mutex);
        return m_values.contains(name);
    }
    /// Names in the order of successful writes.
    std::vector<std::wstring> writes() const
    {
        const std::lock_guard lock(m_mutex);
        return m_writes;
    }
    std::size_t subscriptions() const
    {
        const std::lock_guard lock(m_mutex);
        return m_subscriptions.size();
    }

    bool getBoolValue(Name name) override { return read(name, &json::is_boolean).get<bool>(); }
    std::int32_t getInt32Value(Name name) override { return read(name, &json::is_number_integer).get<std::int32_t>(); }
    std::int64_t getInt64Value(Name name) override { return read(name, &json::is_number_integer).get<std::int64_t>(); }
    double getDoubleValue(Name name) override { return read(name, &json::is_number_float).get<double>(); }
    std::wstring getStringValue(Name name) override
    {
        return vx::str::fromUtf8(read(name, &json::is_string).get<std::string>());
    }
    json getJsonValue(Name name) override { return read(name, nullptr); }
    void setBoolValue(Name name, bool value) override { write(name, value); }
    void setInt32Value(Name name, std::int32_t value) override { write(name, value); }
    void setInt64Value(Name name, std::int64_t value) override { write(name, value); }
    void setDoubleValue(Name name, double value) override { write(name, value); }
    void setStringValue(Name name, const std::wstring& value) override { write(name, vx::str::toUtf8(value)); }
    void setJsonValue(Name name, const json& value) override { write(name, value); }
    vx::settings::SubscriptionId subscribeForChanges(Name name, const vx::settings::ChangeCallback& callback) override;
    void unsubscribeFromChanges(vx::settings::SubscriptionId id) override;

private:
    void throwIfFailing(Name name) const;
    json read(Name name, bool (json::*fits)() const noexcept) const;
    void write(Name name, json value);

    mutable std::mutex m_mutex; ///< never held while a subscriber runs
    std::map<std::wstring, json> m_values;
    std::map<std::wstring, std::function<void()>> m_errors; ///< each throws
    std::map<vx::settings::SubscriptionId, std::pair<std::wstring, vx::settings::ChangeCallback>> m_subscriptions;
    vx::settings::SubscriptionId m_lastId = 0;
    std::vector<std::wstring> m_writes;
};

} // namespace support
