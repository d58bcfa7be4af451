#pragma once

#include "logreading/story.h"

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

namespace tarnctl::why {

/// What is to be explained.
enum class Subject { Scan, Install, Reboot };

/// One start of the agent, or one step to a reboot, in both forms.
struct Explanation {
    std::vector<std::string> lines;
    nlohmann::ordered_json object;
};

/// The last `count` of what the log tells about the subject, in its order.
std::vector<Explanation> explain(const logreading::Story& story, Subject subject, std::size_t count);

} // namespace tarnctl::why
