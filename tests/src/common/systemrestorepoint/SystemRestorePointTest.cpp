#include "common/systemrestorepoint/systemrestorepoint.h"
#include "support/logcapture.h"
#include "vxtl/exception.h"

#include <gtest/gtest.h>

using namespace vx::tarn::common;
using vx::BaseException;

namespace {

struct SystemRestorePointTest : testing::Test {
    struct Driver : ISystemRestoreDriver {
        explicit Driver(SystemRestorePointTest& owner) : test(owner) {}
        void load() override
        {
            if (!test.supported)
                VX_THROW(BaseException, L"Restore points are not supported by the OS");
        }
        bool setRestorePoint(const RestorePointInfo& info, RestorePointStatus& status) override
        {
            test.calls.push_back(info);
            status = {test.answer, 77};
            return test.answer == 0;
        }
        SystemRestorePointTest& test;
    };

    bool supported = true;
    unsigned long answer = 0;
    std::vector<RestorePointInfo> calls;
    support::LogCapture log;
    SystemRestorePoint point{std::make_unique<Driver>(*this)};
};

} // namespace

TEST_F(SystemRestorePointTest, beginsAndEndsTheSameChange)
{
    point.create(std::wstring(255, L'x') + L"y");
    EXPECT_TRUE(point.isCreated());
    point.finalize();
    ASSERT_EQ(calls.size(), 2u);
    EXPECT_EQ(calls[0].eventType, 100u);
    EXPECT_EQ(calls[0].description, std::wstring(255, L'x')) << "all that the system takes";
    EXPECT_EQ(calls[1].eventType, 101u);
    EXPECT_EQ(calls[1].sequenceNumber, 77);
    EXPECT_TRUE(log.has(4, "xy) creation status : 0")) << log.text();
    EXPECT_TRUE(log.has(4, "x) finalization status: 0")) << log.text();
}

TEST_F(SystemRestorePointTest, endsNothingThatDidNotBegin)
{
    point.finalize();
    answer = 1058;
    point.create(L"updates");
    EXPECT_FALSE(point.isCreated());
    EXPECT_EQ(point.getStatus(), 1058u);
    EXPECT_TRUE(log.has(4, "Restore point (updates) creation status : 1058")) << log.text();
    point.finalize();
    EXPECT_EQ(calls.size(), 1u);

    answer = 0;
    point.create(L"updates");
    supported = false;
    EXPECT_THROW(point.create(L"updates"), BaseException);
    EXPECT_FALSE(point.isCreated());
    point.finalize();
    EXPECT_EQ(calls.size(), 2u);
}
