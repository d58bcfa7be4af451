#include "tarnhd/factory/tarnhdfactory.h"

#include "common/factory/commonfactory.h"
#include "tarnhd/actionscheduler/actionscheduler.h"
#include "tarnhd/autoinstallation/autoinstallation.h"
#include "tarnhd/currentoperations/currentoperations.h"
#include "tarnhd/manager/tarnpatchmanager.h"
#include "tarnhd/scheduler/scheduler.h"
#include "vxtl/registry.h"

namespace vx::tarn {

using namespace std::chrono_literals;

TarnhdFactory::TarnhdFactory(common::CommonFactory* commonFactory) : m_commonFactory(commonFactory) {}

TarnhdFactory::~TarnhdFactory() = default;

std::shared_ptr<ActionScheduler> TarnhdFactory::createActionScheduler()
{
    return std::make_shared<ActionScheduler>();
}

std::shared_ptr<AutoInstallation> TarnhdFactory::createAutoInstallation(
    const std::shared_ptr<settings::Settings>& settings)
{
    return std::make_shared<AutoInstallation>(
        automaticInstallationTask, [this] { return createScheduler(); }, TarnpatchSettings(settings),
        TarnpatchStatus(settings), m_commonFactory->createRegistry());
}

std::shared_ptr<TarnpatchManager> TarnhdFactory::createTarnpatchManager(
    const std::shared_ptr<settings::Settings>& settings)
{
    return std::make_shared<TarnpatchManager>(settings, m_commonFactory, 1s);
}

std::shared_ptr<scheduler::Scheduler> TarnhdFactory::createScheduler()
{
    return scheduler::createScheduler();
}

std::shared_ptr<CurrentOperations> TarnhdFactory::createCurrentOperations(
    const std::shared_ptr<settings::Settings>& settings)
{
    return std::make_shared<CurrentOperations>(settings);
}

} // namespace vx::tarn
