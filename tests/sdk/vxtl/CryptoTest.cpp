#include "vxtl/crypto.h"

#include <gtest/gtest.h>

TEST(Crypto, encodesWithoutLineBreaks)
{
    EXPECT_EQ(vx::crypto::toBase64String(std::vector<std::uint8_t>(300, 0xFF)), std::wstring(400, L'/'));
}
