#include "common/systemrestorepoint/systemrestorepoint.h"
#include "vxtl/exception.h"

using namespace vx::tarn::common;
using vx::BaseException;

namespace {

struct FakeDriver : ISystemRestoreDriver {
    void load() override
    {
        if (!supported)
            VX_THROW(BaseException, L"Restore points are not supported by the OS");
    }
    bool setRestorePoint(const RestorePointInfo& info, RestorePointStatus& status) override
    {
        calls.push_back(info);
        status = {answer, 77};
        return answer == 0;
    }

    bool supported = true;
    unsigned long answer = 0;
    std::vector<RestorePointInfo> calls;
};

} // namespace

TEST(SystemRestorePoint, endsTheChangeThatBeganAndNoOther)
{
    FakeDriver* const driver = new FakeDriver;
    SystemRestorePoint point{std::unique_ptr<ISystemRestoreDriver>(driver)};
    point.finalize();
    driver->answer = 1058;
    point.create(L"updates");
    EXPECT_FALSE(point.isCreated());
    EXPECT_EQ(point.getStatus(), 1058u);
    point.finalize();
    EXPECT_EQ(driver->calls.size(), 1u);

    driver->answer = 0;
    point.create(std::wstring(255, L'x') + L"y");
    EXPECT_TRUE(point.isCreated());
    point.finalize();
    ASSERT_EQ(driver->calls.size(), 3u);
    EXPECT_EQ(driver->calls[1].eventType, 100u);
    EXPECT_EQ(driver->calls[1].description, std::wstring(255, L'x')) << "all that the system takes";
    EXPECT_EQ(driver->calls[2].eventType, 101u);
    EXPECT_EQ(driver->calls[2].sequenceNumber, 77);

    driver->supported = false;
    EXPECT_THROW(point.create(L"updates"), BaseException);
    EXPECT_FALSE(point.isCreated());
    point.finalize();
    EXPECT_EQ(driver->calls.size(), 3u);
}
