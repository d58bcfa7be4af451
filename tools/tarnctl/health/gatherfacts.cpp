#include "tarnctl/health/gatherfacts.h"

#include "common/settings/hostsettings.h"
#include "meridia-settings/meridiasettingsapi.h"
#include "settings-api/exceptions.h"
#include "settings-api/settings.h"
#include "tarnctl/health/gather.h"
#include "tarnctl/health/machinefacts.h"
#include "tarnctl/health/storefacts.h"
#include "tarnctl/store.h"
#include "vxtl/clock.h"
#include "vxtl/comutils.h"

namespace tarnctl::health {

namespace {

/// A library may be content before the first question. Any answer will do.
void askStore(const std::shared_ptr<vx::settings::Settings>& store)
{
    try {
        vx::tarn::HostSettings(store).lastSuccessfulUpdateTimestamp();
    } catch (const vx::settings::ServerUnreachableException&) {
        throw;
    } catch (const std::exception&) {
        // An answer.
    }
}

/// Null when the store can't be reached, which is noted.
std::shared_ptr<vx::settings::Settings> openStore(Facts& facts)
{
    try {
        auto store = std::make_shared<vx::settings::Settings>(tarnctl::openStore());
        askStore(store);
        return store;
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
