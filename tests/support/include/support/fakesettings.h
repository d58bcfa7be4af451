#pragma once

#include "settings-api/exceptions.h"
#include "settings-api/settings.h"
#include "vxtl/str.h"

#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <nlohmann/json.hpp>
#include <stdexcept>
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

    /// By a row of the product's table of keys, whatever its type; null for a missing one.
    template <typename Row>
    json get(const Row& row) const
    {
        const std::lock_guard lock(m_mutex);
        const auto found = m_values.find(row.key());
        return found == m_values.end() ? json() : found->second;
    }
    template <typename Row>
    void set(const Row& row, json value)
    {
        write(row.key(), std::move(value));
    }

    /// Every operation on the name calls `raise`, which throws, until the repair. The empty name stands for all names.
    void fail(Name name, std::function<void()> raise)
    {
        const std::lock_guard lock(m_mutex);
        m_errors[name] = std::move(raise);
    }
    void breakDown(Name name = {})
    {
        fail(name, [] { throw std::runtime_error("store is down"); });
    }
    void repair(Name name = {})
    {
        const std::lock_guard lock(m_mutex);
        m_errors.erase(name);
    }
    /// Calls the subscribers of the name.
    void notify(Name name)
    {
        std::unique_lock lock(m_mutex);
        const auto subscriptions = m_subscriptions;
        lock.unlock();
        for (const auto& [id, subscription] : subscriptions)
            if (subscription.first == name)
                subscription.second(name);
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
    vx::settings::SubscriptionId subscribeForChanges(Name name, const vx::settings::ChangeCallback& callback) override
    {
        const std::lock_guard lock(m_mutex);
        throwIfFailing(name);
        m_subscriptions[++m_lastId] = {name, callback};
        return m_lastId;
    }
    void unsubscribeFromChanges(vx::settings::SubscriptionId id) override
    {
        const std::lock_guard lock(m_mutex);
        if (m_subscriptions.contains(id))
            throwIfFailing(m_subscriptions[id].first);
        m_subscriptions.erase(id);
    }

private:
    void throwIfFailing(Name name) const
    {
        for (const std::wstring& key : {std::wstring(), name})
            if (const auto found = m_errors.find(key); found != m_errors.end())
                found->second();
    }
    json read(Name name, bool (json::*fits)() const noexcept) const
    {
        const std::lock_guard lock(m_mutex);
        throwIfFailing(name);
        const auto found = m_values.find(name);
        if (found == m_values.end())
            VX_THROW(vx::settings::NotFoundException, name);
        if (fits && !(found->second.*fits)())
            VX_THROW(vx::settings::InvalidTypeException, name);
        return found->second;
    }
    void write(Name name, json value)
    {
        {
            const std::lock_guard lock(m_mutex);
            throwIfFailing(name);
            m_values[name] = std::move(value);
            m_writes.push_back(name);
        }
        notify(name);
    }

    mutable std::mutex m_mutex; ///< never held while a subscriber runs
    std::map<std::wstring, json> m_values;
    std::map<std::wstring, std::function<void()>> m_errors; ///< each throws
    std::map<vx::settings::SubscriptionId, std::pair<std::wstring, vx::settings::ChangeCallback>> m_subscriptions;
    vx::settings::SubscriptionId m_lastId = 0;
    std::vector<std::wstring> m_writes;
};

} // namespace support
