#include "host/rebootcatch.h"
#include "common/reboot/rebootdriver.h"

#include <gtest/gtest.h>
#include <windows.h>

#include <algorithm>
#include <array>

namespace devhost::host {

TEST(RebootCatch, answersInPlaceOfTheSystemWhileItLives)
{
    const HMODULE library = LoadLibraryW(L"user32.dll");
    void* const address = reinterpret_cast<void*>(GetProcAddress(library, "ExitWindowsEx"));
    const auto code = [&] {
        std::array<unsigned char, 5> bytes{};
        std::copy_n(static_cast<const unsigned char*>(address), bytes.size(), bytes.begin());
        return bytes;
    };
    const auto original = code();
    RebootRequest asked{};
    {
        const RebootCatch held([&](const RebootRequest& request) {
            asked = request;
            return RebootCatch::Answer::Begun;
        });
        // Uncaught, the call would end this program as if all had gone well.
        ASSERT_EQ(code()[0], 0xE9);
        EXPECT_FALSE(vx::tarn::common::RebootDriver().reboot()) << "no error";
    }
    EXPECT_EQ(asked.flags, 2u);
    EXPECT_EQ(asked.reason, 0x13u);
    EXPECT_EQ(code(), original);
}

} // namespace devhost::host
