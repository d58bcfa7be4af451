#pragma once

#include "settings-api/gatedcallback.h"
#include "settings-api/settings.h"

#include <map>
#include <memory>
#include <string>
#include <vector>

namespace vx::tarn {

/// Keeps the store's subscriptions of one owner and ends those that are left at destruction. Failures are log
/// lines; one dead key leaves the others alone. One thread at a time; the callbacks run on threads of the store, each
/// of them once at a time.
class Subscriptions {
public:
    /// `settings` is borrowed and outlives the object.
    explicit Subscriptions(settings::Settings* settings);
    /// From here on no callback begins, and none is running but one that this is called from, whatever the store
    /// answers: blocks while one runs.
    virtual ~Subscriptions();
    Subscriptions(const Subscriptions&) = delete;
    Subscriptions& operator=(const Subscriptions&) = delete;

    /// The id of the subscription; -1 when it failed, and then the callback is gone: it may be tried again.
    virtual settings::SubscriptionId subscribe(
        const std::wstring& propertyName, const settings::ChangeCallback& callback);
    /// False when it failed; the subscription is then still listed.
    virtual bool unsubscribe(settings::SubscriptionId id);
    virtual void unsubscribeAll();

private:
    std::wstring nameOf(settings::SubscriptionId id) const;

    settings::Settings* m_settings;
    std::vector<settings::SubscriptionId> m_subscriptionIds; ///< in order of subscribing
    std::map<settings::SubscriptionId, std::wstring> m_propertyNames;
    std::vector<std::shared_ptr<settings::GatedCallback>> m_gates; ///< of all subscriptions ever made
};

} // namespace vx::tarn
