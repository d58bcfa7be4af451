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

TEST(Event, startsAsAskedAndResetsAsAsked)
{
    const auto automatic = Event::createAutoResetEvent({}, false);
    EXPECT_FALSE(isSet(*automatic));
    EXPECT_TRUE(automatic->set());
    EXPECT_TRUE(isSet(*automatic));
    EXPECT_FALSE(isSet(*automatic));
    const auto manual = Event::createManualResetEvent({}, false);
    EXPECT_FALSE(isSet(*manual));
    EXPECT_TRUE(manual->set());
    EXPECT_TRUE(isSet(*manual) && isSet(*manual));
    EXPECT_TRUE(manual->reset());
    EXPECT_FALSE(isSet(*manual));
    EXPECT_TRUE(isSet(*createEvent(true, true, {}, false)));
}

TEST(Event, handsItsHandleDownOnlyWhenAsked)
{
    for (const bool inherit : {false, true}) {
        DWORD flags = 0;
        const auto event = Event::createManualResetEvent({}, inherit);
        ASSERT_TRUE(GetHandleInformation(event->getHandle(), &flags));
        EXPECT_EQ((flags & HANDLE_FLAG_INHERIT) != 0, inherit);
    }
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
    support::LogCapture log;
    const std::wstring name = support::uniqueName(L"EventTest");
    try {
        openEvent(SYNCHRONIZE, name, false);
        ADD_FAILURE();
    } catch (const Win32Exception& e) {
        EXPECT_EQ(e.code(), static_cast<unsigned long>(ERROR_FILE_NOT_FOUND));
    }
    const KernelHandle mutex(CreateMutexW(nullptr, FALSE, name.c_str()));
    try {
        createEvent(true, false, name, false);
        ADD_FAILURE();
    } catch (const Win32Exception& e) {
        EXPECT_EQ(e.code(), static_cast<unsigned long>(ERROR_INVALID_HANDLE));
        EXPECT_NE(std::string(e.what()).find("Function: vx::tarn::common::createEvent,"), std::string::npos);
    }
    EXPECT_TRUE(log.has(2, "Failed to create event: EventTest-")) << log.text();
}

} // namespace
} // namespace vx::tarn::common

int main(int argc, char** argv)
{
    return support::mainWithChildren(argc, argv, {{"setEvent", &vx::tarn::common::setEvent}});
}
