#include "synchronize.h"

#include "valuekinds.h"

#include "logging/logstream.h"
#include "vxtl/guarded.h"
#include "vxtl/scopeexit.h"

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

enum class SaveResult { Saved, Failed, Overtaken };

SaveResult save(SettingsCache& cache, SettingsImpl& provider, const SettingsCache::Pending& pending)
{
    ScopeExit failed([&] { cache.endSave(pending.passage, SettingsCache::Outcome::Failed); });
    const auto* handler = std::find_if(std::begin(handlers), std::end(handlers),
        [&](const Handler& candidate) { return candidate.type == pending.type; });
    if (handler == std::end(handlers)) {
        LogStream(Level::Warning) << "Failed to find a handler to save the cached value. Type: "
                                  << static_cast<std::int32_t>(pending.type);
        return SaveResult::Failed;
    }
    if (!guardedAgainst<std::exception>(Level::Warning, "Failed to save a cache value to the settings. Reason: ", [&] {
            handler->save(provider, pending.name, pending.value);
        }))
        return SaveResult::Failed;
    LogStream(Level::Debug) << "Cached value " << pending.name << " successfully saved";
    failed.dismiss();
    return cache.endSave(pending.passage, SettingsCache::Outcome::Saved) ? SaveResult::Saved : SaveResult::Overtaken;
}

} // namespace

SynchronizeResult synchronize(SettingsCache& cache, SettingsImpl& provider)
{
    if (!cache.hasPending())
        return SynchronizeResult::Idle;
    if (!cache.beginWalk())
        return SynchronizeResult::Busy;
    const ScopeExit walk([&] { cache.endWalk(); });
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
