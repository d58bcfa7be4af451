#include "tarnctl/why/explanation.h"

#include "tarnctl/codes.h"

#include <algorithm>
#include <cstdio>
#include <nlohmann/json.hpp>

namespace tarnctl::why {

using logreading::AgentStart;
using logreading::Ask;
using logreading::Cause;
using logreading::formatMoment;
using logreading::RebootStep;
using Json = nlohmann::ordered_json;

namespace {

/// Both: an agent that was started for one does what the other asked for, too.
bool concerns(Cause cause, Subject subject)
{
    switch (cause) {
    case Cause::RemoteInstallation:
    case Cause::FinishedDeployment: return subject == Subject::Install;
    case Cause::StoreChange:
    case Cause::Unknown: return true;
    default: return subject == Subject::Scan;
    }
}

bool concerns(const AgentStart& start, Subject subject)
{
    if (start.serves != Cause::Unknown)
        return concerns(start.serves, subject);
    return start.asks.empty() || std::any_of(start.asks.begin(), start.asks.end(),
                                     [subject](const Ask& ask) { return concerns(ask.cause, subject); });
}

/// The log's clock is the local one, which may be set back.
std::string seconds(logreading::Moment duration)
{
    if (duration < 0)
        return "an unknown time: the clock was set back";
    char text[32];
    std::snprintf(text, sizeof(text), "%.1f s", static_cast<double>(duration) / 1000);
    return text;
}

std::string describe(const Ask& ask)
{
    return std::string(nameOf(ask.cause)) + ", " + formatMoment(ask.time) +
           (ask.detail.empty() ? "" : ": " + ask.detail);
}

std::vector<std::string> linesOf(const AgentStart& start)
{
    std::vector<std::string> lines{formatMoment(start.begin) + "  " + std::string(nameOf(start.outcome)) + " after " +
                                   seconds(start.end - start.begin)};
    for (const auto& ask : start.asks)
        lines.push_back("    asked for by   " + describe(ask));
    if (start.asks.empty())
        lines.push_back("    asked for by   nobody in this log");
    if (start.serves != Cause::Unknown)
        lines.push_back(
            "    answers        " + std::string(nameOf(start.serves)) +
            (start.acknowledged ? ", acknowledged " + std::to_string(*start.acknowledged) : ", not acknowledged"));
    if (!start.arguments.empty())
        lines.push_back("    arguments      " + start.arguments);
    if (start.tries > 1)
        lines.push_back("    tries          " + std::to_string(start.tries));
    if (start.exitCode)
        lines.push_back("    exit code      " + std::to_string(*start.exitCode) + "  " + meaningOf(*start.exitCode));
    return lines;
}

Json objectOf(const AgentStart& start)
{
    auto asks = Json::array();
    for (const auto& ask : start.asks)
        asks.push_back({{"time", formatMoment(ask.time)}, {"cause", nameOf(ask.cause)}, {"detail", ask.detail}});
    Json object = {{"time", formatMoment(start.begin)}, {"durationMs", start.end - start.begin},
        {"outcome", nameOf(start.outcome)}, {"asks", std::move(asks)}, {"arguments", start.arguments},
        {"tries", start.tries}};
    if (start.serves != Cause::Unknown)
        object["answers"] = nameOf(start.serves);
    if (start.acknowledged)
        object["acknowledged"] = *start.acknowledged;
    if (start.exitCode) {
        object["exitCode"] = *start.exitCode;
        object["meaning"] = meaningOf(*start.exitCode);
    }
    return object;
}

Explanation explanationOf(const AgentStart& start)
{
    return {linesOf(start), objectOf(start)};
}

Explanation explanationOf(const RebootStep& step)
{
    const auto time = formatMoment(step.time);
    return {{time + "  " + step.text}, {{"time", time}, {"step", step.text}}};
}

} // namespace

std::vector<Explanation> explain(const logreading::Story& story, Subject subject, std::size_t count)
{
    std::vector<Explanation> all;
    if (subject == Subject::Reboot)
        for (const auto& step : story.rebootSteps())
            all.push_back(explanationOf(step));
    else
        for (const auto& start : story.starts())
            if (concerns(start, subject))
                all.push_back(explanationOf(start));
    all.erase(all.begin(), all.end() - static_cast<std::ptrdiff_t>(std::min(count, all.size())));
    return all;
}

} // namespace tarnctl::why
