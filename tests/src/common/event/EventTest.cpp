#include "common/event/event.h"
#include "support/childtest.h"
#include "support/thrown.h"
#include "vxtl/globalmutex.h"
#include "vxtl/win32exception.h"

using namespace vx;
using namespace vx::tarn::common;

namespace {

/// Sets the event to tell that it is open, and keeps it until this process is ended.
int keepOpen()
{
    const auto event = openEvent(SYNCHRONIZE | EVENT_MODIFY_STATE, support::ChildTest::argument(), false);
    event->set();
    return WaitForSingleObject(GetCurrentProcess(), INFINITE);
}

const auto isSet = [](const std::shared_ptr<Event>& event) { return sync::waitForSingleObject(*event, 0); };

} // namespace

TEST(Event, isOfTheKindThatIsAskedFor)
{
    for (const bool asked : {false, true}) {
        const auto event = createEvent(asked, true, {}, asked);
        EXPECT_TRUE(isSet(event));
        EXPECT_EQ(isSet(event), asked);
        DWORD flags = 0;
        ASSERT_TRUE(GetHandleInformation(event->getHandle(), &flags));
        EXPECT_EQ((flags & HANDLE_FLAG_INHERIT) != 0, asked);
    }
}

TEST(Event, isReachedByItsNameAndFailsWithTheSystemsCode)
{
    const std::wstring name = support::uniqueName(L"EventTest");
    const auto open = [&] { return openEvent(EVENT_MODIFY_STATE, name, false); };
    EXPECT_EQ(support::thrown<Win32Exception>(open).code(), ERROR_FILE_NOT_FOUND);
    auto event = Event::createAutoResetEvent(name, false);
    EXPECT_TRUE(open()->set());
    EXPECT_TRUE(isSet(event));
    event.reset();
    const KernelHandle mutex(CreateMutexW(nullptr, FALSE, name.c_str()));
    const auto failure = support::thrown<Win32Exception>([&] { createEvent(true, false, name, false); });
    EXPECT_EQ(failure.code(), ERROR_INVALID_HANDLE);
}

TEST(Event, isMadeAnewWhileAnotherProcessKeepsTheOldOne)
{
    const std::wstring name = support::uniqueName(L"Global\\EventTestKept");
    const auto make = [&] { return createEvent(false, false, name, false, sync::accessibleSecurityDescriptor()); };
    auto event = make();
    const support::ChildTest keeper(L"keepOpen", name);
    ASSERT_TRUE(sync::waitForSingleObject(*event, 30'000));
    event.reset();
    event = make();
    EXPECT_TRUE(openEvent(EVENT_MODIFY_STATE, name, false)->set());
    EXPECT_TRUE(isSet(event));
    EXPECT_TRUE(event->set());
    EXPECT_TRUE(event->reset());
    EXPECT_FALSE(isSet(event));
}

int main(int argc, char** argv)
{
    return support::mainWithChildren(argc, argv, {{"keepOpen", &keepOpen}});
}
