// The functions of the library as its callers bind them: cdecl, plain names. No exception leaves them: each becomes
// an error code.

#include "ipc/instance.h"
#include "libraries/plannedcode.h"
#include "libraries/vx_flyer_api_32/flyers.h"
#include "records/recordfile.h"
#include "vxtl/str.h"

#include <stdexcept>

using namespace devhost::flyers;
using nlohmann::json;

namespace {

enum Code { success = 0, failed = 1, invalidParameter = 2 };
constexpr std::int32_t lastType = 3; ///< of flyers as of actions

/// As callers lay it out.
struct ActionRecord {
    std::int32_t type;
    const char* first;
    const char* second;
};

template <typename Body>
int codeOf(const char* call, Body body) noexcept
{
    if (const auto code = devhost::plannedCode(call))
        return *code;
    try {
        body();
        return success;
    } catch (const std::logic_error&) {
        return invalidParameter;
    } catch (...) {
        return failed;
    }
}

std::string text(const wchar_t* text)
{
    if (!text)
        throw std::invalid_argument("no text");
    return vx::str::toUtf8Lossy(text);
}

std::int32_t type(std::int32_t type)
{
    if (type < 0 || type > lastType)
        throw std::invalid_argument("no such type");
    return type;
}

json argument(const char* text)
{
    return text ? json(text) : json();
}

json action(const ActionRecord* action)
{
    if (!action)
        return nullptr;
    return {{"type", type(action->type)}, {"first", argument(action->first)}, {"second", argument(action->second)}};
}

} // namespace

extern "C" {

int VxFlyerApiDelayLoadInitialize()
{
    return success;
}

int VxFlyer_CreateFlyer(
    std::uint32_t, const wchar_t* heading, const wchar_t* message, std::int32_t flyerType, Handle* flyer)
{
    return codeOf("VxFlyer::CreateFlyer", [&] {
        *flyer = Flyers::instance().create(
            {{"type", type(flyerType)}, {"heading", text(heading)}, {"message", text(message)}, {"details", ""},
                {"menu", json::array()}, {"buttons", json::array()}, {"action", nullptr}});
    });
}

int VxFlyer_AddDetails(Handle handle, const wchar_t* details)
{
    return codeOf("VxFlyer::AddDetails",
        [&] { Flyers::instance().change(handle, [&](json& flyer) { flyer["details"] = text(details); }); });
}

int VxFlyer_AddDropdownMenuItem(Handle handle, const wchar_t* item, const ActionRecord* clicked, std::uint8_t selected)
{
    return codeOf("VxFlyer::AddDropdownMenuItem", [&] {
        const json entry = {{"text", text(item)}, {"action", action(clicked)}, {"selected", selected != 0}};
        Flyers::instance().change(handle, [&](json& flyer) { flyer["menu"].push_back(entry); });
    });
}

int VxFlyer_AddButton(Handle handle, const wchar_t* button, const ActionRecord* clicked, std::uint32_t)
{
    return codeOf("VxFlyer::AddButton", [&] {
        const json entry = {{"text", text(button)}, {"action", action(clicked)}};
        Flyers::instance().change(handle, [&](json& flyer) { flyer["buttons"].push_back(entry); });
    });
}

int VxFlyer_SetAction(Handle handle, const ActionRecord* clicked)
{
    return codeOf("VxFlyer::SetAction",
        [&] { Flyers::instance().change(handle, [&](json& flyer) { flyer["action"] = action(clicked); }); });
}

int VxFlyer_ShowFlyer(Handle handle, std::uint32_t argument, std::uint32_t)
{
    return codeOf("VxFlyer::ShowFlyer", [&] {
        json flyer = Flyers::instance().get(handle);
        flyer["argument"] = argument;
        devhost::records::RecordFile(devhost::ipc::instanceFromEnvironment(), devhost::records::flyers)
            .append(std::move(flyer));
    });
}

void VxFlyer_CloseFlyer(Handle handle)
{
    Flyers::instance().close(handle);
}

} // extern "C"
