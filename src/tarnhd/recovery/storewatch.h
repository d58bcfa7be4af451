#pragma once

#include "settings-api/settingsimpl.h"
#include "vxtl/lock.h"

#include <atomic>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace vx::tarn {

/// Sees from below the caches when the store can't be reached: above them an outage does not show. Held by shared
/// pointer, by the accesses that it watches too. Any thread.
class StoreWatch : public std::enable_shared_from_this<StoreWatch> {
public:
    using Store = std::shared_ptr<settings::details::SettingsImpl>;

    StoreWatch() = default;
    StoreWatch(const StoreWatch&) = delete;
    StoreWatch& operator=(const StoreWatch&) = delete;

    /// The access that is to take the place of this one. It does and throws what this one does.
    Store watch(Store store);

    /// A switch as the store holds it, past the cache: nothing is logged of a missing one, which is off, as one that
    /// can't be understood is. None while the store can't be reached.
    std::optional<bool> readSwitch(const std::wstring& name) const;
    /// One read. An outage that it finds counts as one that anybody has met.
    bool isReachable();

    /// Called at each call that finds the store unreachable, on the calling thread: it must neither block nor call the
    /// store. An empty one ends that, and waits for one that is under way.
    void setListener(std::function<void()> listener);
    /// Whether a write has found the store unreachable since the last answer.
    bool takeFailedWrites() { return m_hasFailedWrites.exchange(false); }

    /// The calls that one thread makes during its life. A stack object.
    class Span {
    public:
        explicit Span(StoreWatch& watch);
        ~Span();
        Span(const Span&) = delete;
        Span& operator=(const Span&) = delete;

        /// Whether one of them has found the store unreachable.
        bool hasMetOutage() const { return m_hasMetOutage; }

    private:
        friend class StoreWatch;
        StoreWatch& m_watch;
        const unsigned long m_thread;
        std::atomic<bool> m_hasMetOutage = false;
    };

private:
    class WatchedStore;
    enum class Call { Read, Write };

    bool readBool(const std::wstring& name) const;
    void noteOutage(Call call);

    mutable sync::Mutex m_mutex;
    std::weak_ptr<settings::details::SettingsImpl> m_store; ///< the last one; guarded by m_mutex
    std::function<void()> m_listener;                       ///< called under m_mutex, which guards it
    std::vector<Span*> m_spans;                             ///< guarded by m_mutex
    std::atomic<bool> m_hasFailedWrites = false;
};

} // namespace vx::tarn
