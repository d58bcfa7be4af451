#include "common/systemrestorepoint.h"
#include "support/logcapture.h"
#include "vxtl/exception.h"

#include <gtest/gtest.h>

namespace vx::tarn::common {
namespace {

struct FakeDriver : ISystemRestoreDriver {
    explicit FakeDriver(std::vector<RestorePointInfo>& record) : calls(record) {}
    void load() override
    {
        if (!supported)
            VX_THROW(BaseException, L"Restore points are not supported by the OS");
    }
    bool setRestorePoint(const RestorePointInfo& info, RestorePointStatus& status) override
    {
        calls.push_back(info);
        status = {result ? 0u : 1058u, 77};
        return result;
    }
    std::vector<RestorePointInfo>& calls;
    bool supported = true;
    bool result = true;
};

class SystemRestorePointTest : public testing::Test {
protected:
    SystemRestorePointTest()
    {
        auto driver = std::make_unique<FakeDriver>(m_calls);
        m_driver = driver.get();
        m_point = std::make_unique<SystemRestorePoint>(std::move(driver));
    }

    std::vector<RestorePointInfo> m_calls;
    FakeDriver* m_driver;
    std::unique_ptr<SystemRestorePoint> m_point;
    support::LogCapture m_log;
};

TEST_F(SystemRestorePointTest, beginsAndEndsTheSameChange)
{
    m_point->create(L"updates");
    EXPECT_TRUE(m_point->isCreated());
    m_point->finalize();
    ASSERT_EQ(m_calls.size(), 2u);
    EXPECT_EQ(m_calls[0].eventType, 100u);
    EXPECT_EQ(m_calls[0].restorePointType, 0u);
    EXPECT_EQ(m_calls[0].sequenceNumber, 0);
    EXPECT_EQ(m_calls[1].eventType, 101u);
    EXPECT_EQ(m_calls[1].sequenceNumber, 77);
    EXPECT_TRUE(m_log.has(4, "Restore point (updates) creation status : 0")) << m_log.text();
    EXPECT_TRUE(m_log.has(4, "Restore point (updates) finalization status: 0")) << m_log.text();
}

TEST_F(SystemRestorePointTest, cutsALongDescription)
{
    std::wstring description(255, L'x');
    description.resize(300, L'y');
    m_point->create(description);
    ASSERT_EQ(m_calls.size(), 1u);
    EXPECT_EQ(m_calls[0].description, std::wstring(255, L'x'));
}

TEST_F(SystemRestorePointTest, endsNothingThatWasRefused)
{
    m_point->finalize();
    m_driver->result = false;
    m_point->create(L"updates");
    EXPECT_FALSE(m_point->isCreated());
    EXPECT_EQ(m_point->getStatus(), 1058u);
    EXPECT_TRUE(m_log.has(4, "creation status : 1058")) << m_log.text();
    m_point->finalize();
    EXPECT_EQ(m_calls.size(), 1u);
}

TEST_F(SystemRestorePointTest, isNotCreatedWhereTheSystemHasNone)
{
    m_driver->supported = false;
    EXPECT_THROW(m_point->create(L"updates"), BaseException);
    EXPECT_FALSE(m_point->isCreated());
    m_point->finalize();
    EXPECT_TRUE(m_calls.empty());
}

} // namespace
} // namespace vx::tarn::common
