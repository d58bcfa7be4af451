// Any JSON is refused with a type error or a conversion's std::invalid_argument, or gives the same records in both ways
// of reading, and these are read again as the same from what is written.

#include "common/patches/patchinfo.h"
#include "input.h"

using namespace vx::tarn::common;
using nlohmann::json;

namespace {

/// A part of a record written with the rest at its defaults.
template <typename Whole, typename Part>
json written(const Part& part)
{
    Whole whole;
    static_cast<Part&>(whole) = part;
    return toJson(whole);
}

json published(const auto& record)
{
    return toJson(record);
}

json published(const MissingUpdate& update)
{
    return toJson(toMissingUpdate(PatchInfo(update), update.updateId));
}

template <typename Part, typename Whole>
std::vector<Part> readOneByOne(json value)
{
    std::vector<Part> records;
    readEach<Part>(value, [&](Part& record, json& element, bool isAsWritten) {
        fuzz::require(isAsWritten == (published(fromJson<Whole>(element)).dump() == element.dump()), "as written");
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

template <typename Whole, typename Part = Whole>
void check(const json& value)
{
    const auto wholes = tryToRead(value, listFromJson<Whole>);
    const auto records = tryToRead(value, readOneByOne<Part, Whole>);
    fuzz::require(wholes.has_value() == records.has_value(), "refused by both or none");
    if (!wholes)
        return;
    fuzz::require(wholes->size() == value.size() && records->size() == value.size(), "one record an element");
    for (std::size_t i = 0; i < value.size(); ++i) {
        const Part& part = wholes->at(i);
        fuzz::require(toJson(fromJson<Whole>(toJson(wholes->at(i)))) == toJson(wholes->at(i)), "round trip");
        fuzz::require(written<Whole>(records->at(i)) == written<Whole>(part), "the same by both");
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const auto input = fuzz::json(data, size);
    if (!input)
        return 0;
    const json& value = *input;
    check<DeploymentItem>(value);
    check<MissingUpdate, ListedUpdate>(value);
    check<InstallationLogEntry, LoggedState>(value);
    return 0;
}
