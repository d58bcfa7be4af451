#include "fakemeridia.h"
#include "support/misaligned.h"

TEST(SettingsApiStackTest, notificationRestoresTheAlignmentThatCodeReliesOn)
{
    FakeMeridia fake;
    const auto api = fake.open();
    int calls = 0;
    api->subscribeForChanges(L"n", [&](const std::wstring& name) {
        ++calls;
        EXPECT_EQ(L"changed", name);
        support::expectAlignedStack();
    });
    for (const std::uint32_t misalignment : {0u, 4u, 8u, 12u})
        support::callMisaligned(fake.notification, misalignment, L"changed", nullptr, nullptr, fake.userData);
    EXPECT_EQ(4, calls);
}
