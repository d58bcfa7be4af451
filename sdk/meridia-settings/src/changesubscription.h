#pragma once

#include "settings-api/gatedcallback.h"

#include <memory>
#include <string>

namespace vx::meridia {

/// What the client library is given the address of: one setting and the callback for its changes. All records of the
/// module are listed, so that an address that comes back from the library is looked up before it is used. Any thread.
class ChangeSubscription : public std::enable_shared_from_this<ChangeSubscription> {
public:
    /// Not listed yet; see make.
    ChangeSubscription(const std::wstring& settingName, const settings::ChangeCallback& callback);
    ~ChangeSubscription();
    ChangeSubscription(const ChangeSubscription&) = delete;
    ChangeSubscription& operator=(const ChangeSubscription&) = delete;

    static std::shared_ptr<ChangeSubscription> make(
        const std::wstring& settingName, const settings::ChangeCallback& callback);
    /// The record of the address; empty when it is gone.
    static std::shared_ptr<ChangeSubscription> find(const void* address) noexcept;

    /// The address of the record itself.
    settings::SubscriptionId id() const noexcept { return reinterpret_cast<settings::SubscriptionId>(this); }
    const std::wstring& settingName() const noexcept { return m_settingName; }
    settings::GatedCallback& callback() noexcept { return m_callback; }

    /// Whether the library was given the address and has not been made to forget it. The owner's.
    bool isKnownToLibrary = false;

    /// Closes the callback and leaves record and module in memory for good, because the library still knows both
    /// addresses: the record's, so that no later one gets it, and the notification function's.
    void leaveToLibrary() noexcept;

private:
    const std::wstring m_settingName;
    settings::GatedCallback m_callback;
    std::shared_ptr<ChangeSubscription> m_self; ///< set once the record is to stay
    ChangeSubscription* m_next = nullptr;       ///< in the module's list; guarded by its mutex
};

} // namespace vx::meridia
