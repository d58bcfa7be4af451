#include "common/reboot/restartarguments.h"

namespace vx::tarn::common {

std::int64_t restartForceTime(Ticks now, std::chrono::seconds forceTime)
{
    return saturatingAdd(now, saturatingMultiply(forceTime.count(), ticksPerSecond)) / ticksPerSecond;
}

std::wstring restartArguments(std::chrono::minutes postponeFor, std::int64_t forceAt)
{
    return L"--type tarn --postpone_for " + std::to_wstring(postponeFor.count()) + L" --force_at " +
           std::to_wstring(forceAt);
}

} // namespace vx::tarn::common
