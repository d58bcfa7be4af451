// Any JSON is refused with one of the named errors or gives an event that is read again as the same from what is
// written.

#include "common/reportevents/reportevent.h"
#include "input.h"

using namespace vx::tarn::common;
using nlohmann::json;

namespace {

std::optional<ReportEvent> read(const json& value)
{
    try {
        return reportEventFromJson(value);
    } catch (const json::type_error& e) {
        fuzz::require(e.id == 302 || e.id == 304, "a wrong type, or a member of no object");
    } catch (const json::out_of_range& e) {
        fuzz::require(e.id == 403, "a missing key");
    } catch (const std::runtime_error& e) {
        fuzz::require(std::string_view(e.what()) == "Bad GUID format", "the error's text");
    }
    return std::nullopt;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const auto input = fuzz::json(data, size);
    const auto event = input ? read(*input) : std::nullopt;
    // What a type that is not known gives, whatever stands beside it.
    if (!event || event == ReportEvent{})
        return 0;
    fuzz::require(read(toJson(*event)) == event, "round trip");
    return 0;
}
