#include "agent/flyerreader.h"

#include "agent/agentscript.h"
#include "agent/scriptmember.h"

namespace devhost::agent {

namespace {

using namespace vx::flyers;

template <typename Action>
Action readAction(const Member& member)
{
    std::int32_t type = 0;
    std::optional<std::string> first, second;
    readMembers(member, [&](const std::string& name, const Member& part) {
        if (name == "type")
            type = readNumber<std::int32_t>(part);
        else if (name == "first")
            first = readText(part);
        else if (name == "second")
            second = readText(part);
        else
            part.isUnknown();
    });
    return Action(type, first, second);
}

FlyerButton readButton(const Member& member)
{
    FlyerButton button;
    readMembers(member, [&](const std::string& name, const Member& part) {
        if (name == "text")
            button.text = readWideText(part);
        else if (name == "action")
            button.action = readAction<actions::ButtonAction>(part);
        else
            part.isUnknown();
    });
    return button;
}

DropdownItem readMenuItem(const Member& member)
{
    DropdownItem item;
    readMembers(member, [&](const std::string& name, const Member& part) {
        if (name == "text")
            item.text = readWideText(part);
        else if (name == "selected")
            item.selected = readBool(part);
        else if (name == "action")
            item.action = readAction<actions::DropDownAction>(part);
        else
            part.isUnknown();
    });
    return item;
}

void readPart(FlyerStep& step, const std::string& name, const Member& member)
{
    auto& flyer = step.definition;
    if (name == "type")
        flyer.type = readNumber<std::int32_t>(member);
    else if (name == "heading")
        flyer.heading = readWideText(member);
    else if (name == "message")
        flyer.message = readWideText(member);
    else if (name == "details")
        readElements(member, [&](const Member& line) { flyer.details.push_back(readWideText(line)); });
    else if (name == "menu")
        readElements(member, [&](const Member& item) { flyer.dropdownItems.push_back(readMenuItem(item)); });
    else if (name == "buttons")
        readElements(member, [&](const Member& button) { flyer.buttons.push_back(readButton(button)); });
    else if (name == "action")
        flyer.action = readAction<actions::ButtonAction>(member);
    else if (name == "argument")
        step.argument = readNumber<std::uint32_t>(member);
    else
        member.isUnknown();
}

} // namespace

FlyerStep readFlyer(const Member& member)
{
    FlyerStep step;
    readMembers(member, [&](const std::string& name, const Member& part) { readPart(step, name, part); });
    return step;
}

} // namespace devhost::agent
