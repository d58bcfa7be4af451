#include "common/tarnpatchsettings.h"
#include "common/hostsettings.h"
#include "common/tarnpatchstatus.h"
#include "settings-api/exceptions.h"
#include "support/fakesettings.h"
#include "support/logcapture.h"

#include <functional>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

using namespace vx::tarn;
using nlohmann::json;
using support::FakeSettings;

namespace {

const std::wstring prefix = L"windows.tarnpatch.";

struct Getter {
    std::string key;
    json defaultValue;
    json other;
    std::function<json()> get;
};

std::string narrow(const std::wstring& text)
{
    return {text.begin(), text.end()};
}

class TarnpatchSettingsTest : public testing::Test {
protected:
    /// Each getter answers its default on an empty store, and then what stands under its key.
    void check(const std::string& section, const std::vector<Getter>& getters)
    {
        for (const Getter& getter : getters) {
            const std::string key = section + getter.key;
            SCOPED_TRACE(key);
            EXPECT_EQ(getter.defaultValue, getter.get());
            m_store->setJsonValue(std::wstring(key.begin(), key.end()), getter.other);
            EXPECT_EQ(getter.other, getter.get());
        }
    }

    std::shared_ptr<FakeSettings> m_store = std::make_shared<FakeSettings>();
    const TarnpatchSettings m_settings{FakeSettings::handle(m_store)};
    const TarnpatchStatus m_status{FakeSettings::handle(m_store)};
    const HostSettings m_host{FakeSettings::handle(m_store)};
};

} // namespace

TEST_F(TarnpatchSettingsTest, gettersKnowTheirKeysAndDefaults)
{
    const auto& automatic = m_settings.scanning.automatic;
    const auto& startup = automatic.scanningOnSystemStartup;
    const auto& installation = m_settings.installation;
    const auto& reboot = installation.reboot;
    const auto& communication = m_settings.communication;
    const auto& remote = m_settings.remoteOperations;
    const json none = json::array();
    check("windows.tarnpatch.",
        {
            {"enabled", true, false, [&] { return m_settings.enabled(); }},
            {"scanning.automatic.scanning_on_system_startup.enabled", true, false, [&] { return startup.enabled(); }},
            {"scanning.automatic.scanning_on_system_startup.delay", 1, 7, [&] { return startup.delay().count(); }},
            {"scanning.automatic.scanning_on_system_startup.randomization_interval", 5, 7,
                [&] { return startup.randomizationInterval().count(); }},
            {"scanning.automatic.maximum_rescanning_period", 24, 7,
                [&] { return automatic.maximumRescanningPeriod().count(); }},
            {"scanning.automatic.polling_interval", 10, 7, [&] { return automatic.pollingInterval().count(); }},
            {"installation.automatic.hour", 12, 7, [&] { return installation.automatic.hour(); }},
            {"installation.reboot.ask_user", true, false, [&] { return reboot.askUser(); }},
            {"installation.reboot.force_in_seconds", -1, 7, [&] { return reboot.forceInSeconds().count(); }},
            {"installation.reboot.force_in", 24, 7, [&] { return reboot.forceIn().count(); }},
            {"installation.reboot.postpone_for", 30, 7,
                [&] { return std::chrono::minutes(reboot.postponeFor()).count(); }},
            {"installation.in_progress", false, true, [&] { return installation.inProgress(); }},
            {"installation.completion.wait", false, true, [&] { return installation.completion.wait(); }},
            {"installation.completion.timeout", 15, 7, [&] { return installation.completion.timeout().count(); }},
            {"installation.completion.timestamp", 0, 7, [&] { return installation.completion.timestamp().count(); }},
            {"installation.deployment_queue", none, {1}, [&] { return installation.deploymentQueue(); }},
            {"communication.user_defined_proxy", "", "a", [&] { return narrow(communication.userDefinedProxy()); }},
            {"communication.hq_proxy_url", "", "a", [&] { return narrow(communication.hqProxyUrl()); }},
            {"communication.ignore_revocation_server_offline_error", false, true,
                [&] { return communication.ignoreRevocationServerOfflineError(); }},
            {"certificates.already_in_storage", false, true,
                [&] { return m_settings.certificates.alreadyInStorage(); }},
            {"remote_operations.scan_for_updates.start", 0, 7, [&] { return remote.scanForUpdates.start(); }},
            {"remote_operations.scan_for_updates.ack", 0, 7, [&] { return remote.scanForUpdates.ack(); }},
            {"remote_operations.install_updates.start", 0, 7, [&] { return remote.installUpdates.start(); }},
            {"remote_operations.install_updates.ack", 0, 7, [&] { return remote.installUpdates.ack(); }},
            {"remote_operations.install_updates.updates_to_install", "", "a",
                [&] { return narrow(remote.installUpdates.updatesToInstall()); }},
        });
    check("status.windows.tarnpatch.",
        {
            {"enabled", true, false, [&] { return m_status.enabled(); }},
            {"installation.last_installation.restart_computer_needed", false, true,
                [&] { return m_status.installation.lastInstallation.restartComputerNeeded(); }},
            {"installation.log.entries", none, {1}, [&] { return m_status.installation.log.entries(); }},
            {"scanning.last_scanning.timestamp", -1, 7, [&] { return m_status.scanning.lastScanning.timestamp(); }},
            {"scanning.last_scanning.missing_updates", none, {1},
                [&] { return m_status.scanning.lastScanning.missingUpdates(); }},
        });
    EXPECT_EQ(0, m_host.lastSuccessfulUpdateTimestamp());
    m_store->setInt64Value(L"status.windows.meridia.last_successful_update_timestamp", 7);
    EXPECT_EQ(7, m_host.lastSuccessfulUpdateTimestamp());
    EXPECT_EQ(L"", m_host.currentProxy());
    m_store->setStringValue(L"windows.gorse2.current_proxy", L"a");
    EXPECT_EQ(L"a", m_host.currentProxy());
}

