#pragma once

#include "common/factory/commonfactory.h"

#include <functional>
#include <memory>

namespace vx::tarn::common {

/// Calls `make` until it gives settings. A store error is put to `retry`; when that answers false or is empty, or
/// on any other error, it throws a store error with the code of an unreachable server, whatever happened.
std::shared_ptr<settings::Settings> createSettings(
    const std::function<std::shared_ptr<settings::Settings>()>& make, const CommonFactory::RetryCallback& retry);

} // namespace vx::tarn::common
