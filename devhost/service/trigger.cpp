#include "service/trigger.h"

#include "tarnhd/wusstopper/triggerkey.h"
#include "vxtl/registry.h"

#include <string>

namespace devhost::service {

using vx::tarn::triggerKey;
using vx::tarn::triggerTimeValue;

void makeTrigger(std::int64_t created, TriggerType type)
{
    const auto key = vx::registry::createWin32Registry()->createKey(triggerKey);
    switch (type) {
    case TriggerType::Qword: return key->setInt64Value(triggerTimeValue, created);
    case TriggerType::Dword: return key->setInt32Value(triggerTimeValue, static_cast<std::int32_t>(created));
    case TriggerType::String: return key->setStringValue(triggerTimeValue, std::to_wstring(created));
    case TriggerType::None:
        if (key->doesValueExist(triggerTimeValue))
            key->deleteValue(triggerTimeValue);
    }
}

bool deleteTrigger()
{
    const auto registry = vx::registry::createWin32Registry();
    const bool found = registry->doesKeyExist(triggerKey);
    if (found)
        registry->deleteTree(triggerKey);
    return found;
}

} // namespace devhost::service
