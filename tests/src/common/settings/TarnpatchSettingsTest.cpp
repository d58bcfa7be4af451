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

class TarnpatchSettingsTest : public testing::Test {
protected:
    std::shared_ptr<FakeSettings> m_store = std::make_shared<FakeSettings>();
    const TarnpatchSettings m_settings{FakeSettings::handle(m_store)};
    const TarnpatchStatus m_status{FakeSettings::handle(m_store)};
    const HostSettings m_host{FakeSettings::handle(m_store)};
};

template <typename T>
struct Row {
    std::wstring key;
    T defaultValue;
    std::function<T()> get;
};

/// Each getter answers its default on an empty store, and then what stands under its key.
template <typename T, typename Put>
void check(const std::vector<Row<T>>& rows, const T& other, Put put)
{
    for (const Row<T>& row : rows) {
        SCOPED_TRACE(std::string(row.key.begin(), row.key.end()));
        EXPECT_EQ(row.defaultValue, row.get());
        put(row.key, other);
        EXPECT_EQ(other, row.get());
    }
}

std::wstring settings(const wchar_t* key)
{
    return std::wstring(L"windows.tarnpatch.") + key;
}
std::wstring status(const wchar_t* key)
{
    return std::wstring(L"status.windows.tarnpatch.") + key;
}

} // namespace

TEST_F(TarnpatchSettingsTest, booleansReadTheirKeys)
{
    std::vector<Row<bool>> rows{
        {settings(L"enabled"), true, [&] { return m_settings.enabled(); }},
        {settings(L"scanning.automatic.scanning_on_system_startup.enabled"), true,
            [&] { return m_settings.scanning.automatic.scanningOnSystemStartup.enabled(); }},
        {settings(L"installation.reboot.ask_user"), true, [&] { return m_settings.installation.reboot.askUser(); }},
        {status(L"enabled"), true, [&] { return m_status.enabled(); }},
    };
    check(rows, false, [&](auto& key, bool value) { m_store->setBoolValue(key, value); });
    rows = {
        {settings(L"installation.in_progress"), false, [&] { return m_settings.installation.inProgress(); }},
        {settings(L"installation.completion.wait"), false, [&] { return m_settings.installation.completion.wait(); }},
        {settings(L"communication.ignore_revocation_server_offline_error"), false,
            [&] { return m_settings.communication.ignoreRevocationServerOfflineError(); }},
        {settings(L"certificates.already_in_storage"), false,
            [&] { return m_settings.certificates.alreadyInStorage(); }},
        {status(L"installation.last_installation.restart_computer_needed"), false,
            [&] { return m_status.installation.lastInstallation.restartComputerNeeded(); }},
    };
    check(rows, true, [&](auto& key, bool value) { m_store->setBoolValue(key, value); });
}

TEST_F(TarnpatchSettingsTest, numbersReadTheirKeysInTheirUnits)
{
    const auto& automatic = m_settings.scanning.automatic;
    const auto& installation = m_settings.installation;
    const auto& remote = m_settings.remoteOperations;
    const std::vector<Row<std::int64_t>> rows{
        {settings(L"scanning.automatic.maximum_rescanning_period"), 24,
            [&] { return std::chrono::hours(automatic.maximumRescanningPeriod()).count(); }},
        {settings(L"scanning.automatic.scanning_on_system_startup.delay"), 1,
            [&] { return std::chrono::minutes(automatic.scanningOnSystemStartup.delay()).count(); }},
        {settings(L"scanning.automatic.scanning_on_system_startup.randomization_interval"), 5,
            [&] { return std::chrono::minutes(automatic.scanningOnSystemStartup.randomizationInterval()).count(); }},
        {settings(L"scanning.automatic.polling_interval"), 10,
            [&] { return std::chrono::minutes(automatic.pollingInterval()).count(); }},
        {settings(L"installation.automatic.hour"), 12, [&] { return installation.automatic.hour(); }},
        {settings(L"installation.reboot.force_in_seconds"), -1,
            [&] { return std::chrono::seconds(installation.reboot.forceInSeconds()).count(); }},
        {settings(L"installation.reboot.force_in"), 24,
            [&] { return std::chrono::hours(installation.reboot.forceIn()).count(); }},
        {settings(L"installation.reboot.postpone_for"), 30,
            [&] { return std::chrono::minutes(installation.reboot.postponeFor()).count(); }},
        {settings(L"installation.completion.timeout"), 15,
            [&] { return std::chrono::minutes(installation.completion.timeout()).count(); }},
        {settings(L"installation.completion.timestamp"), 0,
            [&] { return std::chrono::seconds(installation.completion.timestamp()).count(); }},
        {settings(L"remote_operations.scan_for_updates.start"), 0, [&] { return remote.scanForUpdates.start(); }},
        {settings(L"remote_operations.scan_for_updates.ack"), 0, [&] { return remote.scanForUpdates.ack(); }},
        {settings(L"remote_operations.install_updates.start"), 0, [&] { return remote.installUpdates.start(); }},
        {settings(L"remote_operations.install_updates.ack"), 0, [&] { return remote.installUpdates.ack(); }},
        {status(L"scanning.last_scanning.timestamp"), -1, [&] { return m_status.scanning.lastScanning.timestamp(); }},
        {L"status.windows.meridia.last_successful_update_timestamp", 0,
            [&] { return m_host.lastSuccessfulUpdateTimestamp(); }},
    };
    check<std::int64_t>(rows, 77, [&](auto& key, std::int64_t value) { m_store->setInt64Value(key, value); });
}

