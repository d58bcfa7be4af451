#include "vxtl/crypto.h"
#include "vxtl/exception.h"

#include <gtest/gtest.h>

namespace vx::crypto {
namespace {

std::span<const std::uint8_t> bytesOf(const std::string& text)
{
    return {reinterpret_cast<const std::uint8_t*>(text.data()), text.size()};
}

TEST(Crypto, hashesAndEncodesAsThePublishedVectors)
{
    struct {
        std::string source;
        std::wstring base64OfHash;
    } const rows[] = {
        {"a", L"DMF1ucDxtqgxw5niaXcmYQ=="},
        {"message digest", L"+WtpfXy3k41SWi8xqvFh0A=="},
        {"12345678901234567890123456789012345678901234567890123456789012345678901234567890",
            L"V+30oivjyVWsSdouIQe2eg=="},
        // One byte below, at and above the length at which the padding takes a block of its own.
        {std::string(55, 'x'), L"BDZEIOJcUS/ZWKcHOKqPcg=="},
        {std::string(56, 'x'), L"Zopy1boX8I5i2ryvrW2xSw=="},
        {std::string(64, 'x'), L"wbtPgdiSstV5R2gq6yUkVg=="},
    };
    for (const auto& row : rows)
        EXPECT_EQ(toBase64String(hash(bytesOf(row.source))), row.base64OfHash) << row.source;
}

TEST(Crypto, encodesWithoutLineBreaks)
{
    EXPECT_EQ(toBase64String({}), L"");
    EXPECT_EQ(toBase64String(bytesOf("f")), L"Zg==");
    EXPECT_EQ(toBase64String(bytesOf("fo")), L"Zm8=");
    EXPECT_EQ(toBase64String(bytesOf("foo")), L"Zm9v");
    EXPECT_EQ(toBase64String(bytesOf(std::string(300, '\xFF'))), std::wstring(400, L'/'));
}

TEST(Crypto, refusesToHashNothing)
{
    try {
        hash({});
        FAIL();
    } catch (const BaseException& e) {
        EXPECT_EQ(e.reason(), L"Bad argument: source is empty");
    }
}

} // namespace
} // namespace vx::crypto
