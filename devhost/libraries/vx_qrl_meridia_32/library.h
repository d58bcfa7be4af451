#pragma once

#include "store/client/client.h"

#include <atomic>
#include <cstdint>
#include <list>
#include <memory>
#include <mutex>
#include <set>
#include <string>

namespace devhost::store {

/// Handles are numbers that are never used again; 0 is none.
using Handle = std::uint32_t;

/// A cdecl function of the caller. `type` is a Type or 0 for a value that was removed; `value` is always
/// null: whoever is told reads the value.
using NotificationFunction = void (*)(const wchar_t* settingName, int type, const void* value, void* userData);

/// The state of the client library in its process: the open handles, their subscriptions, and the one
/// client that all share, which lives from the first handle to the last. Any thread. While a handle
/// is open the module stays loaded.
class Library {
public:
    /// Never destroyed: at the end of the process other threads may have died at any place.
    static Library& instance();

    /// Throws StoreException when no server answers.
    Handle open(const std::string& profile, const std::string& account, const std::string& clientName);
    /// Ends the handle's subscriptions; without effect for a handle that is not open.
    void close(Handle handle);

    /// For use during one call. Throws StoreException (InvalidParameter) for a handle that is not open.
    std::shared_ptr<Client> client(Handle handle);

    void subscribe(Handle handle, const std::wstring& name, NotificationFunction function, void* userData);
    /// Throws StoreException (NotFound) when there is no such subscription.
    void unsubscribe(Handle handle, const std::wstring& name, NotificationFunction function, void* userData);

private:
    /// One subscription through one handle.
    struct Subscription {
        Handle handle;
        std::wstring name;
        NotificationFunction function;
        void* userData;
        SubscriptionId id;
        std::shared_ptr<std::atomic<bool>> silent; ///< set when the handle is closed
    };

    std::shared_ptr<Client> acquire();
    void drop(std::shared_ptr<Client> client, Handle handle);

    std::mutex m_mutex;
    std::shared_ptr<Client> m_client; ///< guarded by m_mutex, as is all below
    unsigned m_users = 0;             ///< open handles and those that are being opened
    void* m_module = nullptr;
    std::set<Handle> m_handles;
    Handle m_lastHandle = 0;
    std::list<Subscription> m_subscriptions;
};

} // namespace devhost::store
