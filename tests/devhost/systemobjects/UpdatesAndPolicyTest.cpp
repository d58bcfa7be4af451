#include "systemfixture.h"

#include <prsht.h>

#include <gpedit.h>

__CRT_UUID_DECL(IGroupPolicyObject, 0xea502723, 0xa23d, 0x11d1, 0xa7, 0xd3, 0x00, 0x00, 0xf8, 0x75, 0x71, 0xe3)

namespace {

constexpr GUID automaticUpdates{0xbfe18e9c, 0x6d87, 0x4450, {0xb3, 0x7c, 0xe0, 0x2f, 0x0b, 0x37, 0x38, 0x03}};
constexpr GUID groupPolicyObject{0xea502722, 0xa23d, 0x11d1, {0xa7, 0xd3, 0x00, 0x00, 0xf8, 0x75, 0x71, 0xe3}};
constexpr GUID extension{0x35378eac, 0x683f, 0x11d2, {0xa8, 0x9a, 0x00, 0xc0, 0x4f, 0xbb, 0xcf, 0xa2}};
constexpr GUID snapIn{0x0f6b957e, 0x509e, 0x11d1, {0xa7, 0xcc, 0x00, 0x00, 0xf8, 0x75, 0x71, 0xe3}};

} // namespace

TEST_F(SystemTest, tellsWhenUpdatesWereInstalled)
{
    ComPtr<vx::com::IAutomaticUpdates2> updates;
    ComPtr<vx::com::IAutomaticUpdatesResults> results;
    ASSERT_EQ(create(automaticUpdates, updates), S_OK);
    ASSERT_EQ(updates->get_Results(results.put()), S_OK);
    VARIANT date{};
    EXPECT_EQ(results->get_LastInstallationSuccessDate(&date), S_OK);
    EXPECT_EQ(V_VT(&date), VT_EMPTY);
    devhost::machine::changeState([](auto& state) { state.lastInstallation = "2026-01-31T23:59:58"; });
    EXPECT_EQ(results->get_LastInstallationSuccessDate(&date), S_OK);
    ASSERT_EQ(V_VT(&date), VT_DATE);
    SYSTEMTIME time{};
    ASSERT_TRUE(VariantTimeToSystemTime(V_DATE(&date), &time));
    EXPECT_THAT((std::vector<int>{time.wYear, time.wMonth, time.wDay, time.wHour, time.wMinute, time.wSecond}),
        testing::ElementsAre(2026, 1, 31, 23, 59, 58));
    plan("IAutomaticUpdatesResults::get_LastInstallationSuccessDate", E_ABORT);
    EXPECT_EQ(results->get_LastInstallationSuccessDate(&date), E_ABORT);
    EXPECT_EQ(V_VT(&date), VT_EMPTY) << "nothing of an earlier call is left";
}

TEST_F(SystemTest, keepsSavesOfThePolicy)
{
    ComPtr<IGroupPolicyObject> policy;
    GUID guids[] = {extension, snapIn};
    ASSERT_EQ(create(groupPolicyObject, policy), S_OK);
    EXPECT_EQ(policy->Save(TRUE, FALSE, &guids[0], &guids[1]), E_INVALIDARG) << "not opened";
    EXPECT_EQ(policy->OpenLocalMachineGPO(8), E_INVALIDARG);
    EXPECT_EQ(policy->OpenLocalMachineGPO(GPO_OPEN_LOAD_REGISTRY), S_OK);
    EXPECT_EQ(policy->Save(TRUE, FALSE, &guids[0], &guids[1]), S_OK);
    EXPECT_THAT(devhost::machine::readState().policySaves,
        testing::ElementsAre(devhost::machine::PolicySave{
            true, false, "{35378EAC-683F-11D2-A89A-00C04FBBCFA2}", "{0F6B957E-509E-11D1-A7CC-0000F87571E3}"}));
}
