#include "tarnctl/log/route.h"

#include "tarnctl/log/filter.h"
#include "tarnctl/log/output.h"

namespace tarnctl::log {

logreading::LineSplitter::Sink route(Filter& filter, Output& output)
{
    if (filter.passesAll() && !output.needsRecords())
        return [&output](std::string_view line) { output.line(line, nullptr); };
    return [&filter, &output](std::string_view line) {
        const auto record = logreading::parseRecord(line);
        const auto* known = record ? &*record : nullptr;
        if (filter.passes(line, known))
            output.line(line, known);
    };
}

} // namespace tarnctl::log
