#include "tarnctl/health/gatherfacts.h"

#include "meridia-settings/meridiasettingsapi.h"
#include "settings-api/settings.h"
#include "tarnctl/health/gather.h"
#include "tarnctl/health/machinefacts.h"
#include "tarnctl/health/storefacts.h"
#include "tarnctl/store.h"
#include "vxtl/clock.h"
#include "vxtl/comutils.h"

namespace tarnctl::health {

namespace {

/// Null when the store can't be reached, which is noted.
std::shared_ptr<vx::settings::Settings> openStore(Facts& facts)
{
    try {
        return std::make_shared<vx::settings::Settings>(tarnctl::openStore());
    } catch (const std::exception& exception) {
        noteStoreTrouble(textOf(exception), facts);
        return nullptr;
    }
}

} // namespace

Facts gatherFacts()
{
    // For the Task Scheduler; entered before anything loads it, left after all of it is let go.
    const vx::comutils::ComApartment apartment;
    Facts facts;
    facts.now = vx::systemTicks() / vx::ticksPerSecond;
    const auto store = openStore(facts);
    if (store)
        gatherFromStore(store, facts);
    gatherFromMachine(store, facts);
    return facts;
}

} // namespace tarnctl::health
