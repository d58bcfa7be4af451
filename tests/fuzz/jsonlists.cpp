// Any JSON is refused with a type error or a conversion's std::invalid_argument, or gives the same records in both ways
// of reading, and these are written as they were read.

#include "common/patches/patchrecords.h"
#include "input.h"

using namespace vx::tarn::common;
using nlohmann::json;

namespace {

json written(const DeploymentItem& item)
{
    return toJson(item);
}

json written(const MissingUpdate& update)
{
    return toJson(update);
}

json written(const ListedUpdate& update)
{
    MissingUpdate whole;
    static_cast<ListedUpdate&>(whole) = update;
    return toJson(whole);
}

/// The log has no writer of its own.
json written(const LoggedState& state)
{
    return {{"update_id", toJson(DeploymentItem{{}, state.updateId})["update_id"]}, {"status", toJson(state.status)}};
}

template <typename Record, typename Whole>
std::vector<Record> readOneByOne(json value)
{
    std::vector<Record> records;
    readEach<Record>(value, [&](Record& record, json& element, bool isAsWritten) {
        if constexpr (!std::is_void_v<Whole>)
            fuzz::require(isAsWritten == (toJson(fromJson<Whole>(element)).dump() == element.dump()), "as written");
        records.push_back(record);
    });
    return records;
}

/// Nothing when the list is refused.
template <typename Read>
auto tryToRead(const json& value, Read read) -> std::optional<decltype(read(value))>
{
    try {
        return read(value);
    } catch (const json::type_error& e) {
        fuzz::require(e.id == 302, "a wrong type");
    } catch (const std::invalid_argument& e) {
        fuzz::require(std::string_view(e.what()).starts_with("Invalid value for "), "an unknown word");
    }
    return std::nullopt;
}

template <typename Record, typename Read>
void check(const json& value, Read readRecords)
{
    const auto wholes = tryToRead(value, listFromJson<Record>);
    const auto records = tryToRead(value, readRecords);
    fuzz::require(wholes.has_value() == records.has_value(), "refused by both or none");
    if (!wholes)
        return;
    fuzz::require(wholes->size() == value.size() && records->size() == value.size(), "one record an element");
    for (std::size_t i = 0; i < value.size(); ++i) {
        using Part = std::decay_t<decltype(records->front())>;
        fuzz::require(fuzz::isFrom(value[i], written(wholes->at(i))), "as it was read");
        fuzz::require(written(records->at(i)) == written(static_cast<const Part&>(wholes->at(i))), "the same by both");
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const auto input = fuzz::json(data, size);
    if (!input)
        return 0;
    const json& value = *input;
    check<DeploymentItem>(value, readOneByOne<DeploymentItem, DeploymentItem>);
    check<MissingUpdate>(value, readOneByOne<ListedUpdate, MissingUpdate>);
    check<InstallationLogEntry>(value, readOneByOne<LoggedState, void>);
    return 0;
}
