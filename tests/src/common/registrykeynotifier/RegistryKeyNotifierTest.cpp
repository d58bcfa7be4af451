#include "common/registrykeynotifier/registrykeynotifier.h"
#include "common/event/event.h"
#include "support/thrown.h"
#include "vxtl/registry.h"
#include "vxtl/win32exception.h"

#include <windows.h>

using namespace vx;
using tarn::common::Event;

TEST(RegistryKeyNotifier, tellsOncePerRequestOfAnOpenKey)
{
    const std::shared_ptr<Event> event = Event::createAutoResetEvent({}, false);
    tarn::common::RegistryKeyNotifier notifier;
    const auto request = [&] { notifier.notifyChangeKeyValue(REG_NOTIFY_CHANGE_NAME, *event); };
    const auto open = [&] {
        return notifier.initialize(HKEY_CURRENT_USER, L"Software\\TarnhdNotifierTest", KEY_NOTIFY);
    };
    const auto software = registry::createWin32Registry()->openKey(L"HKEY_CURRENT_USER\\Software", registry::allAccess);
    if (software->doesKeyExist(L"TarnhdNotifierTest"))
        software->deleteTree(L"TarnhdNotifierTest");
    EXPECT_EQ(support::thrown<Win32Exception>(request).code(), ERROR_INVALID_HANDLE);
    EXPECT_EQ(support::thrown<Win32Exception>(open).code(), ERROR_FILE_NOT_FOUND);
    const auto key = software->createKey(L"TarnhdNotifierTest");
    EXPECT_TRUE(open()) << "the failure left it closed";
    EXPECT_FALSE(open());

    request();
    EXPECT_FALSE(sync::waitForSingleObject(*event, 0));
    key->createKey(L"one");
    EXPECT_TRUE(sync::waitForSingleObject(*event, 30'000));
    key->createKey(L"two");
    EXPECT_FALSE(sync::waitForSingleObject(*event, 0));
    request();
    key->deleteKey(L"two");
    EXPECT_TRUE(sync::waitForSingleObject(*event, 30'000));
    software->deleteTree(L"TarnhdNotifierTest");
}
