#include "common/windowsupdates/windowsupdates.h"

#include "common/windowsupdates/igrouppolicy.h"
#include "common/windowsupdates/lastinstallation.h"
#include "common/windowsupdates/windowsupdatesplaces.h"
#include "vxtl/guarded.h"
#include "vxtl/registry.h"

#include <array>

namespace vx::tarn::common {

using logging::Level;
using logging::LogStream;
using State = WindowsUpdatesState;

namespace {

struct Place : WindowsUpdatesPlace {
    unsigned long readAccess, writeAccess;
};

constexpr std::array fields = {
    &State::noAutoUpdate, &State::auOptions, &State::scheduledInstallDay, &State::scheduledInstallTime};

constexpr Place policy = {windowsUpdatesPolicy, registry::allAccess, registry::allAccess};
constexpr Place saved = {savedWindowsUpdates, registry::readAccess, registry::readAccess | registry::writeAccess};

void read(const registry::Registry& registry, const Place& place, State& state)
{
    const auto key = registry.openKey(place.key, place.readAccess);
    for (std::size_t i = 0; i < fields.size(); ++i)
        state.*fields[i] = key->getInt32Value(place.names[i]);
}

void write(const registry::Registry& registry, const Place& place, const State& state)
{
    const auto key = registry.openKey(place.key, place.writeAccess);
    for (std::size_t i = 0; i < fields.size(); ++i)
        key->setInt32Value(place.names[i], (state.*fields[i]).value_or(0));
}

} // namespace

WindowsUpdates::WindowsUpdates(std::shared_ptr<IGroupPolicy> groupPolicy, std::shared_ptr<registry::Registry> registry,
    std::shared_ptr<IAutomaticUpdatesDriver> automaticUpdates)
    : m_groupPolicy(std::move(groupPolicy)), m_registry(std::move(registry)),
      m_automaticUpdates(std::move(automaticUpdates))
{}

ExitStatus WindowsUpdates::pause()
{
    VX_LOG_SCOPE();
    LogStream(Level::Info) << "Pause windows updates.";
    const State earlier = getSavedWindowsUpdatesState();
    State paused;
    paused.noAutoUpdate = 1;
    setGroupPolicyWindowsUpdatesState(paused, m_state);
    // After a pause that was never resumed the policy is ours, not the administrator's.
    if (earlier.isComplete())
        m_state = earlier;
    else
        setSavedWindowsUpdatesState(m_state);
    return exitstatus::success;
}

// What is kept becomes zeros and stays complete, so the next pause goes back to them, and restore switches the updates
// on where somebody else has switched them off. Both are meant to stay.
ExitStatus WindowsUpdates::resume()
{
    VX_LOG_SCOPE();
    LogStream(Level::Info) << "Resume windows updates.";
    State current;
    setGroupPolicyWindowsUpdatesState(m_state, current);
    setSavedWindowsUpdatesState({});
    return exitstatus::success;
}

ExitStatus WindowsUpdates::restore()
{
    VX_LOG_SCOPE();
    const State earlier = getSavedWindowsUpdatesState();
    if (!earlier.isComplete())
        return exitstatus::success;
    LogStream(Level::Warning) << "Restoring Windows Update state " << *earlier.noAutoUpdate;
    State current;
    setGroupPolicyWindowsUpdatesState(earlier, current);
    setSavedWindowsUpdatesState({});
    return exitstatus::success;
}

Ticks WindowsUpdates::getLastInstallationDate()
{
    VX_LOG_SCOPE();
    return lastInstallationDate(*m_automaticUpdates);
}

State WindowsUpdates::getSavedWindowsUpdatesState() const
{
    State state;
    guarded("Failed to retrieve saved windows updates state. Reason: ", [&] { read(*m_registry, saved, state); });
    return state;
}

void WindowsUpdates::setSavedWindowsUpdatesState(const State& state) const
{
    guarded("Failed to set windows updates state. Reason: ", [&] {
        write(*m_registry, saved, state);
        LogStream(Level::Info) << "setSavedWindowsUpdatesState. " << state;
    });
}

bool WindowsUpdates::getGroupPolicyWindowsUpdatesState(State& state) const
{
    return guarded(Level::Warning, "Failed to get group policy windows updates state. Reason: ", [&] {
        read(*m_registry, policy, state);
        LogStream(Level::Info) << "getGroupPolicyWindowsUpdatesState. " << state;
    });
}

void WindowsUpdates::setGroupPolicyWindowsUpdatesState(const State& desired, State& current) const
{
    if (!getGroupPolicyWindowsUpdatesState(current)) {
        LogStream(Level::Warning) << "Failed to get group policy windows updates state.";
        return;
    }
    LogStream(Level::Info) << "Current WindowsUpdates state: " << current.noAutoUpdate.value_or(-1) << ", will be "
                           << desired.noAutoUpdate.value_or(-1);
    if (desired.noAutoUpdate != current.noAutoUpdate)
        writePolicy(desired);
}

void WindowsUpdates::writePolicy(const State& state) const
{
    // The words are those of the read, and meant.
    guarded(Level::Warning, "Failed to get group policy windows updates state. Reason: ", [&] {
        write(*m_registry, policy, state);
        LogStream(Level::Info) << "setGroupPolicyWindowsUpdatesState. " << state;
        m_groupPolicy->save(PolicySection::Machine, PolicyChange::Add, registryExtension, policySnapIn);
    });
}

} // namespace vx::tarn::common
