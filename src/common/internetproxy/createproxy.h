#pragma once

#include "settings-api/settings.h"

#include <memory>

namespace vx::tarn::common {

class IAutoProxyDriver;
class InternetProxy;
class ISessionDriver;

/// The way that the settings ask for. Throws std::invalid_argument for a word that names none, and what the
/// constructors and reading the settings throw.
std::shared_ptr<InternetProxy> createProxy(std::shared_ptr<settings::Settings> settings,
    std::shared_ptr<ISessionDriver> sessions, std::shared_ptr<IAutoProxyDriver> autoProxy);

} // namespace vx::tarn::common
