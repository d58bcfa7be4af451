#include "tarnhd/scheduler/triggers.h"

#include "logging/logstream.h"
#include "tarnhd/scheduler/trigger.h"
#include "vxtl-com/succeeded.h"
#include "vxtl-com/variant.h"

#include <taskschd.h>

namespace vx::scheduler {

using com::ComPtr;
using com::succeeded;
using logging::Level;
using logging::LogStream;

namespace {

/// From the last to the first, as each removal moves those behind it.
bool removeAll(ITriggerCollection& collection)
{
    LONG count = 0;
    if (!succeeded(collection.get_Count(&count), "Failed to get a task triggers collection count. HRESULT = "))
        return false;
    for (LONG index = count; index >= 1; --index)
        if (const HRESULT result = collection.Remove(com::variantOf(index)); FAILED(result)) {
            LogStream(Level::Error) << "Failed to remove trigger with index " << index << ". HRESULT = " << result;
            return false;
        }
    return true;
}

bool add(ITriggerCollection& collection, const Trigger* trigger, std::size_t index)
{
    if (!trigger) {
        LogStream(Level::Error) << "Failed to create an empty trigger.";
        return false;
    }
    if (!trigger->create(collection, L"trigger" + std::to_wstring(index))) {
        LogStream(Level::Error) << "Failed to create trigger or to add trigger to a collection.";
        return false;
    }
    return true;
}

} // namespace

bool replaceTriggers(ITaskDefinition& definition, const std::vector<std::shared_ptr<Trigger>>& triggers)
{
    ComPtr<ITriggerCollection> collection;
    if (!succeeded(definition.get_Triggers(collection.put()), "Failed to get a task triggers collection. HRESULT = ") ||
        !removeAll(*collection))
        return false;
    LogStream(Level::Info) << triggers.size() << " triggers to be set";
    for (std::size_t index = 0; index < triggers.size(); ++index)
        if (!add(*collection, triggers[index].get(), index))
            return false;
    return true;
}

} // namespace vx::scheduler
