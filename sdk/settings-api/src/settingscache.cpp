#include "settings-api/details/settingscache.h"

namespace vx::settings::details {

namespace {

/// The old value leaves in `source`, to be destroyed outside the lock.
void replace(CacheEntry& target, CacheEntry& source) noexcept
{
    target.type = source.type;
    target.saved = source.saved;
    target.value.swap(source.value);
}

} // namespace

template <typename Change>
void SettingsCache::change(Slot& slot, Change apply)
{
    const auto waits = [&slot] { return !slot.entry.saved && slot.underway == 0; };
    const bool before = waits();
    apply();
    if (before != waits())
        before ? --m_waiting : ++m_waiting;
}

std::optional<nlohmann::json> SettingsCache::find(const std::wstring& name) const
{
    const std::lock_guard lock(m_mutex);
    const auto found = m_index.find(name);
    if (found == m_index.end())
        return std::nullopt;
    return found->second->entry.value;
}

SettingsCache::Slot& SettingsCache::slotOf(const std::wstring& name)
{
    if (const auto found = m_index.find(name); found != m_index.end())
        return *found->second;
    const auto position = m_slots.try_emplace(name).first;
    m_index.emplace(position->first, &position->second);
    return position->second;
}

void SettingsCache::storeRead(
    const std::wstring& name, CacheEntry&& entry, Version before, SynchronizeResult synchronized)
{
    const std::lock_guard lock(m_mutex);
    Slot& slot = slotOf(name);
    // Idle counts as no attempt: the last pending value may have been on its way on another thread, and fail after it.
    const bool tried = synchronized == SynchronizeResult::Complete || synchronized == SynchronizeResult::Incomplete;
    const bool untried = !slot.entry.saved && !tried;
    if (slot.underway != 0 || slot.touched > before || untried)
        return;
    change(slot, [&] { replace(slot.entry, entry); });
}

SettingsCache::Passage SettingsCache::beginWrite(const std::wstring& name, CacheEntry&& entry)
{
    const std::lock_guard lock(m_mutex);
    Slot& slot = slotOf(name);
    change(slot, [&] {
        replace(slot.entry, entry);
        slot.written = slot.touched = nextVersion();
        ++slot.underway;
    });
    return {&slot, slot.written};
}

void SettingsCache::endWrite(const Passage& passage, Outcome outcome)
{
    const std::lock_guard lock(m_mutex);
    Slot& slot = *passage.slot;
    change(slot, [&] {
        slot.touched = nextVersion();
        --slot.underway;
        if (outcome == Outcome::Saved && slot.written == passage.version)
            slot.entry.saved = true;
    });
}

std::optional<SettingsCache::Pending> SettingsCache::nextPending(const std::wstring* after)
{
    const std::lock_guard lock(m_mutex);
    auto position = after ? m_slots.upper_bound(*after) : m_slots.begin();
    while (position != m_slots.end() && (position->second.entry.saved || position->second.underway != 0))
        ++position;
    if (position == m_slots.end())
        return std::nullopt;
    Slot& slot = position->second;
    Pending pending{position->first, slot.entry.type, slot.entry.value, {&slot, slot.written}};
    change(slot, [&] { ++slot.underway; });
    return pending;
}

bool SettingsCache::endSave(const Passage& passage, Outcome outcome)
{
    const std::lock_guard lock(m_mutex);
    Slot& slot = *passage.slot;
    const bool overtaken = slot.written != passage.version && outcome == Outcome::Saved;
    change(slot, [&] {
        --slot.underway;
        if (overtaken)
            slot.written = slot.touched = nextVersion(); // also keeps a write still underway from marking it saved
        if (outcome == Outcome::Saved)
            slot.entry.saved = !overtaken;
    });
    return !overtaken;
}

} // namespace vx::settings::details
