#include "vxtl/modulelife.h"

#include <atomic>

namespace vx::modulelife {

namespace {

std::atomic<bool> kept{false};

} // namespace

void noteReferenceLeft() noexcept
{
    kept = true;
}

bool isKept() noexcept
{
    return kept;
}

} // namespace vx::modulelife
