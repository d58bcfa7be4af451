#include "changesubscription.h"

#include "vxtl/modulelife.h"

namespace vx::meridia {

namespace {

// Neither has a destructor: the library's threads outlive the module's static objects.
constinit sync::Mutex listMutex;
constinit ChangeSubscription* first = nullptr; ///< guarded by listMutex

} // namespace

ChangeSubscription::ChangeSubscription(const std::wstring& settingName, const settings::ChangeCallback& callback)
    : m_settingName(settingName), m_callback(callback)
{}

std::shared_ptr<ChangeSubscription> ChangeSubscription::make(
    const std::wstring& settingName, const settings::ChangeCallback& callback)
{
    auto record = std::make_shared<ChangeSubscription>(settingName, callback);
    const std::lock_guard lock(listMutex);
    record->m_next = first;
    first = record.get();
    return record;
}

ChangeSubscription::~ChangeSubscription()
{
    const std::lock_guard lock(listMutex);
    ChangeSubscription** place = &first;
    while (*place && *place != this)
        place = &(*place)->m_next;
    if (*place)
        *place = m_next;
}

std::shared_ptr<ChangeSubscription> ChangeSubscription::find(const void* address) noexcept
{
    const std::lock_guard lock(listMutex);
    for (ChangeSubscription* record = first; record; record = record->m_next)
        if (record == address)
            // Empty when the last owner has let go and the destructor waits for the list.
            return record->weak_from_this().lock();
    return nullptr;
}

void ChangeSubscription::leaveToLibrary() noexcept
{
    modulelife::keep();
    m_self = shared_from_this();
    m_callback.close();
}

} // namespace vx::meridia
