// Any JSON is refused with one of the named errors or gives an event that carries what its type's name says and is
// written and read again as the same.

#include "common/reportevents/reportevent.h"
#include "input.h"

#include <nlohmann/json.hpp>

#include <regex>

using namespace vx::tarn::common;
using nlohmann::json;

namespace {

/// The type's text; empty for one that is not known, which asks for nothing.
std::string typeOf(const json& value)
{
    static const std::regex known("Type::(O(ff|n)line(Patch|Machine)Status(ReturnCode)?|ExternalRebootRequest)");
    const auto text = value.is_null() ? std::string() : value.get<std::string>();
    return std::regex_match(text, known) ? text : std::string();
}

bool isWord(const json& value)
{
    return value.is_string() || value.is_null();
}

bool asksFor(const std::string& type, const char* word)
{
    return type.find(word) != std::string::npos;
}

bool isRecord(const json& value, const std::string& type)
{
    if (!value.is_object())
        return false;
    const auto member = [&](const char* key) { return value.value(key, json()); };
    return value.contains("status") && isWord(value["status"]) && member("deploymentId").is_string() &&
           fuzz::guid(vx::str::fromUtf8(member("deploymentId").get<std::string>())) &&
           member("machineId").is_number() && (!asksFor(type, "Patch") || member("patchId").is_number()) &&
           member("failure").is_boolean() && member("terminal").is_boolean() && member("timestamp").is_number();
}

/// Whether everything that the type's own name asks for is there.
bool isEvent(const json& value)
{
    if (!value.is_object() || !value.contains("type") || !isWord(value["type"]))
        return false;
    const std::string type = typeOf(value["type"]);
    const json code = value.value("retCode", json());
    return (!asksFor(type, "Online") || value.value("trackingUri", json()).is_string()) &&
           (!asksFor(type, "Status") || isRecord(value.value("status", json()), type)) &&
           (!asksFor(type, "ReturnCode") || code.is_number() || code.is_boolean());
}

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

/// The members that the type asks for, as they were read; but for the GUID, whose case and width may differ.
void checkWritten(const json& in, const json& out)
{
    const std::string type = typeOf(in["type"]);
    fuzz::require(out["type"] == type, "type");
    fuzz::require(out.contains("trackingUri") == asksFor(type, "Online"), "trackingUri");
    fuzz::require(out.contains("retCode") == asksFor(type, "ReturnCode"), "retCode");
    fuzz::require(!out.contains("trackingUri") || out["trackingUri"] == in["trackingUri"], "trackingUri's text");
    if (out.contains("retCode") && in["retCode"].is_number_integer())
        fuzz::require(out["retCode"] == static_cast<std::int32_t>(in["retCode"].get<std::int64_t>()), "code");
    fuzz::require(out.contains("status") == asksFor(type, "Status"), "status");
    const json record = out.value("status", json::object());
    fuzz::require(record.size() == (asksFor(type, "Patch") ? 7 : asksFor(type, "Machine") ? 6 : 0), "its members");
    for (const auto& [key, value] : record.items()) {
        const json& read = in["status"][key];
        const bool differs = key == "deploymentId" || read.is_number_float() || (key == "status" && value.is_null());
        fuzz::require(differs || value == read, key.c_str());
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const auto input = fuzz::json(data, size);
    if (!input)
        return 0;
    const json& value = *input;
    const auto event = read(value);
    fuzz::require(event.has_value() == isEvent(value), "a good event alone is read");
    if (!event)
        return 0;
    if (typeOf(value["type"]).empty()) {
        fuzz::require(event == ReportEvent{}, "nothing of an unknown type");
        return 0;
    }
    const json written = toJson(*event);
    checkWritten(value, written);
    fuzz::require(read(written) == event, "round trip");
    return 0;
}
