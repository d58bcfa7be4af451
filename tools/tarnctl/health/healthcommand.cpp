#include "tarnctl/health/healthcommand.h"

#include "tarnctl/health/checks.h"
#include "tarnctl/health/gatherfacts.h"

#include <algorithm>
#include <iomanip>
#include <nlohmann/json.hpp>
#include <ostream>

namespace tarnctl::health {

namespace {

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
