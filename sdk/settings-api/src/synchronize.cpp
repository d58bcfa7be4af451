#include "synchronize.h"

#include "valuekinds.h"

#include "logging/logstream.h"
#include "vxtl/exception.h"

#include <algorithm>
#include <iterator>

namespace vx::settings::details {

namespace {

using logging::Level;
using logging::LogStream;

struct Handler {
    ValueType type;
    void (*save)(SettingsImpl& provider, const std::wstring& name, const nlohmann::json& value);
};

template <typename Kind>
constexpr Handler handlerOf{Kind::type, [](SettingsImpl& provider, const std::wstring& name, const nlohmann::json& v) {
                                (provider.*Kind::set)(name, Kind::fromJson(v));
                            }};

constexpr Handler handlers[] = {handlerOf<BoolKind>, handlerOf<Int32Kind>, handlerOf<Int64Kind>, handlerOf<DoubleKind>,
    handlerOf<StringKind>, handlerOf<JsonKind>};

class Walk {
public:
    explicit Walk(SettingsCache& cache) : m_cache(cache), m_isOurs(cache.beginWalk()) {}
    ~Walk()
    {
        if (m_isOurs)
            m_cache.endWalk();
    }
    Walk(const Walk&) = delete;
    Walk& operator=(const Walk&) = delete;

    bool isOurs() const noexcept { return m_isOurs; }

private:
    SettingsCache& m_cache;
    const bool m_isOurs;
};

/// Ends the passage of a value as failed unless it has succeeded, also for exceptions that only pass by.
class Save {
public:
    Save(SettingsCache& cache, const SettingsCache::Passage& passage) : m_cache(cache), m_passage(passage) {}
    ~Save()
    {
        if (!m_ended)
            m_cache.endSave(m_passage, SettingsCache::Outcome::Failed);
    }
    Save(const Save&) = delete;
    Save& operator=(const Save&) = delete;

    bool succeed()
    {
        m_ended = true;
        return m_cache.endSave(m_passage, SettingsCache::Outcome::Saved);
    }

private:
    SettingsCache& m_cache;
    const SettingsCache::Passage& m_passage;
    bool m_ended = false;
};

enum class SaveResult { Saved, Failed, Overtaken };

SaveResult save(SettingsCache& cache, SettingsImpl& provider, const SettingsCache::Pending& pending)
{
    Save passage(cache, pending.passage);
    const auto* handler = std::find_if(std::begin(handlers), std::end(handlers),
        [&](const Handler& candidate) { return candidate.type == pending.type; });
    if (handler == std::end(handlers)) {
        LogStream(Level::Warning) << "Failed to find a handler to save the cached value. Type: "
                                  << static_cast<std::int32_t>(pending.type);
        return SaveResult::Failed;
    }
    try {
        handler->save(provider, pending.name, pending.value);
    } catch (const std::exception& exception) {
        LogStream(Level::Warning) << "Failed to save a cache value to the settings. Reason: " << What(exception);
        return SaveResult::Failed;
    }
    LogStream(Level::Debug) << "Cached value " << pending.name << " successfully saved";
    return passage.succeed() ? SaveResult::Saved : SaveResult::Overtaken;
}

} // namespace

SynchronizeResult synchronize(SettingsCache& cache, SettingsImpl& provider)
{
    if (!cache.hasPending())
        return SynchronizeResult::Idle;
    const Walk walk(cache);
    if (!walk.isOurs())
        return SynchronizeResult::Busy;
    bool complete = true;
    const std::wstring* last = nullptr;
    while (const auto pending = cache.nextPending(last)) {
        const SaveResult result = save(cache, provider, *pending);
        complete = complete && result != SaveResult::Failed;
        if (result != SaveResult::Overtaken)
            last = &pending->name;
    }
    return complete ? SynchronizeResult::Complete : SynchronizeResult::Incomplete;
}

} // namespace vx::settings::details
