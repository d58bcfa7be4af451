#pragma once

#include "agent/systemstep.h"

#include <memory>
#include <nlohmann/json_fwd.hpp>

namespace vx::tarn::common {
class CommonFactory;
class IWindowsUpdates;
} // namespace vx::tarn::common

namespace devhost::agent {

/// Carries out one run's steps for real, with the classes that the real agent has from the factory. One thread, which
/// is in a single-threaded apartment for as long as this lives: Windows has its policy object for these only.
class SystemSteps {
public:
    /// `factory` outlives this object. Throws ComException.
    explicit SystemSteps(vx::tarn::common::CommonFactory& factory);

    /// Gives what the operation gave: a status code for updates, a boolean for prompts, null for the deployment, which
    /// is the caller's. Throws what the factory throws, for a prompt also without a store.
    nlohmann::json perform(SystemStep step);

private:
    struct Apartment {
        Apartment();
        ~Apartment();
    };

    vx::tarn::common::IWindowsUpdates& windowsUpdates();

    const Apartment m_apartment; // first in, last out
    vx::tarn::common::CommonFactory& m_factory;
    /// The same for all steps, as it knows what a pause has found; empty until needed.
    std::shared_ptr<vx::tarn::common::IWindowsUpdates> m_windowsUpdates;
};

} // namespace devhost::agent
