#include "tarnhd/subscriptions/subscriptions.h"

#include "vxtl/guarded.h"
#include "vxtl/scopeexit.h"

namespace vx::tarn {

Subscriptions::Subscriptions(settings::Settings* settings) : m_settings(settings) {}

Subscriptions::~Subscriptions()
{
    guarded([this] { Subscriptions::unsubscribeAll(); });
    // What could not be unsubscribed stays with the store, and calls as soon as that is back.
    for (const auto& gate : m_gates)
        gate->close();
}

settings::SubscriptionId Subscriptions::subscribe(
    const std::wstring& propertyName, const settings::ChangeCallback& callback)
{
    VX_LOG_SCOPE();
    VX_LOG_VALUES(propertyName);
    settings::SubscriptionId id = -1;
    guarded(L"Failed to subscribe to a property " + propertyName + L". Reason: ", [&] {
        // Listed first: whatever fails from here on, the callback can be closed.
        const auto gate = m_gates.emplace_back(std::make_shared<settings::GatedCallback>(callback));
        // One that is tried again and again must not leave a gate behind each time.
        ScopeExit refused([&] {
            gate->close();
            m_gates.pop_back();
        });
        const auto subscribed =
            m_settings->subscribeForChanges(propertyName, [gate](const std::wstring& name) { (*gate)(name); });
        m_subscriptionIds.push_back(subscribed);
        refused.dismiss();
        m_propertyNames[subscribed] = propertyName;
        id = subscribed;
    });
    return id;
}

bool Subscriptions::unsubscribe(settings::SubscriptionId id)
{
    VX_LOG_SCOPE();
    return guarded(L"Failed to unsubscribe from property: " + nameOf(id) + L". Reason: ", [&] {
        m_settings->unsubscribeFromChanges(id);
        std::erase(m_subscriptionIds, id);
        m_propertyNames.erase(id);
    });
}

void Subscriptions::unsubscribeAll()
{
    VX_LOG_SCOPE();
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
