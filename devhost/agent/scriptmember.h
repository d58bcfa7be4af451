#pragma once

#include "vxtl/enumtext.h"

#include <chrono>
#include <cstdint>
#include <functional>
#include <limits>
#include <nlohmann/json_fwd.hpp>
#include <string>

namespace devhost::agent {

/// A member of a script together with the place that error messages name. Reading throws ScriptError.
struct Member {
    std::string place;
    const nlohmann::json& value;

    [[noreturn]] void mustBe(const char* what) const;
    [[noreturn]] void isUnknown() const;
};

bool readBool(const Member& member);
std::string readText(const Member& member);
std::wstring readWideText(const Member& member);
/// A whole number within the bounds.
std::int64_t readInteger(const Member& member, std::int64_t least, std::int64_t most);
/// One that the type, of 32 bits at most, can hold.
template <typename Number>
Number readNumber(const Member& member)
{
    return static_cast<Number>(
        readInteger(member, std::numeric_limits<Number>::min(), std::numeric_limits<Number>::max()));
}
std::chrono::milliseconds readDuration(const Member& member);
/// One of the enumeration's texts; `kind` says what they are.
template <typename Enumeration>
Enumeration readWord(const Member& member, const char* kind)
{
    const auto value = vx::findText<Enumeration>(readText(member));
    if (!value)
        member.mustBe(kind);
    return *value;
}

/// Passes the members of an object on by name, each with its own place: "runs[0]" has "runs[0].exitCode".
void readMembers(const Member& member, const std::function<void(const std::string& name, const Member&)>& read);
/// Passes the elements of a list on: "runs" has "runs[0]". There must be one at least.
void readElements(const Member& member, const std::function<void(const Member&)>& read);

} // namespace devhost::agent
