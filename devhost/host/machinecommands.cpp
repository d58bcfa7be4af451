#include "host/commands.h"
#include "host/printer.h"
#include "host/testmachine.h"
#include "machine/localnow.h"
#include "machine/machinefile.h"
#include "machine/plannedfailure.h"

#include <charconv>

namespace devhost::host {

namespace {

using machine::MachineState;
using machine::PlannedFailure;
using machine::PolicySave;
using nlohmann::json;

struct UpdateOptions : MachineOptions {
    std::string time;
};

struct FailureOptions : MachineOptions {
    std::string call, result;
    unsigned count = 1;
};

std::string timeOf(const std::string& text)
{
    if (text == "none")
        return {};
    const auto moment = text.empty() ? machine::utcNow() : machine::parseBoundary(text);
    if (!moment)
        throw CommandError(
            ExitCode::BadUsage, "windows-update: \"" + text + "\" is neither none nor a time like 2026-01-31T12:00:00");
    return machine::boundaryText(*moment);
}

ExitCode installUpdates(const Context& context, const UpdateOptions& options)
{
    requireTestMachine(options);
    const auto time = timeOf(options.time);
    machine::changeState([&](MachineState& state) { state.lastInstallation = time; });
    context.printer.result(time.empty() ? "updates were never installed" : "updates were installed at " + time + " UTC",
        {{"last_installation", time}});
    return ExitCode::Done;
}

ExitCode showPolicySaves(const Context& context, const MachineOptions& options)
{
    requireTestMachine(options);
    const auto saves = machine::readState().policySaves;
    if (saves.empty() && !context.printer.isJson())
        context.printer.line("the policy was never saved");
    for (const auto& save : saves)
        context.printer.result(std::string(save.machine ? "machine" : "user") + (save.add ? ", added " : ", removed ") +
                                   save.extension + " by " + save.snapIn,
            save);
    return ExitCode::Done;
}

/// A result as people write it: 0x and eight digits at most, or a decimal number that may be negative.
std::optional<std::int32_t> parseResult(std::string_view text)
{
    const bool isHex = text.starts_with("0x") || text.starts_with("0X");
    std::int64_t value = 0;
    const auto digits = isHex ? text.substr(2) : text;
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), value, isHex ? 16 : 10);
    const bool fits = value >= std::numeric_limits<std::int32_t>::min() &&
                      value <= std::numeric_limits<std::uint32_t>::max() && !(isHex && value < 0);
    const bool valid = error == std::errc() && end == digits.data() + digits.size() && fits;
    return valid ? std::optional(static_cast<std::int32_t>(value)) : std::nullopt;
}

PlannedFailure failureOf(const FailureOptions& options)
{
    const auto result = parseResult(options.result);
    if (!result)
        throw CommandError(ExitCode::BadUsage, "system-fault: give the RESULT, like 0x80070005 or 0");
    if (!machine::isCall(options.call))
        throw CommandError(ExitCode::BadUsage,
            "system-fault: \"" + options.call + "\" is no call of the stand-ins, like ITaskFolder::GetTask");
    return {options.call, *result, options.count};
}

ExitCode planFailure(const Context& context, const FailureOptions& options)
{
    requireTestMachine(options);
    std::function<void(MachineState&)> change = [](MachineState& state) { state.plannedFailures.clear(); };
    if (options.call != "clear")
        change = [failure = failureOf(options)](MachineState& state) { state.plannedFailures.push_back(failure); };
    machine::changeState(change);
    const json planned = machine::readState().plannedFailures;
    context.printer.result("planned: " + planned.dump(), {{"planned", planned}});
    return ExitCode::Done;
}

} // namespace

void machineCommands(Commands& commands)
{
    const auto [update, updateOptions] = commands.add(
        "windows-update", "let the stand-in for automatic updates say that updates were installed", installUpdates);
    update->add_option("TIME|none", updateOptions.time, "in UTC, like 2026-01-31T12:00:00; now without it");
    addTestMachine(update, updateOptions);

    const auto [policy, policyOptions] =
        commands.add("policy-saves", "print what was committed to the group policy's stand-in", showPolicySaves);
    addTestMachine(policy, policyOptions);

    const auto [fault, options] = commands.add(
        "system-fault", "let the next calls of the stand-ins for libraries and classes of Windows fail", planFailure);
    fault
        ->add_option("CALL", options.call,
            "INTERFACE::METHOD, CLASS::CreateInstance, or QRLIPC::Send, VxFlyer::ShowFlyer, VxAlertApi::SendAlert and "
            "their "
            "like; clear forgets all plans")
        ->required();
    fault->add_option("RESULT", options.result, "what the calls give instead of doing anything, like 0x80070005");
    fault->add_option("--count", options.count, "how many calls")->check(CLI::PositiveNumber)->capture_default_str();
    addTestMachine(fault, options);
}

} // namespace devhost::host
