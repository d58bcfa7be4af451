#pragma once

#include "meridia-settings/qrlmeridiaapi.h"
#include "settings-api/settingsimpl.h"
#include "vxtl/lock.h"

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace vx::meridia {

class ChangeSubscription;

/// The settings provider over the host's store. Doubles are stored as text, JSON as UTF-8 text. Any thread; reads and
/// writes take no lock. Notifications come on a thread of the client library.
///
/// Operations on one setting throw a child of SettingsException or QrlMeridiaException; a failing write calls the
/// store up to eight times. They block as long as the store does. A store that goes away and comes back needs no new
/// object.
class SettingsApi : public settings::details::SettingsImpl {
public:
    using LoadApi = std::function<delayload::LoadStatus(QrlMeridiaApi& api)>;

    /// Loads the client library and opens the store once, without a retry. The three texts go to the store as they
    /// are. Throws BaseException when the library can't be loaded and QrlMeridiaException when the store can't be
    /// opened.
    SettingsApi(const std::wstring& profile, const std::wstring& sid, const std::wstring& client,
        const LoadApi& loadApi = loadQrlMeridiaApi);
    virtual ~SettingsApi();
    SettingsApi(const SettingsApi&) = delete;
    SettingsApi& operator=(const SettingsApi&) = delete;

    bool getBoolValue(const std::wstring& name) override;
    std::int32_t getInt32Value(const std::wstring& name) override;
    std::int64_t getInt64Value(const std::wstring& name) override;
    /// Throws std::invalid_argument or std::out_of_range when the stored text is no double.
    double getDoubleValue(const std::wstring& name) override;
    std::wstring getStringValue(const std::wstring& name) override;
    /// Throws the JSON library's parse error when the stored text is no JSON.
    nlohmann::json getJsonValue(const std::wstring& name) override;
    void setBoolValue(const std::wstring& name, bool value) override;
    void setInt32Value(const std::wstring& name, std::int32_t value) override;
    void setInt64Value(const std::wstring& name, std::int64_t value) override;
    void setDoubleValue(const std::wstring& name, double value) override;
    void setStringValue(const std::wstring& name, const std::wstring& value) override;
    void setJsonValue(const std::wstring& name, const nlohmann::json& data) override;

    /// The callback may come as soon as the store knows of the subscription, before this returns. A refused
    /// subscription never calls it.
    settings::SubscriptionId subscribeForChanges(
        const std::wstring& name, const settings::ChangeCallback& callback) override;
    /// Does nothing for an unknown id. Waits for a callback that another thread is in. When the store refuses, the
    /// subscription stays; the library may then go on notifying, also after this object is gone, and does so in vain.
    void unsubscribeFromChanges(settings::SubscriptionId subscriptionId) override;

private:
    using Record = std::shared_ptr<ChangeSubscription>;

    QrlMeridiaError_enum subscribe(ChangeSubscription& record);
    QrlMeridiaError_enum unsubscribe(ChangeSubscription& record);
    void cancel(ChangeSubscription& record);
    Record find(settings::SubscriptionId id) const;

    static void VX_CDECL settingsChangeNotificationCallback(
        const wchar_t* settingName, std::int32_t type, const void* value, void* context);

    QrlMeridiaHandle m_handles[2] = {0, 0}; ///< [0] reads and writes, [1] subscriptions
    sync::RecursiveMutex m_mutex;
    std::vector<Record> m_subscriptions; ///< in order of subscribing; guarded by m_mutex
    QrlMeridiaApi m_api{};
};

} // namespace vx::meridia
