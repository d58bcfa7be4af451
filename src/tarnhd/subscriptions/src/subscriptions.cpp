#include "tarnhd/subscriptions.h"

#include "vxtl/guarded.h"

namespace vx::tarn {

Subscriptions::Subscriptions(settings::Settings* settings) : m_settings(settings) {}

Subscriptions::~Subscriptions()
{
    guarded([this] { Subscriptions::unsubscribeAll(); });
}

settings::SubscriptionId Subscriptions::subscribe(
    const std::wstring& propertyName, const settings::ChangeCallback& callback)
{
    VX_LOG_SCOPE();
    VX_LOG_VALUES(propertyName);
    settings::SubscriptionId id = -1;
    guarded(L"Failed to subscribe to a property " + propertyName + L". Reason: ", [&] {
        const auto subscribed = m_settings->subscribeForChanges(propertyName, callback);
        m_subscriptionIds.push_back(subscribed);
        m_propertyNames[subscribed] = propertyName;
        id = subscribed;
    });
    return id;
}

bool Subscriptions::unsubscribe(settings::SubscriptionId id)
{
    return guarded(L"Failed to unsubscribe from property: " + nameOf(id) + L". Reason: ", [&] {
        m_settings->unsubscribeFromChanges(id);
        std::erase(m_subscriptionIds, id);
        m_propertyNames.erase(id);
    });
}

void Subscriptions::unsubscribeAll()
{
    const auto ids = m_subscriptionIds;
    for (const auto id : ids)
        if (!unsubscribe(id))
            logging::LogStream(logging::Level::Error) << "Failed to unsubscribe from property: " << nameOf(id);
}

std::wstring Subscriptions::nameOf(settings::SubscriptionId id) const
{
    const auto found = m_propertyNames.find(id);
    return found == m_propertyNames.end() ? std::wstring() : found->second;
}

} // namespace vx::tarn
