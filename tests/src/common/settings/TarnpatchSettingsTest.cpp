#include "common/settings/tarnpatchsettings.h"
#include "common/settings/keylist.h"
#include "common/settings/tarnpatchstatus.h"
#include "support/fakesettings.h"
#include "support/logcapture.h"

#include <set>

using namespace vx::tarn;
using support::FakeSettings;

namespace {

struct TarnpatchSettingsTest : testing::Test {
    std::shared_ptr<FakeSettings> store = std::make_shared<FakeSettings>();
    const TarnpatchSettings settings{FakeSettings::handle(store)};
    const InstallationSettings& installation = settings.installation;
};

} // namespace

TEST_F(TarnpatchSettingsTest, aMissingKeyHasItsDefaultAndSaysSo)
{
    const support::LogCapture log;
    EXPECT_TRUE(settings.enabled());
    EXPECT_TRUE(log.has(4, "Setting 'windows.tarnpatch.enabled' not found - fallback to default value")) << log.text();
    EXPECT_EQ(installation.reboot.forceIn(), std::chrono::hours(24));
    EXPECT_EQ(installation.deploymentQueue(), nlohmann::json::array());
}

TEST_F(TarnpatchSettingsTest, aFailureOrAValueOfAnotherKindPassesOn)
{
    store->set(settings.enabled, 1);
    EXPECT_THROW(settings.enabled(), vx::settings::InvalidTypeException);
    const auto& policy = installation.reboot.showFlyerPolicy;
    store->set(policy, "nobody");
    EXPECT_EQ(policy(), ShowFlyerPolicyItem::Nobody);
    store->set(policy, "Nobody");
    EXPECT_THROW(policy(), std::invalid_argument);
}

TEST_F(TarnpatchSettingsTest, writesTheTypeOfTheRow)
{
    const auto& remote = settings.remoteOperations;
    installation.inProgress.set(true);
    remote.scanForUpdates.ack.set(INT64_MIN);
    remote.installUpdates.result.set(ResultItem::PartialFailed);
    EXPECT_THROW(remote.installUpdates.result.set(ResultItem(99)), std::invalid_argument);
    EXPECT_EQ(store->get(installation.inProgress), true);
    EXPECT_EQ(remote.scanForUpdates.ack(), INT64_MIN);
    EXPECT_EQ(store->get(remote.installUpdates.result), "partial_failed");
}

TEST_F(TarnpatchSettingsTest, forcedDelayTakesHoursOnlyWhenSecondsAreNotSet)
{
    store->set(installation.reboot.forceIn, INT32_MAX);
    EXPECT_EQ(std::chrono::seconds(INT32_MAX * 3600LL), installation.reboot.forcedDelay());
    for (const std::int64_t seconds : {std::int64_t(0), std::int64_t(-2), INT64_MIN, INT64_MAX}) {
        store->set(installation.reboot.forceInSeconds, seconds);
        EXPECT_EQ(std::chrono::seconds(seconds), installation.reboot.forcedDelay());
    }
}

TEST(Keys, areDistinct)
{
    std::set<std::wstring> names;
    for (const KeyInfo& row : listKeys())
        EXPECT_TRUE(names.insert(row.name).second) << testing::PrintToString(row.name);
}
