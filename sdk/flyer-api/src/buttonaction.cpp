#include "flyer-api/buttonaction.h"

#include <utility>

namespace vx::flyers::actions {

ButtonAction::ButtonAction(
    std::int32_t type, std::optional<std::string> firstArgument, std::optional<std::string> secondArgument)
    : m_type(type), m_firstArgument(std::move(firstArgument)), m_secondArgument(std::move(secondArgument))
{}

ButtonAction::~ButtonAction() = default;

std::int32_t ButtonAction::getType() const
{
    return m_type;
}

const std::optional<std::string>& ButtonAction::getFirstArgument() const
{
    return m_firstArgument;
}

const std::optional<std::string>& ButtonAction::getSecondArgument() const
{
    return m_secondArgument;
}

} // namespace vx::flyers::actions
