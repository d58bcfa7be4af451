#include "common/settings/tarnpatchsettings.h"
#include "common/settings/hostsettings.h"
#include "common/settings/tarnpatchstatus.h"
#include "settings-api/exceptions.h"
#include "support/fakesettings.h"
#include "support/logcapture.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

using namespace vx::tarn;
using nlohmann::json;
using support::FakeSettings;
using vx::str::toUtf8;

namespace {

struct TarnpatchSettingsTest : testing::Test {
    /// A getter answers its default on an empty store, and then what stands under its key.
    template <typename Getter>
    void check(const std::wstring& key, const json& defaultValue, const json& other, Getter get)
    {
        SCOPED_TRACE(testing::PrintToString(key));
        EXPECT_EQ(get(), defaultValue);
        store->setJsonValue(key, other);
        EXPECT_EQ(get(), other);
    }

    std::shared_ptr<FakeSettings> store = std::make_shared<FakeSettings>();
    const TarnpatchSettings settings{FakeSettings::handle(store)};
    const TarnpatchStatus status{FakeSettings::handle(store)};
    const HostSettings host{FakeSettings::handle(store)};
    const std::wstring prefix = L"windows.tarnpatch.";
};

} // namespace

TEST_F(TarnpatchSettingsTest, gettersKnowTheirKeysAndDefaults)
{
    const auto& scan = settings.scanning.automatic;
    const auto& startup = scan.scanningOnSystemStartup;
    const auto& installation = settings.installation;
    const auto& reboot = installation.reboot;
    const auto& completion = installation.completion;
    const auto& proxy = settings.communication;
    const auto& remoteScan = settings.remoteOperations.scanForUpdates;
    const auto& remote = settings.remoteOperations.installUpdates;
    // The keys of these are held by the tests of those who act on them.
    EXPECT_EQ(json({startup.enabled(), startup.delay().count(), startup.randomizationInterval().count()}),
        json({true, 1, 5}));
    EXPECT_EQ(json({scan.maximumRescanningPeriod().count(), scan.pollingInterval().count()}), json({24, 10}));
    EXPECT_EQ(
        json({completion.wait(), completion.timeout().count(), completion.timestamp().count()}), json({false, 15, 0}));
    EXPECT_EQ(json({remoteScan.start(), remoteScan.ack(), remote.start(), remote.ack()}), json({0, 0, 0, 0}));
    EXPECT_EQ(status.scanning.lastScanning.timestamp(), -1);
    EXPECT_EQ(toUtf8(remote.updatesToInstall()), "");
    EXPECT_FALSE(installation.inProgress() || status.installation.lastInstallation.restartComputerNeeded());
    check(L"windows.tarnpatch.enabled", true, false, [&] { return settings.enabled(); });
    check(L"status.windows.tarnpatch.enabled", true, false, [&] { return status.enabled(); });
    check(prefix + L"installation.automatic.hour", 12, 7, [&] { return installation.automatic.hour(); });
    check(prefix + L"installation.reboot.ask_user", true, false, [&] { return reboot.askUser(); });
    check(prefix + L"installation.reboot.force_in_seconds", -1, 7, [&] { return reboot.forceInSeconds().count(); });
    check(prefix + L"installation.reboot.force_in", 24, 7, [&] { return reboot.forceIn().count(); });
    check(prefix + L"installation.reboot.postpone_for", 30, 7, [&] { return reboot.postponeFor().count(); });
    check(prefix + L"communication.user_defined_proxy", "", "a", [&] { return toUtf8(proxy.userDefinedProxy()); });
    check(prefix + L"communication.hq_proxy_url", "", "a", [&] { return toUtf8(proxy.hqProxyUrl()); });
    check(prefix + L"communication.ignore_revocation_server_offline_error", false, true,
        [&] { return proxy.ignoreRevocationServerOfflineError(); });
    check(prefix + L"certificates.already_in_storage", false, true,
        [&] { return settings.certificates.alreadyInStorage(); });
    check(L"status.windows.meridia.last_successful_update_timestamp", 0, 7,
        [&] { return host.lastSuccessfulUpdateTimestamp(); });
    check(L"windows.gorse2.current_proxy", "", "a", [&] { return toUtf8(host.currentProxy()); });
}

TEST_F(TarnpatchSettingsTest, enumeratedKeysConvertTheirDefaultToo)
{
    EXPECT_EQ(FrequencyItem::EveryDay, settings.installation.automatic.frequency());
    EXPECT_EQ(ShowFlyerPolicyItem::AllUsers, settings.installation.reboot.showFlyerPolicy());
    EXPECT_EQ(UseHttpProxyItem::FromProductConfiguration, settings.communication.useHttpProxy());
    store->setStringValue(prefix + L"installation.automatic.frequency", L"every_friday");
    store->setStringValue(prefix + L"installation.reboot.show_flyer_policy", L"nobody");
    store->setStringValue(prefix + L"communication.use_http_proxy", L"No");
    EXPECT_EQ(FrequencyItem::EveryFriday, settings.installation.automatic.frequency());
    EXPECT_EQ(ShowFlyerPolicyItem::Nobody, settings.installation.reboot.showFlyerPolicy());
    EXPECT_THROW(settings.communication.useHttpProxy(), std::invalid_argument);
}

TEST_F(TarnpatchSettingsTest, settersWriteTheirKeys)
{
    settings.remoteOperations.installUpdates.setResult(ResultItem::Failed);
    settings.certificates.setAlreadyInStorage(true);
    EXPECT_EQ(L"failed", store->getStringValue(prefix + L"remote_operations.install_updates.result"));
    EXPECT_TRUE(settings.certificates.alreadyInStorage());
}

TEST_F(TarnpatchSettingsTest, forcedDelayTakesHoursOnlyWhenSecondsAreNotSet)
{
    const auto& reboot = settings.installation.reboot;
    store->setInt32Value(prefix + L"installation.reboot.force_in", INT32_MAX);
    EXPECT_EQ(std::chrono::seconds(INT32_MAX * 3600LL), reboot.forcedDelay());
    for (const std::int64_t seconds : {std::int64_t(0), std::int64_t(-2), INT64_MIN, INT64_MAX}) {
        store->setInt64Value(prefix + L"installation.reboot.force_in_seconds", seconds);
        EXPECT_EQ(std::chrono::seconds(seconds), reboot.forcedDelay());
    }
}

TEST_F(TarnpatchSettingsTest, onlyAMissingKeyFallsBack)
{
    const support::LogCapture log;
    settings.enabled();
    EXPECT_TRUE(log.has(4, "Setting 'windows.tarnpatch.enabled' not found - fallback to default value"));
    store->setInt32Value(prefix + L"enabled", 1);
    EXPECT_THROW(settings.enabled(), vx::settings::InvalidTypeException);
}
