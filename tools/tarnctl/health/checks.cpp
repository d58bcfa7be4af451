#include "tarnctl/health/checks.h"

#include "tarnctl/health/rows.h"

#include <array>

namespace tarnctl::health {

namespace {

struct Row {
    std::string_view name;
    Said (*check)(const Facts&);
};
constexpr std::array<Row, 23> rows = {{
    {"plug-in", checkPlugin},
    {"store", checkStore},
    {"profile", checkProfile},
    {"feature", checkFeature},
    {"scan request", checkScanRequest},
    {"installation request", checkInstallationRequest},
    {"deployment queue", checkQueue},
    {"deployment", checkDeployment},
    {"reboot wait", checkCompletion},
    {"patch storage", checkPatchStorage},
    {"agent program", checkAgentProgram},
    {"agent run", checkAgentRun},
    {"agent exit codes", checkExitCodes},
    {"last scan", checkLastScan},
    {"lists", checkLists},
    {"scheduled task", checkTask},
    {"update service", checkService},
    {"forced reboot", checkReboot},
    {"automatic updates", checkUpdates},
    {"proxy", checkProxy},
    {"log folder", checkLogFolder},
    {"log lines", checkLogLines},
    {"log level", checkLogLevel},
}};

} // namespace

std::string_view nameOf(Grade grade)
{
    switch (grade) {
    case Grade::Good: return "good";
    case Grade::Finding: return "finding";
    case Grade::Unreadable: return "unreadable";
    }
    return {};
}

std::vector<Verdict> examine(const Facts& facts)
{
    std::vector<Verdict> verdicts;
    for (const auto& row : rows) {
        auto said = row.check(facts);
        verdicts.push_back({row.name, said.grade, std::move(said.evidence), std::move(said.advice)});
    }
    return verdicts;
}

} // namespace tarnctl::health
