#include "baretask.h"
#include "machine/machinefile.h"
#include "rows.h"
#include "support/fakesettings.h"
#include "tarnhd/autoinstallation/autoinstallation.h"
#include "tarnhd/scheduler/scheduler.h"
#include "vxtl/registry.h"

#include <filesystem>

namespace {

using namespace vx::tarn;

constexpr auto taskName = L"Benchmark";
// An update takes milliseconds, all in files and locks: short pairs, as what else the machine does then hits both
// sides.
constexpr std::size_t calls = 3;
constexpr int repeats = 51;

std::shared_ptr<vx::settings::Settings> makeSettings()
{
    const auto store = std::make_shared<support::FakeSettings>();
    const TarnpatchSettings keys(nullptr);
    store->set(TarnpatchStatus(nullptr).enabled, true);
    store->set(keys.installation.automatic.mode, "install_all");
    store->set(keys.installation.automatic.frequency, "every_day");
    store->set(keys.installation.automatic.hour, 12);
    return support::FakeSettings::handle(store);
}

std::wstring agentPath()
{
    const auto key = vx::registry::createWin32Registry()->openKey(L"HKEY_LOCAL_MACHINE\\Software\\Vantorix\\tarn");
    return (std::filesystem::path(key->getStringValue(L"InstallationDirectory")) / L"tarnag.exe").wstring();
}

/// As the Task Scheduler has it.
nlohmann::json registeredTask()
{
    return devhost::machine::readState().tasks.at(0).definition;
}

} // namespace

void compareTaskUpdate(bench::Comparison& table)
{
    const auto settings = makeSettings();
    AutoInstallation installation(taskName, vx::scheduler::createScheduler, TarnpatchSettings(settings),
        TarnpatchStatus(settings), vx::registry::createWin32Registry());
    if (!installation.update())
        throw std::runtime_error("the task can't be made");
    const auto ours = registeredTask();
    const std::wstring boundary = vx::str::fromUtf8(ours["Triggers"][0]["StartBoundary"].get<std::string>());
    const std::wstring agent = agentPath();
    table.row("update of a task that is there",
        bench::perCall(calls, [&] { updateTaskBare(taskName, agent, boundary); }),
        bench::perCall(calls, [&] { bench::keep(installation.update()); }), bench::Reach::timeUpTo(1.1), repeats);
    updateTaskBare(taskName, agent, boundary);
    table.note("both sides register the same task", registeredTask() == ours);
}
