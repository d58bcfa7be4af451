#include "common/systemrestoredriver.h"
#include "vxtl/exception.h"

#include <gtest/gtest.h>

namespace vx::tarn::common {
namespace {

TEST(SystemRestoreDriver, takesTheDescriptionThatFits)
{
    SystemRestoreDriver driver;
    driver.load();
    RestorePointInfo info{RestorePointInfo::beginSystemChange, RestorePointInfo::applicationInstall, 0, {}};
    RestorePointStatus status;
    info.description.assign(255, L'x');
    EXPECT_NO_THROW(driver.setRestorePoint(info, status));
    info.description.assign(256, L'x');
    try {
        driver.setRestorePoint(info, status);
        ADD_FAILURE();
    } catch (const BaseException& e) {
        EXPECT_EQ(e.reason(), L"Restore point description error");
    }
}

} // namespace
} // namespace vx::tarn::common
