#include "common/settings/tarnpatchsettings.h"
#include "common/settings/keylist.h"
#include "common/settings/tarnpatchstatus.h"
#include "keyspage/keyspage.h"
#include "settings-api/exceptions.h"
#include "support/fakesettings.h"
#include "support/logcapture.h"

#include <fstream>
#include <gmock/gmock.h>
#include <iterator>

using namespace vx::tarn;
using nlohmann::json;
using support::FakeSettings;

namespace {

struct TarnpatchSettingsTest : testing::Test {
    std::shared_ptr<FakeSettings> store = std::make_shared<FakeSettings>();
    const TarnpatchSettings settings{FakeSettings::handle(store)};
    const TarnpatchStatus status{FakeSettings::handle(store)};
};

template <typename Row>
concept Readable = requires(const Row& row)
{
    row();
};
template <typename Row>
concept Writable = requires(const Row& row)
{
    row.set({});
};

static_assert(Readable<decltype(CompletionSettings::timeout)> && !Writable<decltype(CompletionSettings::timeout)>);
static_assert(!Readable<decltype(RemoteInstallationSettings::result)>);

} // namespace

TEST_F(TarnpatchSettingsTest, aMissingKeyHasItsDefaultAndSaysSo)
{
    const support::LogCapture log;
    EXPECT_TRUE(settings.enabled());
    EXPECT_TRUE(log.has(5, "vx::settings::NotFoundException")) << log.text();
    EXPECT_TRUE(log.has(4, "Setting 'windows.tarnpatch.enabled' not found - fallback to default value")) << log.text();
    EXPECT_EQ(settings.installation.reboot.forceIn(), std::chrono::hours(24));
    EXPECT_EQ(settings.installation.automatic.frequency(), FrequencyItem::EveryDay);
    EXPECT_EQ(settings.communication.hqProxyUrl(), L"");
    EXPECT_EQ(status.scanning.lastScanning.timestamp(), -1);
    EXPECT_EQ(status.installation.log.entries(), json::array());
}

TEST_F(TarnpatchSettingsTest, anyOtherFailurePassesOn)
{
    store->setInt32Value(settings.enabled.key(), 1);
    EXPECT_THROW(settings.enabled(), vx::settings::InvalidTypeException);
    const auto& policy = settings.installation.reboot.showFlyerPolicy;
    store->setStringValue(policy.key(), L"nobody");
    EXPECT_EQ(policy(), ShowFlyerPolicyItem::Nobody);
    store->setStringValue(policy.key(), L"Nobody");
    EXPECT_THROW(policy(), std::invalid_argument);
}

TEST_F(TarnpatchSettingsTest, writesTheTypeOfTheRow)
{
    TarnpatchSettings(settings).installation.inProgress.set(true);
    settings.remoteOperations.scanForUpdates.ack.set(INT64_MIN);
    settings.remoteOperations.installUpdates.result.set(ResultItem::PartialFailed);
    EXPECT_TRUE(store->getBoolValue(settings.installation.inProgress.key()));
    EXPECT_EQ(settings.remoteOperations.scanForUpdates.ack(), INT64_MIN);
    EXPECT_EQ(store->getStringValue(settings.remoteOperations.installUpdates.result.key()), L"partial_failed");
}

TEST_F(TarnpatchSettingsTest, forcedDelayTakesHoursOnlyWhenSecondsAreNotSet)
{
    const auto& reboot = settings.installation.reboot;
    store->setInt32Value(reboot.forceIn.key(), INT32_MAX);
    EXPECT_EQ(std::chrono::seconds(INT32_MAX * 3600LL), reboot.forcedDelay());
    for (const std::int64_t seconds : {std::int64_t(0), std::int64_t(-2), INT64_MIN, INT64_MAX}) {
        store->setInt64Value(reboot.forceInSeconds.key(), seconds);
        EXPECT_EQ(std::chrono::seconds(seconds), reboot.forcedDelay());
    }
}

TEST(Keys, areDistinctAndOnTheCommittedPage)
{
    std::set<std::wstring> names;
    for (const KeyInfo& row : listKeys())
        EXPECT_TRUE(names.insert(row.name).second) << testing::PrintToString(row.name);
    std::ifstream page(TARNHD_KEYS_PAGE, std::ios::binary);
    EXPECT_EQ(std::string(std::istreambuf_iterator(page), {}), tools::keysPage()) << "./run docs makes it anew";
}
