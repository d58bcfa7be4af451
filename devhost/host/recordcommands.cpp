#include "host/commands.h"
#include "host/printer.h"
#include "host/recordtext.h"
#include "records/recordfile.h"

#include <nlohmann/json.hpp>

namespace devhost::host {

namespace {

using TextOf = std::string (*)(const nlohmann::json& record);

ExitCode showRecords(const Context& context, const wchar_t* kind, TextOf textOf)
{
    const records::RecordFile file(context.instance, kind);
    std::uint64_t position = 0;
    for (const auto& record : file.read(position))
        context.printer.result(record.value("time", std::string()) + "  " + textOf(record), record);
    if (position == 0 && !context.printer.isJson())
        context.printer.line("none so far");
    return ExitCode::Done;
}

} // namespace

void recordCommands(Commands& commands)
{
    commands.add("flyers", "print the flyers that the flyer library's stand-in was told to show",
        [](const Context& context) { return showRecords(context, records::flyers, flyerText); });
    commands.add("alerts", "print the alerts that the alert library's stand-in was told to send",
        [](const Context& context) { return showRecords(context, records::alerts, alertText); });
}

} // namespace devhost::host
