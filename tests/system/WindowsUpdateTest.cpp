#include "rig.h"

#include "support/machine.h"

namespace rig {
namespace {

struct WindowsUpdateTest : SystemTest {
    const Machine machine;
};

TEST_F(WindowsUpdateTest, thatCannotBeAskedForLeavesTheHostAtWork)
{
    EXPECT_EQ(command("system-fault IAutomaticUpdates2::get_Results 0x80070005"), 0u);
    startHost();
    waitForLog("get_Results failed");
    scan(1);
}

} // namespace
} // namespace rig
