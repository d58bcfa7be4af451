#include "agent/scriptmember.h"

#include "agent/agentscript.h"

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
