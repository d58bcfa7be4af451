#pragma once

#include <memory>

namespace vx::settings {
class Settings;
}
namespace vx::scheduler {
class Scheduler;
}
namespace vx::tarn::common {
class CommonFactory;
}

namespace vx::tarn {

class ActionScheduler;
class AutoInstallation;
class CurrentOperations;
class TarnpatchManager;

/// Makes what only the plug-in has; each call makes a new object. Any thread. Operations pass on what the
/// constructors throw.
class TarnhdFactory {
public:
    /// `commonFactory` is borrowed and outlives all that is made here.
    explicit TarnhdFactory(common::CommonFactory* commonFactory);
    virtual ~TarnhdFactory();
    TarnhdFactory(const TarnhdFactory&) = delete;
    TarnhdFactory& operator=(const TarnhdFactory&) = delete;

    virtual std::shared_ptr<ActionScheduler> createActionScheduler();
    virtual std::shared_ptr<AutoInstallation> createAutoInstallation(
        const std::shared_ptr<settings::Settings>& settings);
    virtual std::shared_ptr<TarnpatchManager> createTarnpatchManager(
        const std::shared_ptr<settings::Settings>& settings);
    /// Of this computer's Task Scheduler.
    virtual std::shared_ptr<scheduler::Scheduler> createScheduler();
    virtual std::shared_ptr<CurrentOperations> createCurrentOperations(
        const std::shared_ptr<settings::Settings>& settings);

private:
    common::CommonFactory* m_commonFactory;
};

} // namespace vx::tarn