TEST_F(TarnpatchSettingsTest, enumeratedKeysConvertTheirDefaultToo)
{
    EXPECT_EQ(ModeItem::Disable, m_settings.installation.automatic.mode());
    EXPECT_EQ(FrequencyItem::EveryDay, m_settings.installation.automatic.frequency());
    EXPECT_EQ(ShowFlyerPolicyItem::AllUsers, m_settings.installation.reboot.showFlyerPolicy());
    EXPECT_EQ(UseHttpProxyItem::FromProductConfiguration, m_settings.communication.useHttpProxy());
    m_store->setStringValue(prefix + L"installation.automatic.mode", L"install_critical");
    m_store->setStringValue(prefix + L"installation.automatic.frequency", L"every_friday");
    m_store->setStringValue(prefix + L"installation.reboot.show_flyer_policy", L"nobody");
    m_store->setStringValue(prefix + L"communication.use_http_proxy", L"No");
    EXPECT_EQ(ModeItem::InstallCritical, m_settings.installation.automatic.mode());
    EXPECT_EQ(FrequencyItem::EveryFriday, m_settings.installation.automatic.frequency());
    EXPECT_EQ(ShowFlyerPolicyItem::Nobody, m_settings.installation.reboot.showFlyerPolicy());
    EXPECT_THROW(m_settings.communication.useHttpProxy(), std::invalid_argument);
}

TEST_F(TarnpatchSettingsTest, settersWriteTheirKeys)
{
    m_settings.installation.setDeploymentQueue({1});
    m_settings.remoteOperations.installUpdates.setResult(ResultItem::Failed);
    m_settings.certificates.setAlreadyInStorage(true);
    m_settings.currentStatus.setPatchesToInstall({2});
    EXPECT_EQ(json({1}), m_settings.installation.deploymentQueue());
    EXPECT_EQ(L"failed", m_store->getStringValue(prefix + L"remote_operations.install_updates.result"));
    EXPECT_TRUE(m_settings.certificates.alreadyInStorage());
    EXPECT_EQ(json({2}), m_store->getJsonValue(prefix + L"current_status.patches_to_install"));
}

TEST_F(TarnpatchSettingsTest, forcedDelayTakesHoursOnlyWhenSecondsAreNotSet)
{
    const auto& reboot = m_settings.installation.reboot;
    EXPECT_EQ(std::chrono::seconds(86400), reboot.forcedDelay());
    m_store->setInt32Value(prefix + L"installation.reboot.force_in", INT32_MAX);
    EXPECT_EQ(std::chrono::seconds(INT32_MAX * 3600LL), reboot.forcedDelay());
    for (const std::int64_t seconds : {std::int64_t(0), std::int64_t(-2), INT64_MIN, INT64_MAX}) {
        m_store->setInt64Value(prefix + L"installation.reboot.force_in_seconds", seconds);
        EXPECT_EQ(std::chrono::seconds(seconds), reboot.forcedDelay());
    }
}

TEST_F(TarnpatchSettingsTest, onlyAMissingKeyFallsBack)
{
    const support::LogCapture log;
    m_settings.enabled();
    EXPECT_TRUE(log.has(4, "Setting 'windows.tarnpatch.enabled' not found - fallback to default value"));
    EXPECT_TRUE(log.has(5, "Exception occurred. Type: vx::settings::NotFoundException, Setting: "
                           "windows.tarnpatch.enabled"));
    m_store->setInt32Value(prefix + L"enabled", 1);
    EXPECT_THROW(m_settings.enabled(), vx::settings::InvalidTypeException);
}
