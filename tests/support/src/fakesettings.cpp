#include "support/fakesettings.h"

#include "settings-api/exceptions.h"
#include "vxtl/str.h"

#include <nlohmann/json.hpp>

namespace support {

using nlohmann::json;

namespace {

const json& require(bool fits, const std::wstring& name, const json& value)
{
    if (!fits)
        VX_THROW(vx::settings::InvalidTypeException, name);
    return value;
}

} // namespace

void FakeSettings::fail(const std::wstring& name, std::exception_ptr error)
{
    const std::lock_guard lock(m_mutex);
    m_errors[name] = std::move(error);
}

void FakeSettings::notify(const std::wstring& name)
{
    std::vector<vx::settings::ChangeCallback> callbacks;
    {
        const std::lock_guard lock(m_mutex);
        for (const auto& [id, subscription] : m_subscriptions)
            if (subscription.name == name)
                callbacks.push_back(subscription.callback);
    }
    for (const auto& callback : callbacks)
        callback(name);
}

void FakeSettings::erase(const std::wstring& name)
{
    const std::lock_guard lock(m_mutex);
    m_values.erase(name);
}

bool FakeSettings::contains(const std::wstring& name) const
{
    const std::lock_guard lock(m_mutex);
    return m_values.count(name) != 0;
}

std::vector<std::wstring> FakeSettings::writes() const
{
    const std::lock_guard lock(m_mutex);
    return m_writes;
}

std::size_t FakeSettings::subscriptions() const
{
    const std::lock_guard lock(m_mutex);
    return m_subscriptions.size();
}

void FakeSettings::throwIfFailing(const std::wstring& name) const
{
    for (const std::wstring& key : {std::wstring(), name})
        if (const auto found = m_errors.find(key); found != m_errors.end() && found->second)
            std::rethrow_exception(found->second);
}

json FakeSettings::read(const std::wstring& name) const
{
    const std::lock_guard lock(m_mutex);
    throwIfFailing(name);
    const auto found = m_values.find(name);
    if (found == m_values.end())
        VX_THROW(vx::settings::NotFoundException, name);
    return *found->second;
}

void FakeSettings::write(const std::wstring& name, json value)
{
    {
        const std::lock_guard lock(m_mutex);
        throwIfFailing(name);
        m_values[name] = std::make_shared<const json>(std::move(value));
        m_writes.push_back(name);
    }
    notify(name);
}

bool FakeSettings::getBoolValue(const std::wstring& name)
{
    const json value = read(name);
    return require(value.is_boolean(), name, value).get<bool>();
}

std::int32_t FakeSettings::getInt32Value(const std::wstring& name)
{
    const json value = read(name);
    return require(value.is_number_integer(), name, value).get<std::int32_t>();
}

std::int64_t FakeSettings::getInt64Value(const std::wstring& name)
{
    const json value = read(name);
    return require(value.is_number_integer(), name, value).get<std::int64_t>();
}

double FakeSettings::getDoubleValue(const std::wstring& name)
{
    const json value = read(name);
    return require(value.is_number_float(), name, value).get<double>();
}

std::wstring FakeSettings::getStringValue(const std::wstring& name)
{
    const json value = read(name);
    return vx::str::fromUtf8(require(value.is_string(), name, value).get_ref<const std::string&>());
}

json FakeSettings::getJsonValue(const std::wstring& name)
{
    return read(name);
}

void FakeSettings::setBoolValue(const std::wstring& name, bool value)
{
    write(name, value);
}

void FakeSettings::setInt32Value(const std::wstring& name, std::int32_t value)
{
    write(name, value);
}

void FakeSettings::setInt64Value(const std::wstring& name, std::int64_t value)
{
    write(name, value);
}

void FakeSettings::setDoubleValue(const std::wstring& name, double value)
{
    write(name, value);
}

void FakeSettings::setStringValue(const std::wstring& name, const std::wstring& value)
{
    write(name, vx::str::toUtf8(value));
}

void FakeSettings::setJsonValue(const std::wstring& name, const json& value)
{
    write(name, value);
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
    m_subscriptions.erase(id);
}

} // namespace support
