#include "fakemeridia.h"

using namespace vx;

namespace {

/// Calls as a host does whose compiler aligns the stack to four bytes only.
void notifyOverStack(std::uint32_t misalignment, const FakeMeridia& fake, const wchar_t* name)
{
    const void* arguments[] = {name, nullptr, nullptr, fake.userData};
    auto* function = reinterpret_cast<void*>(fake.notification);
    asm volatile("movl %%esp, %%ebx\n\t"
                 "andl $-16, %%esp\n\t"
                 "subl %%edi, %%esp\n\t"
                 "pushl 12(%%esi)\n\t"
                 "pushl 8(%%esi)\n\t"
                 "pushl 4(%%esi)\n\t"
                 "pushl (%%esi)\n\t"
                 "call *%%eax\n\t"
                 "movl %%ebx, %%esp"
                 : "+a"(function)
                 : "S"(arguments), "D"(misalignment)
                 : "ebx", "ecx", "edx", "cc", "memory");
}

/// Where the compiler has put a variable that it believes to be aligned.
std::uintptr_t placeOfAlignedVariable()
{
    alignas(16) char variable[16];
    auto place = reinterpret_cast<std::uintptr_t>(variable);
    asm volatile("" : "+r"(place) : : "memory");
    return place;
}

} // namespace

TEST(SettingsApiStackTest, notificationRestoresTheAlignmentThatCodeRelies)
{
    FakeMeridia fake;
    const auto api = fake.open();
    int calls = 0;
    api->subscribeForChanges(L"n", [&](const std::wstring& name) {
        ++calls;
        EXPECT_EQ(L"changed", name);
        EXPECT_EQ(0u, placeOfAlignedVariable() % 16);
    });
    for (const std::uint32_t misalignment : {0u, 4u, 8u, 12u})
        notifyOverStack(misalignment, fake, L"changed");
    EXPECT_EQ(4, calls);
}
