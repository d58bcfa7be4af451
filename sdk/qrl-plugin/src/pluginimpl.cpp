#include "qrl-plugin/pluginimpl.h"

namespace vx::qrl {

void PluginImpl::onPowerEvent(std::uint32_t, std::uint32_t) {}

void PluginImpl::onSessionChangeEvent(std::uint32_t, std::uint32_t) {}

PluginImpl::~PluginImpl() = default;

} // namespace vx::qrl
