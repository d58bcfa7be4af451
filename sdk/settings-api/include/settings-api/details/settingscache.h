#pragma once

#include "vxtl/lock.h"

#include <atomic>
#include <cstdint>
#include <map>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>

namespace vx::settings::details {

/// The types that a setting can have.
enum class ValueType : std::int32_t { Bool = 1, Int32 = 2, Int64 = 3, Double = 4, String = 5, Json = 6 };

/// What became of an attempt to give the provider what was pending.
enum class SynchronizeResult {
    Idle,       ///< nothing was waiting, so nothing was tried
    Complete,   ///< all that was waiting is saved
    Incomplete, ///< some values could not be saved and stay pending
    Busy        ///< another thread is at it, or this one further up its stack; nothing was tried
};

/// The last value seen or written of one setting.
struct CacheEntry {
    ValueType type;
    nlohmann::json value; ///< text in UTF-8
    bool saved;           ///< whether the provider holds this value
};

/// The values behind CachedSettings, by name. Entries are never removed. Any thread; its mutex is held for the
/// table's own work only, so callers may sit in the provider for as long as they like between two calls.
class SettingsCache {
    struct Slot;

public:
    using Version = std::uint64_t;
    /// Whether the provider took a value.
    enum class Outcome { Saved, Failed };

    /// A value on its way to the provider; goes back through end.
    struct Passage {
        Slot* slot;
        Version version;
    };
    /// A waiting value that has been taken for saving: a passage that endSave ends. The name lives as long as the
    /// cache.
    struct Pending {
        const std::wstring& name;
        ValueType type;
        nlohmann::json value;
        Passage passage;
    };

    SettingsCache() = default;
    SettingsCache(const SettingsCache&) = delete;
    SettingsCache& operator=(const SettingsCache&) = delete;

    /// Grows with each write; taken before a read and given to storeRead.
    Version version() const noexcept { return m_version.load(std::memory_order_acquire); }

    std::optional<nlohmann::json> find(const std::wstring& name) const;

    /// Keeps what the provider answered, unless the name's entry may be newer than that answer: a write since
    /// `before`, a value on its way, or a pending value that this reader has not tried to save since.
    void storeRead(const std::wstring& name, CacheEntry&& entry, Version before, SynchronizeResult synchronized);

    /// Puts in an unsaved value that its writer is about to give to the provider.
    Passage beginWrite(const std::wstring& name, CacheEntry&& entry);
    /// Marks the entry saved only if it still is the value that was written.
    void endWrite(const Passage& passage, Outcome outcome);

    /// Whether unsaved values wait that no thread is just writing. One atomic read.
    bool hasPending() const noexcept { return m_waiting.load(std::memory_order_acquire) != 0; }
    /// One thread walks the pending values at a time; false while another does. True obliges to endWalk.
    bool beginWalk() noexcept { return !m_walking.exchange(true, std::memory_order_acquire); }
    void endWalk() noexcept { m_walking.store(false, std::memory_order_release); }
    /// The next waiting value behind the given name in the order of names; null starts.
    std::optional<Pending> nextPending(const std::wstring* after);
    /// As endWrite. False when a write overtook a save that succeeded: the provider may now hold the older value,
    /// so the entry waits again.
    bool endSave(const Passage& passage, Outcome outcome);

private:
    /// One name's entry with what tells whether a late answer may still replace it.
    struct Slot {
        CacheEntry entry{{}, {}, true};
        Version written = 0; ///< the version of the last write; tells one value from another
        Version touched = 0; ///< when a write last began or ended
        int underway = 0;    ///< values of this name on their way to the provider
    };

    /// Changes a slot and keeps the count of waiting ones true.
    template <typename Change>
    void change(Slot& slot, Change apply);
    Slot& slotOf(const std::wstring& name);
    Version nextVersion() { return m_version.fetch_add(1, std::memory_order_acq_rel) + 1; }

    mutable sync::Mutex m_mutex;
    std::map<std::wstring, Slot> m_slots; ///< in the order of saving; guarded by m_mutex
    /// Where each name's slot stands, as names share long beginnings that an ordered look-up compares again and
    /// again. Guarded by m_mutex.
    std::unordered_map<std::wstring_view, Slot*> m_index;
    std::atomic<Version> m_version{0};
    std::atomic<std::size_t> m_waiting{0};
    std::atomic<bool> m_walking{false};
};

} // namespace vx::settings::details
