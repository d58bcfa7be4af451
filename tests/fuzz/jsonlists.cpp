// Any JSON is refused with a type error or a conversion's std::invalid_argument, or is read; a queue that
// was read is written and read again as the same.

#include "common/patchinfo.h"
#include "common/patchrecords.h"
#include "input.h"

#include <nlohmann/json.hpp>

#include <stdexcept>

using namespace vx::tarn::common;
using nlohmann::json;

namespace {

template <typename Record>
void readList(const json& value)
{
    try {
        const auto records = listFromJson<Record>(value);
        fuzz::require(records.size() == value.size(), "one record an element");
        if constexpr (std::is_same_v<Record, DeploymentItem>)
            fuzz::require(listToJson(listFromJson<Record>(listToJson(records))) == listToJson(records), "round trip");
        if constexpr (std::is_same_v<Record, MissingUpdate>)
            for (const Record& record : records) {
                const MissingUpdate back = toMissingUpdate(PatchInfo(record), record.updateId);
                fuzz::require(back.bulletinId == record.bulletinId && back.cveIds == record.cveIds, "patch and back");
            }
    } catch (const json::type_error& e) {
        fuzz::require(e.id == 302, "type error 302");
    } catch (const std::invalid_argument& e) {
        fuzz::require(std::string_view(e.what()).starts_with("Invalid value for "), "the conversion's text");
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const json value = json::parse(fuzz::bytes(data, size), nullptr, false);
    if (value.is_discarded())
        return 0;
    readList<DeploymentItem>(value);
    readList<MissingUpdate>(value);
    readList<InstallationLogEntry>(value);
    return 0;
}
