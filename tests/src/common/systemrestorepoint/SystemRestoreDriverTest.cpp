#include "common/systemrestoredriver.h"
#include "vxtl/exception.h"

#include <gmock/gmock.h>

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
    EXPECT_THAT([&] { driver.setRestorePoint(info, status); },
        testing::Throws<BaseException>(testing::Property(&BaseException::reason, L"Restore point description error")));
}

} // namespace
} // namespace vx::tarn::common
