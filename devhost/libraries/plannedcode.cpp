#include "libraries/plannedcode.h"

#include "machine/plannedfailure.h"
#include "vxtl/guarded.h"

namespace devhost {

std::optional<std::int32_t> plannedCode(std::string_view call) noexcept
{
    std::optional<std::int32_t> code;
    vx::guarded("The plan of failures cannot be read. ", [&] { code = machine::takePlannedFailure(call); });
    return code;
}

} // namespace devhost
