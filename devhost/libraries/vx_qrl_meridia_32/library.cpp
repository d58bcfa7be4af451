#include "libraries/vx_qrl_meridia_32/library.h"

#include "ipc/instance.h"
#include "logging/nodestructor.h"
#include "vxtl/scopeexit.h"
#include "vxtl/str.h"

#include <algorithm>
#include <utility>
#include <vector>

#include <windows.h>

namespace devhost::store {

namespace {

thread_local unsigned runningCallbacks = 0;

/// Keeps this module loaded, whatever its user does with the library: there is code of it on a thread.
void* holdModule()
{
    static const int anchor = 0;
    HMODULE module = nullptr;
    GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS, reinterpret_cast<const wchar_t*>(&anchor), &module);
    return module;
}

void call(NotificationFunction function, void* userData, const Change& change)
{
    const std::wstring name = vx::str::fromUtf8(change.name);
    ++runningCallbacks;
    function(name.c_str(), change.type ? static_cast<int>(*change.type) : 0, nullptr, userData);
    --runningCallbacks;
}

} // namespace

Library& Library::instance()
{
    static vx::NoDestructor<Library> library;
    return *library;
}

Handle Library::open(const std::string& profile, const std::string& account, const std::string& clientName)
{
    auto client = acquire();
    vx::ScopeExit unopened([&] { drop(std::move(client), 0); });
    client->open(profile, account, clientName);
    const std::lock_guard lock(m_mutex);
    m_handles.insert(++m_lastHandle);
    unopened.dismiss();
    return m_lastHandle;
}

std::shared_ptr<Client> Library::acquire()
{
    const std::lock_guard lock(m_mutex);
    if (!m_client) {
        m_client = std::make_shared<Client>(ipc::instanceFromEnvironment(), Role::Application);
        m_module = holdModule();
    }
    ++m_users;
    return m_client;
}

void Library::close(Handle handle)
{
    std::shared_ptr<Client> client;
    {
        const std::lock_guard lock(m_mutex);
        if (m_handles.erase(handle) == 0)
            return;
        client = m_client;
    }
    drop(std::move(client), handle);
}

void Library::drop(std::shared_ptr<Client> client, Handle handle)
{
    std::vector<SubscriptionId> ended;
    std::shared_ptr<Client> unused;
    void* module = nullptr;
    {
        const std::lock_guard lock(m_mutex);
        std::erase_if(m_subscriptions, [&](const Subscription& subscription) {
            if (subscription.handle != handle)
                return false;
            *subscription.silent = true;
            ended.push_back(subscription.id);
            return true;
        });
        if (--m_users == 0) {
            unused = std::move(m_client);
            module = std::exchange(m_module, nullptr);
        }
    }
    for (const SubscriptionId id : ended) {
        try {
            client->unsubscribe(id);
        } catch (const StoreException&) {
            // The server is gone and cannot be told, so the client keeps the subscription; it is silent.
        }
    }
    unused.reset();
    // On a callback's thread, or under a call of another thread, code of this module is still needed
    // after the return: then the module stays.
    const bool alone = client.use_count() == 1 && runningCallbacks == 0;
    client.reset();
    if (module && alone)
        FreeLibrary(static_cast<HMODULE>(module));
}

std::shared_ptr<Client> Library::client(Handle handle)
{
    const std::lock_guard lock(m_mutex);
    if (!m_handles.contains(handle))
        throw StoreException(ErrorCode::InvalidParameter, "handle " + std::to_string(handle));
    return m_client;
}

void Library::subscribe(Handle handle, const std::wstring& name, NotificationFunction function, void* userData)
{
    if (!function)
        throw StoreException(ErrorCode::InvalidParameter, "notification function");
    const auto silent = std::make_shared<std::atomic<bool>>(false);
    const SubscriptionId id = client(handle)->subscribe(vx::str::toUtf8(name), [=](const Change& change) {
        if (!*silent)
            call(function, userData, change);
    });
    const std::lock_guard lock(m_mutex);
    m_subscriptions.push_back({handle, name, function, userData, id, silent});
}

void Library::unsubscribe(Handle handle, const std::wstring& name, NotificationFunction function, void* userData)
{
    const auto client = this->client(handle);
    SubscriptionId id = 0;
    {
        const std::lock_guard lock(m_mutex);
        const auto found = std::ranges::find_if(m_subscriptions, [&](const Subscription& subscription) {
            return subscription.handle == handle && subscription.name == name && subscription.function == function &&
                   subscription.userData == userData;
        });
        if (found != m_subscriptions.end())
            id = found->id;
    }
    // An id that is not known is NotFound. The lock is not held: a callback that is waited for may call in.
    client->unsubscribe(id);
    const std::lock_guard lock(m_mutex);
    std::erase_if(m_subscriptions, [&](const Subscription& subscription) { return subscription.id == id; });
}

} // namespace devhost::store
