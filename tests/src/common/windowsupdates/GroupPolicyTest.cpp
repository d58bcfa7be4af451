#include "common/windowsupdates/grouppolicy.h"
#include "common/windowsupdates/grouppolicydriver.h"
#include "support/logcapture.h"
#include "support/machine.h"

using namespace vx::tarn::common;
using devhost::machine::PolicySave;

TEST(GroupPolicy, savesWhatItIsToldOrSaysWhichCallFailed)
{
    const support::Machine machine;
    GroupPolicy policy(std::make_shared<GroupPolicyDriver>());
    const struct {
        const char* call;
        HRESULT planned, result;
        const char* error;
    } rows[] = {
        {"GroupPolicyObject::CreateInstance", -5, E_FAIL, "Can't create group policy updates instance. HRESULT = -5"},
        {"GroupPolicyObject::CreateInstance", S_OK, E_FAIL,
            "Can't create group policy updates instance. HRESULT = -2147467262"},
        {"IGroupPolicyObject::QueryInterface", S_OK, E_FAIL,
            "Can't create group policy updates instance. HRESULT = -2147467262"},
        {"IGroupPolicyObject::OpenLocalMachineGPO", -6, E_FAIL, "Can't open local machine GPO. HRESULT = -6"},
        {"IGroupPolicyObject::Save", E_ACCESSDENIED, E_ACCESSDENIED,
            "Failed to save the group policy. HRESULT = -2147024891"},
        {"IGroupPolicyObject::Save", S_FALSE, S_FALSE, ""},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.error);
        const support::LogCapture log(2);
        machine.plan(row.call, {row.planned});
        EXPECT_EQ(policy.save(PolicySection::User, PolicyChange::Remove, registryExtension, policySnapIn), row.result);
        EXPECT_EQ(log.has(2, row.error), row.result < 0) << log.text();
        EXPECT_EQ(log.has(2, "Failed to get policy object."), row.result == E_FAIL);
    }
    EXPECT_EQ(policy.save(PolicySection::Machine, PolicyChange::Remove, registryExtension, policySnapIn), S_OK);
    EXPECT_EQ(policy.save(PolicySection::User, PolicyChange::Add, policySnapIn, registryExtension), S_OK);
    const std::string extension = "{35378EAC-683F-11D2-A89A-00C04FBBCFA2}";
    const std::string snapIn = "{0F6B957E-509E-11D1-A7CC-0000F87571E3}";
    EXPECT_THAT(machine.state().policySaves,
        testing::ElementsAre(PolicySave{true, false, extension, snapIn}, PolicySave{false, true, snapIn, extension}));
}
