#include "tarnhd/wusstopper/wusstopper.h"

#include "common/event/event.h"
#include "common/factory/commonfactory.h"
#include "tarnhd/threads/joinedthread.h"
#include "tarnhd/wusstopper/triggerkey.h"
#include "vxtl/guarded.h"
#include "vxtl/registry.h"

namespace vx::tarn {

using logging::Level;
using logging::LogStream;

WUSStopper::WUSStopper(const std::shared_ptr<settings::Settings>& settings, common::CommonFactory* commonFactory,
    const WUSStopperOptions& options)
    : m_commonFactory(commonFactory), m_registry(commonFactory->createRegistry()),
      m_poll(settings, commonFactory, options)
{}

WUSStopper::~WUSStopper()
{
    endThread();
}

void WUSStopper::start()
{
    VX_LOG_SCOPE();
    guarded([this] {
        endThread();
        m_stopEvent = m_commonFactory->createEvent(true, false, {}, false, nullptr);
        m_registryEvent = m_commonFactory->createEvent(false, false, {}, false, nullptr);
        m_pollThread = std::make_unique<JoinedThread>([this] { m_poll.pollThread({*m_stopEvent, *m_registryEvent}); });
        LogStream(Level::Info) << "WUS stopper started";
    });
}

void WUSStopper::stop()
{
    VX_LOG_SCOPE();
    guarded([this] {
        endThread();
        LogStream(Level::Info) << "WUS stopper stopped";
    });
}

void WUSStopper::endThread() noexcept
{
    if (!m_pollThread)
        return;
    m_stopEvent->set();
    m_pollThread.reset();
}

bool WUSStopper::cleanupStopFlag()
{
    VX_LOG_SCOPE();
    return guarded([this] {
        if (m_registry->doesKeyExist(triggerKey))
            m_registry->deleteKey(triggerKey);
    });
}

} // namespace vx::tarn
