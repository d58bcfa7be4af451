#include "settings-api/settings.h"

#include <nlohmann/json.hpp>

namespace vx::settings {

nlohmann::json Settings::getJsonValue(const std::wstring& name) const
{
    return m_impl->getJsonValue(name);
}

} // namespace vx::settings
