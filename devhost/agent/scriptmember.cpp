#include "agent/scriptmember.h"

#include "agent/agentscript.h"
#include "vxtl/str.h"

#include <nlohmann/json.hpp>

namespace devhost::agent {

void Member::mustBe(const char* what) const
{
    throw ScriptError(place + " must be " + what);
}

void Member::isUnknown() const
{
    throw ScriptError(place + " is unknown");
}

bool readBool(const Member& member)
{
    return member.value.is_boolean() ? member.value.get<bool>() : (member.mustBe("true or false"), false);
}

std::string readText(const Member& member)
{
    return member.value.is_string() ? member.value.get<std::string>() : (member.mustBe("a text"), "");
}

std::wstring readWideText(const Member& member)
{
    return vx::str::fromUtf8(readText(member));
}

std::int64_t readInteger(const Member& member, std::int64_t least, std::int64_t most)
{
    if (!member.value.is_number_integer())
        member.mustBe("an integer");
    const auto number = member.value.get<std::int64_t>();
    if (number < least || number > most)
        throw ScriptError(member.place + " must be from " + std::to_string(least) + " to " + std::to_string(most));
    return number;
}

std::chrono::milliseconds readDuration(const Member& member)
{
    if (!member.value.is_number_unsigned())
        member.mustBe("a number of milliseconds");
    return std::chrono::milliseconds(member.value.get<std::int64_t>());
}

void readMembers(const Member& member, const std::function<void(const std::string& name, const Member&)>& read)
{
    if (!member.value.is_object())
        member.mustBe("an object");
    for (const auto& [name, value] : member.value.items())
        read(name, {member.place + "." + name, value});
}

void readElements(const Member& member, const std::function<void(const Member&)>& read)
{
    if (!member.value.is_array() || member.value.empty())
        member.mustBe("a list of at least one element");
    std::size_t index = 0;
    for (const auto& element : member.value)
        read({member.place + "[" + std::to_string(index++) + "]", element});
}

} // namespace devhost::agent
