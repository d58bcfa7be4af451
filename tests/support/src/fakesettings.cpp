#include "support/fakesettings.h"

#include "settings-api/exceptions.h"

#include <stdexcept>

namespace support {

using nlohmann::json;

void FakeSettings::fail(const std::wstring& name, std::exception_ptr error)
{
    const std::lock_guard lock(m_mutex);
    if (error)
        m_errors[name] = [error] { std::rethrow_exception(error); };
    else
        m_errors.erase(name);
}

void FakeSettings::breakDown(const std::wstring& name)
{
    const std::lock_guard lock(m_mutex);
    m_errors[name] = [] { throw std::runtime_error("store is down"); };
}

void FakeSettings::notify(const std::wstring& name)
{
    std::vector<vx::settings::ChangeCallback> callbacks;
    {
        const std::lock_guard lock(m_mutex);
        for (const auto& [id, subscription] : m_subscriptions)
            if (subscription.first == name)
                callbacks.push_back(subscription.second);
    }
    for (const auto& callback : callbacks)
        callback(name);
}

void FakeSettings::throwIfFailing(const std::wstring& name) const
{
    for (const std::wstring& key : {std::wstring(), name})
        if (const auto found = m_errors.find(key); found != m_errors.end())
            found->second();
}

json FakeSettings::read(const std::wstring& name, bool (json::*fits)() const noexcept) const
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

void FakeSettings::write(const std::wstring& name, json value)
{
    {
        const std::lock_guard lock(m_mutex);
        throwIfFailing(name);
        m_values[name] = std::move(value);
        m_writes.push_back(name);
    }
    notify(name);
}

vx::settings::SubscriptionId FakeSettings::subscribeForChanges(
    const std::wstring& name, const vx::settings::ChangeCallback& callback)
{
    const std::lock_guard lock(m_mutex);
    throwIfFailing(name);
    m_subscriptions[++m_lastId] = {name, callback};
    return m_lastId;
}

void FakeSettings::unsubscribeFromChanges(vx::settings::SubscriptionId id)
{
    const std::lock_guard lock(m_mutex);
    if (const auto found = m_subscriptions.find(id); found != m_subscriptions.end()) {
        throwIfFailing(found->second.first);
        m_subscriptions.erase(found);
    }
}

} // namespace support
