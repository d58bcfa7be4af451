#pragma once

#include "flyer-api/buttonaction.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace vx::flyers {

/// One line of a flyer's drop-down menu.
struct DropdownItem {
    bool selected = false; ///< shown while the menu is closed
    std::wstring text;
    std::optional<actions::DropDownAction> action;
};

struct FlyerButton {
    std::wstring text;
    std::optional<actions::ButtonAction> action;
};

/// All that a flyer shows. The types, 0 to 3, are this program's numbers for those of the flyer library.
struct FlyerDefinition {
    std::int32_t type = 0;
    std::wstring heading;
    std::wstring message;
    std::vector<std::wstring> details; ///< a line each
    std::vector<DropdownItem> dropdownItems;
    std::vector<FlyerButton> buttons;
    std::optional<actions::ButtonAction> action; ///< of the flyer as a whole
};

} // namespace vx::flyers
