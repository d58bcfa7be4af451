#include "tarnctl/health/healthcommand.h"

#include "meridia-settings/meridiasettingsapi.h"
#include "settings-api/settings.h"
#include "tarnctl/health/checks.h"
#include "tarnctl/health/gather.h"
#include "tarnctl/health/machinefacts.h"
#include "tarnctl/health/storefacts.h"
#include "vxtl/clock.h"
#include "vxtl/comutils.h"

#include <algorithm>
#include <iomanip>
#include <nlohmann/json.hpp>
#include <ostream>

namespace tarnctl::health {

namespace {

/// Without the plug-in's cache, which would answer for a store that is away. Null when the store can't be reached,
/// which is noted.
std::shared_ptr<vx::settings::Settings> openStore(Facts& facts)
{
    try {
        return std::make_shared<vx::settings::Settings>(
            std::make_shared<vx::meridia::SettingsApi>(L"safe", L"S-1-5-18", L"Vantorix Tarnpatch Observer"));
    } catch (const std::exception& exception) {
        noteStoreTrouble(textOf(exception), facts);
        return nullptr;
    }
}

Facts gatherFacts()
{
    // For the Task Scheduler; entered before anything loads it, left after all of it is let go.
    const vx::comutils::ComApartment apartment;
    Facts facts;
    facts.now = vx::systemTicks() / vx::ticksPerSecond;
    const auto store = openStore(facts);
    if (store)
        gatherFromStore(store, facts);
    gatherFromMachine(store, facts);
    return facts;
}

void print(std::ostream& output, const Verdict& verdict)
{
    output << std::left << std::setw(11) << nameOf(verdict.grade) << std::setw(22) << verdict.check << verdict.evidence
           << '\n';
    if (!verdict.advice.empty())
        output << std::string(33, ' ') << "-> " << verdict.advice << '\n';
}

void printJson(std::ostream& output, const Verdict& verdict)
{
    const nlohmann::ordered_json object{{"check", verdict.check}, {"verdict", nameOf(verdict.grade)},
        {"evidence", verdict.evidence}, {"advice", verdict.advice}};
    output << object.dump(-1, ' ', false, nlohmann::json::error_handler_t::replace) << '\n';
}

ExitCode codeOf(const std::vector<Verdict>& verdicts)
{
    const auto any = [&](Grade grade) {
        return std::any_of(
            verdicts.begin(), verdicts.end(), [grade](const Verdict& verdict) { return verdict.grade == grade; });
    };
    // A finding is what people look for; that something could not be read counts when there is none.
    return any(Grade::Finding) ? ExitCode::Findings : any(Grade::Unreadable) ? ExitCode::Unreadable : ExitCode::Healthy;
}

ExitCode tellHealth(const Context& context)
{
    const auto verdicts = examine(gatherFacts());
    for (const auto& verdict : verdicts)
        context.json ? printJson(context.output, verdict) : print(context.output, verdict);
    return codeOf(verdicts);
}

} // namespace

void addHealthCommand(CLI::App& app, const Choose& choose)
{
    auto* command = app.add_subcommand("health", "check this machine's patch management, and say what to do");
    command->callback([=] { choose(tellHealth); });
}

} // namespace tarnctl::health
