#include "common/event.h"
#include "support/childtest.h"
#include "support/logcapture.h"
#include "vxtl/win32exception.h"

#include <gtest/gtest.h>

namespace vx::tarn::common {
namespace {

using support::ChildTest;
using sync::waitForSingleObject;

constexpr unsigned long generous = 30'000;

bool isSet(const Event& event)
{
    return waitForSingleObject(event, 0);
}

int setEvent()
{
    return openEvent(EVENT_MODIFY_STATE, ChildTest::argument(), false)->set() ? 0 : 1;
}

TEST(Event, isOfTheKindThatIsAskedFor)
{
    for (const bool manual : {false, true})
        for (const bool inherit : {false, true}) {
            const auto event =
                manual ? Event::createManualResetEvent({}, inherit) : Event::createAutoResetEvent({}, inherit);
            EXPECT_FALSE(isSet(*event));
            EXPECT_TRUE(event->set());
            EXPECT_TRUE(isSet(*event));
            EXPECT_EQ(isSet(*event), manual);
            EXPECT_TRUE(event->reset());
            EXPECT_FALSE(isSet(*event));
            DWORD flags = 0;
            ASSERT_TRUE(GetHandleInformation(event->getHandle(), &flags));
            EXPECT_EQ((flags & HANDLE_FLAG_INHERIT) != 0, inherit);
        }
    EXPECT_TRUE(isSet(*createEvent(true, true, {}, false)));
}

TEST(Event, reachesOtherProcessesByName)
{
    const std::wstring name = support::uniqueName(L"Global\\EventTest");
    const auto event = Event::createAutoResetEvent(name, false);
    const ChildTest child(L"setEvent", name);
    EXPECT_TRUE(waitForSingleObject(*event, generous));
    EXPECT_EQ(child.wait(), 0u);
}

TEST(Event, failsWithTheSystemsCode)
{
    using namespace testing;
    const auto codeIs = [](unsigned long code) { return Property(&Win32Exception::code, code); };
    support::LogCapture log;
    const std::wstring name = support::uniqueName(L"EventTest");
    EXPECT_THAT([&] { openEvent(SYNCHRONIZE, name, false); }, Throws<Win32Exception>(codeIs(ERROR_FILE_NOT_FOUND)));
    const KernelHandle mutex(CreateMutexW(nullptr, FALSE, name.c_str()));
    EXPECT_THAT([&] { createEvent(true, false, name, false); },
        Throws<Win32Exception>(AllOf(codeIs(ERROR_INVALID_HANDLE),
            Property(&std::exception::what, HasSubstr("Function: vx::tarn::common::createEvent,")))));
    EXPECT_TRUE(log.has(2, "Failed to create event: EventTest-")) << log.text();
}

} // namespace
} // namespace vx::tarn::common

int main(int argc, char** argv)
{
    return support::mainWithChildren(argc, argv, {{"setEvent", &vx::tarn::common::setEvent}});
}
