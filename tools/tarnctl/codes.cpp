#include "tarnctl/codes.h"

#include "common/exitstatus/exitstatus.h"
#include "vxtl/str.h"

#include <algorithm>
#include <iterator>

namespace tarnctl {

std::string meaningOf(std::int64_t code)
{
    using vx::tarn::common::ExitStatus;
    const auto& all = vx::tarn::common::exitstatus::all;
    const auto known = std::find_if(
        std::begin(all), std::end(all), [code](const ExitStatus& status) { return status.code() == code; });
    return known == std::end(all) ? "no code of the agent's own" : vx::str::toUtf8(known->message());
}

} // namespace tarnctl
