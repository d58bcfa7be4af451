#include "fakemeridia.h"
#include "support/logcapture.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace vx;
using meridia::errorText;
using meridia::SettingsApi;
using support::LogCapture;
using testing::ElementsAre;

namespace {

class SettingsApiSubscriptionsTest : public testing::Test {
protected:
    settings::SubscriptionId subscribe(const wchar_t* name)
    {
        return m_api->subscribeForChanges(name, [this](const std::wstring& changed) { m_changes.push_back(changed); });
    }

    FakeMeridia m_fake;
    std::unique_ptr<SettingsApi> m_api = m_fake.open();
    std::vector<std::wstring> m_changes;
};

} // namespace

TEST_F(SettingsApiSubscriptionsTest, subscriptionsUseTheSecondHandleAndTheirRecord)
{
    const auto id = subscribe(L"n");
    EXPECT_EQ(id, reinterpret_cast<settings::SubscriptionId>(m_fake.userData));
    m_fake.notify(L"n");
    m_fake.notify(nullptr);
    EXPECT_THAT(m_changes, ElementsAre(L"n", std::wstring()));
    m_api->unsubscribeFromChanges(id);
    m_api->unsubscribeFromChanges(id);
    EXPECT_THAT(m_fake.calls, ElementsAre(L"Subscribe 2 n", L"Unsubscribe 2 n"));
}

TEST_F(SettingsApiSubscriptionsTest, refusedSubscriptionIsGoneAndCalledTwice)
{
    for (int code = 1; code <= 25; ++code) {
        m_fake.calls.clear();
        m_fake.answer({code, 12});
        try {
            subscribe(L"n");
            ADD_FAILURE() << code;
        } catch (const QrlMeridiaException& exception) {
            EXPECT_EQ(code, static_cast<int>(exception.code()));
            EXPECT_EQ(L"Operation is not allowed, Setting: n", exception.reason());
        }
        EXPECT_EQ(2u, m_fake.calls.size());
        m_api->unsubscribeFromChanges(reinterpret_cast<settings::SubscriptionId>(m_fake.userData));
        EXPECT_EQ(2u, m_fake.calls.size());
    }
}

TEST_F(SettingsApiSubscriptionsTest, refusedUnsubscriptionStaysUsable)
{
    subscribe(L"a");
    const auto id = subscribe(L"b");
    m_fake.answer({3, 5});
    try {
        m_api->unsubscribeFromChanges(id);
        FAIL();
    } catch (const QrlMeridiaException& exception) {
        EXPECT_EQ(meridia::QrlMeridiaError_enum::ServerUnreachable, exception.code());
        EXPECT_EQ(L"Access denied", exception.reason());
    }
    m_fake.notify(L"b");
    EXPECT_THAT(m_changes, ElementsAre(L"b"));
    m_fake.answer({0});
    m_api->unsubscribeFromChanges(id);
    EXPECT_THAT(m_fake.calls,
        ElementsAre(L"Subscribe 2 a", L"Subscribe 2 b", L"Unsubscribe 2 b", L"Unsubscribe 2 b", L"Unsubscribe 2 b"));
}

TEST_F(SettingsApiSubscriptionsTest, aRefusedUnsubscriptionNotifiesNobodyOnceTheOwnerIsGone)
{
    const auto id = subscribe(L"n");
    m_fake.answer({3, 3});
    EXPECT_THROW(m_api->unsubscribeFromChanges(id), QrlMeridiaException);
    m_api.reset();
    m_fake.notify(L"n");
    EXPECT_TRUE(m_changes.empty());
}

TEST_F(SettingsApiSubscriptionsTest, subscriberThatThrowsIsLogged)
{
    m_api->subscribeForChanges(L"n", [](const std::wstring&) { throw std::runtime_error("broken subscriber"); });
    const LogCapture log;
    m_fake.notify(L"n");
    EXPECT_TRUE(log.has(2, "broken subscriber"));
    m_api->subscribeForChanges(L"n", [](const std::wstring&) { throw 1; });
    EXPECT_NO_THROW(m_fake.notify(L"n"));
}

TEST_F(SettingsApiSubscriptionsTest, notificationWithoutARecordIsLogged)
{
    subscribe(L"n");
    const LogCapture log;
    m_fake.notification(nullptr, 3, nullptr, nullptr);
    EXPECT_TRUE(log.has(5, "settingName: , type: 3, value: 0"));
    EXPECT_TRUE(log.has(3, "vx::meridia::SettingsApi::settingsChangeNotificationCallback: userData is not provided"));
    EXPECT_TRUE(m_changes.empty());
}
