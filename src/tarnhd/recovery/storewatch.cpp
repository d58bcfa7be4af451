#include "tarnhd/recovery/storewatch.h"

#include "logging/details/threadid.h"
#include "logging/logstream.h"
#include "settings-api/exceptions.h"
#include "vxtl/exception.h"

#include <nlohmann/json.hpp>

namespace vx::tarn {

using logging::Level;
using logging::LogStream;
using logging::details::currentThreadId;
using settings::ServerUnreachableException;
using settings::SubscriptionId;

namespace {

// Of no meaning: a missing value is an answer, too.
constexpr auto probedName = L"windows.tarnpatch.enabled";

} // namespace

class StoreWatch::WatchedStore final : public settings::details::SettingsImpl {
    using Name = const std::wstring&;

    template <typename Function>
    auto watched(Call call, Function& function)
    {
        try {
            return function();
        } catch (const ServerUnreachableException&) {
            m_watch->noteOutage(call);
            throw;
        }
    }
    template <typename Function>
    auto read(Function function)
    {
        return watched(Call::Read, function);
    }
    template <typename Function>
    void write(Function function)
    {
        watched(Call::Write, function);
    }

public:
    WatchedStore(Store store, std::shared_ptr<StoreWatch> watch) : m_store(std::move(store)), m_watch(std::move(watch))
    {}

    bool getBoolValue(Name name) override
    {
        return read([&] { return m_store->getBoolValue(name); });
    }
    std::int32_t getInt32Value(Name name) override
    {
        return read([&] { return m_store->getInt32Value(name); });
    }
    std::int64_t getInt64Value(Name name) override
    {
        return read([&] { return m_store->getInt64Value(name); });
    }
    double getDoubleValue(Name name) override
    {
        return read([&] { return m_store->getDoubleValue(name); });
    }
    std::wstring getStringValue(Name name) override
    {
        return read([&] { return m_store->getStringValue(name); });
    }
    nlohmann::json getJsonValue(Name name) override
    {
        return read([&] { return m_store->getJsonValue(name); });
    }
    void setBoolValue(Name name, bool value) override
    {
        write([&] { m_store->setBoolValue(name, value); });
    }
    void setInt32Value(Name name, std::int32_t value) override
    {
        write([&] { m_store->setInt32Value(name, value); });
    }
    void setInt64Value(Name name, std::int64_t value) override
    {
        write([&] { m_store->setInt64Value(name, value); });
    }
    void setDoubleValue(Name name, double value) override
    {
        write([&] { m_store->setDoubleValue(name, value); });
    }
    void setStringValue(Name name, const std::wstring& value) override
    {
        write([&] { m_store->setStringValue(name, value); });
    }
    void setJsonValue(Name name, const nlohmann::json& value) override
    {
        write([&] { m_store->setJsonValue(name, value); });
    }
    // A subscription that fails is told to who asked for it.
    SubscriptionId subscribeForChanges(Name name, const settings::ChangeCallback& callback) override
    {
        return m_store->subscribeForChanges(name, callback);
    }
    void unsubscribeFromChanges(SubscriptionId id) override { m_store->unsubscribeFromChanges(id); }

private:
    const Store m_store;
    const std::shared_ptr<StoreWatch> m_watch;
};

StoreWatch::Store StoreWatch::watch(Store store)
{
    {
        const std::lock_guard lock(m_mutex);
        m_store = store;
    }
    return std::make_shared<WatchedStore>(std::move(store), shared_from_this());
}

bool StoreWatch::readBool(const std::wstring& name) const
{
    Store store;
    {
        const std::lock_guard lock(m_mutex);
        store = m_store.lock();
    }
    if (!store)
        VX_THROW(settings::NotFoundException, name);
    return store->getBoolValue(name);
}

std::optional<bool> StoreWatch::readSwitch(const std::wstring& name) const
{
    try {
        return readBool(name);
    } catch (const ServerUnreachableException&) {
        return std::nullopt;
    } catch (const settings::NotFoundException&) {
        return false;
    } catch (const std::exception& exception) {
        LogStream(Level::Warning) << "Recovery: it stays off, as its switch can't be read. Exception caught: "
                                  << What(exception);
        return false;
    }
}

bool StoreWatch::isReachable()
{
    try {
        readBool(probedName);
    } catch (const ServerUnreachableException&) {
        noteOutage(Call::Read);
        return false;
    } catch (const std::exception&) {
        // Whatever it says, it answers.
    }
    return true;
}

void StoreWatch::setListener(std::function<void()> listener)
{
    const std::lock_guard lock(m_mutex);
    m_listener.swap(listener);
}

void StoreWatch::noteOutage(Call call)
{
    if (call == Call::Write)
        m_hasFailedWrites = true;
    const std::lock_guard lock(m_mutex);
    for (Span* span : m_spans)
        if (span->m_thread == currentThreadId())
            span->m_hasMetOutage = true;
    // Under the lock, so that the listener's end waits for it.
    if (m_listener)
        m_listener();
}

StoreWatch::Span::Span(StoreWatch& watch) : m_watch(watch), m_thread(currentThreadId())
{
    const std::lock_guard lock(m_watch.m_mutex);
    m_watch.m_spans.push_back(this);
}

StoreWatch::Span::~Span()
{
    const std::lock_guard lock(m_watch.m_mutex);
    std::erase(m_watch.m_spans, this);
}

} // namespace vx::tarn
