#include "service/stoptime.h"

#include "vxtl/registry.h"

namespace devhost::service {

namespace {

constexpr auto valueName = L"StopSeconds";
constexpr std::int32_t refused = -1;

std::shared_ptr<vx::registry::RegistryKey> keptKey()
{
    return vx::registry::createWin32Registry()->localMachine()->createKey(keptKeyPath);
}

} // namespace

StopTime readStopTime()
{
    const auto key = keptKey();
    const auto seconds = key->doesValueExist(valueName) ? key->getInt32Value(valueName) : 0;
    return seconds == refused ? std::nullopt : StopTime(seconds);
}

void writeStopTime(const StopTime& time)
{
    keptKey()->setInt32Value(valueName, time ? static_cast<std::int32_t>(time->count()) : refused);
}

} // namespace devhost::service
