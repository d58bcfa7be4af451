#include "agent/step.h"

#include <type_traits>

namespace devhost::agent {

std::string nameOf(const Step& step)
{
    const auto name = [](const auto& kind) -> std::string {
        if constexpr (std::is_same_v<decltype(kind), const SystemStep&>)
            return vx::toText(kind);
        else
            return kind.name;
    };
    return std::visit(name, step);
}

bool isDeployment(const Step& step)
{
    const auto* word = std::get_if<SystemStep>(&step);
    return word && *word == SystemStep::Deploy;
}

} // namespace devhost::agent
