#include "bench/stoprequest.h"

#include "tarnhd/wusstopper/triggerkey.h"
#include "vxtl/clock.h"
#include "vxtl/guarded.h"
#include "vxtl/registry.h"

namespace bench {

StopRequest::StopRequest() : m_registry(vx::registry::createWin32Registry())
{
    m_registry->createKey(vx::tarn::triggerKey)
        ->setInt64Value(vx::tarn::triggerTimeValue, vx::systemTicks() / vx::ticksPerSecond);
}

StopRequest::~StopRequest()
{
    vx::guarded([this] { m_registry->deleteKey(vx::tarn::triggerKey); });
}

} // namespace bench
