#include "rig.h"

#include "common/event/event.h"
#include "common/factory/commonfactory.h"
#include "common/updaterlauncher/updaterlauncher.h"
#include "machine/localnow.h"
#include "support/machine.h"
#include "tarnhd/actions/scanafterwindowsupdate.h"
#include "vxtl/guarded.h"

namespace rig {
namespace {

using namespace vx::tarn::common;

/// Makes the real things, and shares the launcher.
struct Factory : CommonFactory {
    std::shared_ptr<IUpdaterLauncher> createUpdaterLauncher() override
    {
        return launcher = CommonFactory::createUpdaterLauncher();
    }
    std::shared_ptr<IUpdaterLauncher> launcher;
};

struct WindowsUpdateTest : SystemTest {
    const Machine machine;
};

TEST_F(WindowsUpdateTest, leadsToOneScan)
{
    const auto event = createEvent(false, false, UpdaterLauncherOptions().eventName, false);
    Factory factory;
    vx::tarn::ScanAfterWindowsUpdate action(&factory, nullptr);
    const auto updatedAgo = [now = devhost::machine::utcNow()](int hours) {
        return "windows-update " + devhost::machine::boundaryText(now - std::chrono::hours(hours));
    };
    const struct {
        std::string command;
        std::vector<bool> scans; ///< at each tick, the last scan before them being two hours ago
    } rows[] = {
        {"windows-update none", {false, false}},
        {updatedAgo(3), {false, false}},
        {updatedAgo(1), {true, false}},
        {"system-fault IAutomaticUpdates2::get_Results 0x80070005", {false, true, false}},
        {updatedAgo(-1), {true, true}},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.command);
        EXPECT_EQ(command(row.command), 0u);
        factory.launcher->startScanAt(vx::systemTicks() - 2 * 3600 * vx::ticksPerSecond);
        event->reset();
        std::vector<bool> scans;
        while (scans.size() < row.scans.size()) {
            vx::guarded([&] { action.execute(); });
            scans.push_back(vx::sync::waitForSingleObject(*event, 0));
        }
        EXPECT_EQ(scans, row.scans);
    }
}

TEST_F(WindowsUpdateTest, thatCannotBeAskedForLeavesTheHostAtWork)
{
    EXPECT_EQ(command("system-fault IAutomaticUpdates2::get_Results 0x80070005"), 0u);
    startHost();
    waitForLog("get_Results failed");
    scan(1);
}

} // namespace
} // namespace rig
