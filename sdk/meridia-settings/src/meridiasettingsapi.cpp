#include "meridia-settings/meridiasettingsapi.h"

#include "changesubscription.h"
#include "doubletext.h"
#include "storefailure.h"

#include "logging/logstream.h"
#include "vxtl/credentials.h"
#include "vxtl/guarded.h"
#include "vxtl/parsejson.h"
#include "vxtl/scopeexit.h"

#include <algorithm>
#include <memory>
#include <nlohmann/json.hpp>

namespace vx::meridia {

namespace {

using Error = QrlMeridiaError_enum;
using logging::Level;
using logging::LogStream;

/// A text of the library, given back on every way out.
template <typename Character>
using LibraryText = std::unique_ptr<Character, void(VX_CDECL*)(void*)>;

template <typename Character>
std::basic_string<Character> copyOf(const LibraryText<Character>& text)
{
    return text ? text.get() : std::basic_string<Character>();
}

} // namespace

SettingsApi::SettingsApi(
    const std::wstring& profile, const std::wstring& sid, const std::wstring& client, const LoadApi& loadApi)
{
    VX_LOG_SCOPE();
    ScopeExit opened([this] {
        for (const QrlMeridiaHandle handle : m_handles)
            if (handle != 0)
                m_api.closeHandle(handle);
    });
    if (loadApi(m_api) != delayload::LoadStatus::Success)
        VX_THROW(BaseException, L"Cannot load QRL Meridia library");
    for (QrlMeridiaHandle& handle : m_handles) {
        Error error = Error::Success;
        handle = m_api.openHandle(profile.c_str(), sid.c_str(), client.c_str(), &error);
        if (error != Error::Success)
            VX_THROW(QrlMeridiaException, error, errorText(error));
    }
    opened.dismiss();
}

SettingsApi::~SettingsApi()
{
    VX_LOG_SCOPE();
    // Only slots without a handle are closed. An open handle stays open: notifications may still be on their way.
    for (const QrlMeridiaHandle handle : m_handles)
        if (handle == 0)
            m_api.closeHandle(0);
    for (const Record& record : m_subscriptions)
        if (record->isKnownToLibrary)
            record->leaveToLibrary();
        else
            record->callback().close();
}

bool SettingsApi::getBoolValue(const std::wstring& name)
{
    VX_LOG_SCOPE();
    VX_LOG_VALUES(name);
    Error error = Error::Success;
    const bool value = m_api.getBool(m_handles[0], name.c_str(), 0, &error) != 0;
    throwOnReadError(error, name, vxScopeName);
    return value;
}

std::int32_t SettingsApi::getInt32Value(const std::wstring& name)
{
    VX_LOG_SCOPE();
    VX_LOG_VALUES(name);
    Error error = Error::Success;
    const std::int32_t value = m_api.getInt32(m_handles[0], name.c_str(), 0, &error);
    throwOnReadError(error, name, vxScopeName);
    return value;
}

std::int64_t SettingsApi::getInt64Value(const std::wstring& name)
{
    VX_LOG_SCOPE();
    VX_LOG_VALUES(name);
    Error error = Error::Success;
    const std::int64_t value = m_api.getInt64(m_handles[0], name.c_str(), 0, &error);
    throwOnReadError(error, name, vxScopeName);
    return value;
}

double SettingsApi::getDoubleValue(const std::wstring& name)
{
    VX_LOG_SCOPE();
    VX_LOG_VALUES(name);
    Error error = Error::Success;
    const std::wstring text =
        copyOf(LibraryText<wchar_t>(m_api.getString(m_handles[0], name.c_str(), L"", &error), m_api.freeString));
    throwOnReadError(error, name, vxScopeName);
    return parseDouble(text);
}

std::wstring SettingsApi::getStringValue(const std::wstring& name)
{
    VX_LOG_SCOPE();
    VX_LOG_VALUES(name);
    Error error = Error::Success;
    const LibraryText<wchar_t> text(m_api.getString(m_handles[0], name.c_str(), L"", &error), m_api.freeString);
    throwOnReadError(error, name, vxScopeName);
    return copyOf(text);
}

nlohmann::json SettingsApi::getJsonValue(const std::wstring& name)
{
    VX_LOG_SCOPE();
    VX_LOG_VALUES(name);
    Error error = Error::Success;
    const LibraryText<char> text(m_api.getObjectAsStringUtf8(m_handles[0], name.c_str(), &error), m_api.freeString);
    throwOnReadError(error, name, vxScopeName);
    return parseJson(text ? text.get() : "");
}

void SettingsApi::setBoolValue(const std::wstring& name, bool value)
{
    VX_LOG_SCOPE();
    VX_LOG_VALUES(name, value);
    writeRepeatedly([&] { return m_api.setBool(m_handles[0], name.c_str(), value); }, name, vxScopeName);
}

void SettingsApi::setInt32Value(const std::wstring& name, std::int32_t value)
{
    VX_LOG_SCOPE();
    VX_LOG_VALUES(name, value);
    writeRepeatedly([&] { return m_api.setInt32(m_handles[0], name.c_str(), value); }, name, vxScopeName);
}

void SettingsApi::setInt64Value(const std::wstring& name, std::int64_t value)
{
    VX_LOG_SCOPE();
    VX_LOG_VALUES(name, value);
    writeRepeatedly([&] { return m_api.setInt64(m_handles[0], name.c_str(), value); }, name, vxScopeName);
}

void SettingsApi::setDoubleValue(const std::wstring& name, double value)
{
    VX_LOG_SCOPE();
    VX_LOG_VALUES(name, value);
    writeRepeatedly(
        [&] { return m_api.setString(m_handles[0], name.c_str(), formatDouble(value).c_str()); }, name, vxScopeName);
}

void SettingsApi::setStringValue(const std::wstring& name, const std::wstring& value)
{
    VX_LOG_SCOPE();
    if (isEnabled(Level::Debug))
        logging::logValues("name, value", name, withoutProxyPassword(value));
    writeRepeatedly([&] { return m_api.setString(m_handles[0], name.c_str(), value.c_str()); }, name, vxScopeName);
}

void SettingsApi::setJsonValue(const std::wstring& name, const nlohmann::json& data)
{
    VX_LOG_SCOPE();
    if (isEnabled(Level::Debug))
        logging::logValues("name, data.dump()", name, withoutProxyPasswords(data).dump());
    writeRepeatedly([&] { return m_api.setObjectFromStringUtf8(m_handles[0], name.c_str(), data.dump().c_str()); },
        name, vxScopeName);
}

settings::SubscriptionId SettingsApi::subscribeForChanges(
    const std::wstring& name, const settings::ChangeCallback& callback)
{
    VX_LOG_SCOPE();
    VX_LOG_VALUES(name);
    const std::lock_guard lock(m_mutex);
    const Record record = ChangeSubscription::make(name, callback);
    if (const Error code = subscribe(*record); code != Error::Success) {
        record->callback().close();
        const Error again = subscribe(*record);
        cancel(*record);
        VX_THROW(QrlMeridiaException, code, errorText(again) + (L", Setting: " + name));
    }
    ScopeExit unlisted([&] { cancel(*record); });
    m_subscriptions.push_back(record);
    unlisted.dismiss();
    return record->id();
}

QrlMeridiaError_enum SettingsApi::subscribe(ChangeSubscription& record)
{
    const Error code =
        m_api.subscribe(m_handles[1], record.settingName().c_str(), settingsChangeNotificationCallback, &record);
    if (code == Error::Success)
        record.isKnownToLibrary = true;
    return code;
}

QrlMeridiaError_enum SettingsApi::unsubscribe(ChangeSubscription& record)
{
    const Error code =
        m_api.unsubscribe(m_handles[1], record.settingName().c_str(), settingsChangeNotificationCallback, &record);
    if (code == Error::Success)
        record.isKnownToLibrary = false;
    return code;
}

void SettingsApi::cancel(ChangeSubscription& record)
{
    if (record.isKnownToLibrary && unsubscribe(record) != Error::Success)
        record.leaveToLibrary();
    record.callback().close();
}

SettingsApi::Record SettingsApi::find(settings::SubscriptionId id) const
{
    const auto found = std::ranges::find(m_subscriptions, id, [](const Record& record) { return record->id(); });
    return found == m_subscriptions.end() ? nullptr : *found;
}

void SettingsApi::unsubscribeFromChanges(settings::SubscriptionId subscriptionId)
{
    VX_LOG_SCOPE();
    VX_LOG_VALUES(subscriptionId);
    Record record;
    {
        const std::lock_guard lock(m_mutex);
        record = find(subscriptionId);
        if (!record)
            return;
        if (const Error code = unsubscribe(*record); code != Error::Success)
            VX_THROW(QrlMeridiaException, code, errorText(unsubscribe(*record)));
        std::erase(m_subscriptions, record);
    }
    // Not under the mutex: the callback that is waited for may itself subscribe.
    record->callback().close();
}

void SettingsApi::settingsChangeNotificationCallback(
    const wchar_t* nameOrNull, std::int32_t type, const void* value, void* context)
{
    VX_LOG_SCOPE();
    const wchar_t* const settingName = nameOrNull ? nameOrNull : L"";
    VX_LOG_VALUES(settingName, type, value, context);
    if (!context) {
        LogStream(Level::Warning)
            << "vx::meridia::SettingsApi::settingsChangeNotificationCallback: userData is not provided";
        return;
    }
    guarded([&] {
        if (const auto record = ChangeSubscription::find(context))
            record->callback()(settingName);
    });
}

} // namespace vx::meridia
