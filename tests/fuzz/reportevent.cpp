// Any JSON is refused with the JSON library's error or "Bad GUID format", or gives an event that is
// written and read again as the same.

#include "common/reportevent.h"
#include "input.h"

#include <nlohmann/json.hpp>

#include <stdexcept>

using namespace vx::tarn::common;
using nlohmann::json;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const json value = json::parse(fuzz::bytes(data, size), nullptr, false);
    if (value.is_discarded())
        return 0;
    ReportEvent event;
    try {
        event = reportEventFromJson(value);
    } catch (const json::exception&) {
        return 0;
    } catch (const std::runtime_error& e) {
        fuzz::require(std::string_view(e.what()) == "Bad GUID format", "the error's text");
        return 0;
    }
    const json written = toJson(event);
    // An unknown state keeps a number of no table, which is written as null and can't be read again.
    if (written.contains("status") && written["status"]["status"].is_null())
        return 0;
    fuzz::require(reportEventFromJson(written) == event, "round trip");
    return 0;
}
