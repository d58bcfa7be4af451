#include "fakemeridia.h"
#include "support/misaligned.h"

TEST_F(MeridiaTest, notificationRestoresTheAlignmentThatCodeReliesOn)
{
    int notified = 0;
    api->subscribeForChanges(L"n", [&](const std::wstring& name) {
        ++notified;
        EXPECT_EQ(L"changed", name);
        support::expectAlignedStack();
    });
    for (const std::uint32_t misalignment : {0u, 4u, 8u, 12u})
        support::callMisaligned(notification, misalignment, L"changed", nullptr, nullptr, userData);
    EXPECT_EQ(4, notified);
}
