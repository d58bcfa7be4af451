#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace vx::flyers::actions {

/// What happens on a click. The types, 1 to 4, are this program's numbers for those of the flyer library, which gives
/// them and the two arguments their meaning. A value.
class ButtonAction {
public:
    /// The texts go to the library as they are; a missing one is not the empty one.
    explicit ButtonAction(std::int32_t type, std::optional<std::string> firstArgument = {},
        std::optional<std::string> secondArgument = {});
    virtual ~ButtonAction();
    ButtonAction(const ButtonAction&) = default;
    ButtonAction& operator=(const ButtonAction&) = default;

    virtual std::int32_t getType() const;
    virtual const std::optional<std::string>& getFirstArgument() const;
    virtual const std::optional<std::string>& getSecondArgument() const;

private:
    std::int32_t m_type;
    std::optional<std::string> m_firstArgument;
    std::optional<std::string> m_secondArgument;
};

/// What happens when an item of the menu is chosen.
class DropDownAction : public ButtonAction {
public:
    using ButtonAction::ButtonAction;
};

} // namespace vx::flyers::actions
