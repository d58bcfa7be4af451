#include "tarnctl/codes.h"

#include "common/exitstatus/exitstatus.h"
#include "vxtl/str.h"

#include <algorithm>
#include <cstdio>
#include <iterator>

namespace tarnctl {

namespace {

// The system ends a process with the number of its fault, which is an error by its upper two bits.
constexpr std::uint32_t firstFault = 0xC0000000;

} // namespace

std::string meaningOf(std::int64_t code)
{
    using vx::tarn::common::ExitStatus;
    const auto& all = vx::tarn::common::exitstatus::all;
    // The log tells it without a sign.
    const auto bits = static_cast<std::uint32_t>(code);
    const auto known = std::find_if(std::begin(all), std::end(all),
        [bits](const ExitStatus& status) { return static_cast<std::uint32_t>(status.code()) == bits; });
    if (known != std::end(all))
        return vx::str::toUtf8(known->message());
    if (bits < firstFault)
        return "no code of the agent's own";
    char text[64];
    std::snprintf(
        text, sizeof(text), "no code of the agent's own, but as of a crash: 0x%08x", static_cast<unsigned>(bits));
    return text;
}

} // namespace tarnctl