TEST_F(TarnpatchSettingsTest, textsAndJsonReadTheirKeys)
{
    const auto& communication = m_settings.communication;
    check<std::wstring>(
        {
            {settings(L"communication.user_defined_proxy"), L"", [&] { return communication.userDefinedProxy(); }},
            {settings(L"communication.hq_proxy_url"), L"", [&] { return communication.hqProxyUrl(); }},
            {settings(L"remote_operations.install_updates.updates_to_install"), L"",
                [&] { return m_settings.remoteOperations.installUpdates.updatesToInstall(); }},
            {L"windows.gorse2.current_proxy", L"", [&] { return m_host.currentProxy(); }},
        },
        L"text", [&](auto& key, const std::wstring& value) { m_store->setStringValue(key, value); });
    check<json>(
        {
            {settings(L"installation.deployment_queue"), json::array(),
                [&] { return m_settings.installation.deploymentQueue(); }},
            {status(L"scanning.last_scanning.missing_updates"), json::array(),
                [&] { return m_status.scanning.lastScanning.missingUpdates(); }},
            {status(L"installation.log.entries"), json::array(), [&] { return m_status.installation.log.entries(); }},
        },
        json{{"a", 1}}, [&](auto& key, const json& value) { m_store->setJsonValue(key, value); });
}

TEST_F(TarnpatchSettingsTest, enumeratedKeysConvertTheirDefaultToo)
{
    EXPECT_EQ(ModeItem::Disable, m_settings.installation.automatic.mode());
    EXPECT_EQ(FrequencyItem::EveryDay, m_settings.installation.automatic.frequency());
    EXPECT_EQ(ShowFlyerPolicyItem::AllUsers, m_settings.installation.reboot.showFlyerPolicy());
    EXPECT_EQ(UseHttpProxyItem::FromProductConfiguration, m_settings.communication.useHttpProxy());
    m_store->setStringValue(settings(L"installation.automatic.mode"), L"install_critical");
    m_store->setStringValue(settings(L"installation.automatic.frequency"), L"every_friday");
    m_store->setStringValue(settings(L"installation.reboot.show_flyer_policy"), L"nobody");
    m_store->setStringValue(settings(L"communication.use_http_proxy"), L"No");
    EXPECT_EQ(ModeItem::InstallCritical, m_settings.installation.automatic.mode());
    EXPECT_EQ(FrequencyItem::EveryFriday, m_settings.installation.automatic.frequency());
    EXPECT_EQ(ShowFlyerPolicyItem::Nobody, m_settings.installation.reboot.showFlyerPolicy());
    EXPECT_THROW(m_settings.communication.useHttpProxy(), std::invalid_argument);
}

TEST_F(TarnpatchSettingsTest, settersWriteTheirKeys)
{
    m_settings.installation.setInProgress(true);
    m_settings.installation.setDeploymentQueue({1});
    m_settings.installation.completion.setWait(true);
    m_settings.remoteOperations.scanForUpdates.setAck(4);
    m_settings.remoteOperations.installUpdates.setAck(5);
    m_settings.remoteOperations.installUpdates.setResult(ResultItem::Failed);
    m_settings.certificates.setAlreadyInStorage(true);
    m_settings.currentStatus.setPatchesToInstall({2});
    m_status.setEnabled(false);
    m_status.scanning.lastScanning.setTimestamp(6);
    m_status.scanning.lastScanning.setMissingUpdates({3});
    m_status.installation.lastInstallation.setRestartComputerNeeded(true);

    EXPECT_TRUE(m_settings.installation.inProgress());
    EXPECT_EQ(json({1}), m_settings.installation.deploymentQueue());
    EXPECT_TRUE(m_settings.installation.completion.wait());
    EXPECT_EQ(4, m_settings.remoteOperations.scanForUpdates.ack());
    EXPECT_EQ(5, m_settings.remoteOperations.installUpdates.ack());
    EXPECT_EQ(L"failed", m_store->getStringValue(settings(L"remote_operations.install_updates.result")));
    EXPECT_TRUE(m_settings.certificates.alreadyInStorage());
    EXPECT_EQ(json({2}), m_store->getJsonValue(settings(L"current_status.patches_to_install")));
    EXPECT_FALSE(m_status.enabled());
    EXPECT_EQ(6, m_status.scanning.lastScanning.timestamp());
    EXPECT_EQ(json({3}), m_status.scanning.lastScanning.missingUpdates());
    EXPECT_TRUE(m_status.installation.lastInstallation.restartComputerNeeded());
}

TEST_F(TarnpatchSettingsTest, forcedDelayTakesHoursOnlyWhenSecondsAreNotSet)
{
    const auto& reboot = m_settings.installation.reboot;
    EXPECT_EQ(std::chrono::seconds(86400), reboot.forcedDelay());
    m_store->setInt32Value(settings(L"installation.reboot.force_in"), INT32_MAX);
    EXPECT_EQ(std::chrono::seconds(INT32_MAX * 3600LL), reboot.forcedDelay());
    for (const std::int64_t seconds : {std::int64_t(0), std::int64_t(-2), INT64_MIN, INT64_MAX}) {
        m_store->setInt64Value(settings(L"installation.reboot.force_in_seconds"), seconds);
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
    m_store->setInt32Value(settings(L"enabled"), 1);
    EXPECT_THROW(m_settings.enabled(), vx::settings::InvalidTypeException);
}
