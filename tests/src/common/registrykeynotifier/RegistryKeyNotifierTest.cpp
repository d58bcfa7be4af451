#include "common/registrykeynotifier.h"
#include "common/event.h"
#include "support/logcapture.h"
#include "vxtl/registry.h"
#include "vxtl/win32exception.h"

#include <gmock/gmock.h>
#include <windows.h>

namespace vx::tarn::common {
namespace {

class RegistryKeyNotifierTest : public testing::Test {
protected:
    RegistryKeyNotifierTest()
    {
        if (m_software->doesKeyExist(name))
            m_software->deleteTree(name);
        m_key = m_software->createKey(name);
    }
    ~RegistryKeyNotifierTest() override { m_software->deleteTree(name); }

    static constexpr const wchar_t* name = L"TarnhdNotifierTest";
    static constexpr const wchar_t* path = L"Software\\TarnhdNotifierTest";
    std::shared_ptr<registry::RegistryKey> m_software =
        registry::createWin32Registry()->openKey(L"HKEY_CURRENT_USER\\Software", registry::allAccess);
    std::shared_ptr<registry::RegistryKey> m_key;
    std::shared_ptr<Event> m_event = Event::createAutoResetEvent({}, false);
    RegistryKeyNotifier m_notifier;
};

TEST_F(RegistryKeyNotifierTest, tellsOncePerRequest)
{
    EXPECT_TRUE(m_notifier.initialize(HKEY_CURRENT_USER, path, KEY_NOTIFY));
    EXPECT_FALSE(m_notifier.initialize(HKEY_CURRENT_USER, path, KEY_NOTIFY));
    m_notifier.notifyChangeKeyValue(REG_NOTIFY_CHANGE_NAME, *m_event);
    EXPECT_FALSE(sync::waitForSingleObject(*m_event, 0));
    m_key->createKey(L"one");
    EXPECT_TRUE(sync::waitForSingleObject(*m_event, 30'000));
    m_key->createKey(L"two");
    EXPECT_FALSE(sync::waitForSingleObject(*m_event, 0));
    m_notifier.notifyChangeKeyValue(REG_NOTIFY_CHANGE_NAME, *m_event);
    m_key->deleteKey(L"two");
    EXPECT_TRUE(sync::waitForSingleObject(*m_event, 30'000));
}

TEST_F(RegistryKeyNotifierTest, throwsWhereNothingIsOpen)
{
    using namespace testing;
    const auto fails = [](unsigned long code, const std::string& function) {
        return Throws<Win32Exception>(AllOf(Property(&Win32Exception::code, code),
            Property(&std::exception::what,
                HasSubstr("Function: vx::tarn::common::RegistryKeyNotifier::" + function + ", File"))));
    };
    EXPECT_THAT([&] { m_notifier.initialize(HKEY_CURRENT_USER, L"Software\\No such key", KEY_NOTIFY); },
        fails(ERROR_FILE_NOT_FOUND, "initialize"));
    EXPECT_THAT([&] { m_notifier.notifyChangeKeyValue(REG_NOTIFY_CHANGE_NAME, *m_event); },
        fails(ERROR_INVALID_HANDLE, "notifyChangeKeyValue"));
    EXPECT_TRUE(m_notifier.initialize(HKEY_CURRENT_USER, path, KEY_NOTIFY)) << "a failure leaves it closed";
}

} // namespace
} // namespace vx::tarn::common
