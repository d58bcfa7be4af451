#include "common/windowsupdates/grouppolicy.h"
#include "common/windowsupdates/grouppolicydriver.h"
#include "support/logcapture.h"

#include <gtest/gtest.h>

using namespace vx::tarn::common;

namespace {

/// Gives the results that a test sets; counts its objects.
struct Driver : IGroupPolicyDriver {
    struct Object : IPolicyObject {
        explicit Object(Driver& driver) : owner(driver) { ++owner.objects; }
        ~Object() override { --owner.objects; }
        std::int32_t openLocalMachine() override { return owner.openResult; }
        std::int32_t save(PolicySection section, PolicyChange change, const utils::Guid& extension,
            const utils::Guid& snapIn) override
        {
            EXPECT_TRUE(section == PolicySection::User && change == PolicyChange::Remove && extension == policySnapIn &&
                        snapIn == registryExtension);
            return owner.saveResult;
        }
        Driver& owner;
    };
    std::int32_t create(std::unique_ptr<IPolicyObject>& object) override
    {
        if (createResult >= 0)
            object = std::make_unique<Object>(*this);
        return createResult;
    }
    std::int32_t createResult = 0, openResult = 0, saveResult = 0;
    int objects = 0;
};

} // namespace

TEST(GroupPolicy, saysWhichCallFailed)
{
    const struct {
        std::int32_t create, open, save, result;
        const char* error;
        int errors;
    } rows[] = {
        {-5, 0, 0, -2147467259, "Can't create group policy updates instance. HRESULT = -5", 2},
        {0, -6, 0, -2147467259, "Can't open local machine GPO. HRESULT = -6", 2},
        {0, 0, -2147024891, -2147024891, "Failed to save the group policy. HRESULT = -2147024891", 1},
        {1, 1, 1, 1, nullptr, 0},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.error);
        const support::LogCapture log;
        const auto driver = std::make_shared<Driver>();
        driver->createResult = row.create;
        driver->openResult = row.open;
        driver->saveResult = row.save;
        EXPECT_EQ(GroupPolicy(driver).save(PolicySection::User, PolicyChange::Remove, policySnapIn, registryExtension),
            row.result);
        EXPECT_EQ(driver->objects, 0);
        EXPECT_TRUE(!row.error || log.has(2, row.error)) << log.text();
        EXPECT_EQ(log.has(2, "Failed to get policy object."), row.errors == 2);
        EXPECT_EQ(log.has(5, "Local machine GPO has been opened."), row.errors < 2);
        EXPECT_EQ(log.has(5, "The group policy saved successfully."), row.errors == 0);
    }
}
