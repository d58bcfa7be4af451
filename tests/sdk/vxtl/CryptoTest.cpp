#include "vxtl/crypto.h"
#include "support/thrown.h"
#include "vxtl/exception.h"

using namespace vx::crypto;

namespace {

std::span<const std::uint8_t> bytesOf(const std::string& text)
{
    return {reinterpret_cast<const std::uint8_t*>(text.data()), text.size()};
}

} // namespace

TEST(Crypto, hashesAndEncodesAsThePublishedVectors)
{
    struct {
        std::string source;
        std::wstring base64OfHash;
    } const rows[] = {
        {"a", L"DMF1ucDxtqgxw5niaXcmYQ=="},
        {"message digest", L"+WtpfXy3k41SWi8xqvFh0A=="},
        {std::string(64, 'x'), L"wbtPgdiSstV5R2gq6yUkVg=="},
    };
    for (const auto& row : rows)
        EXPECT_EQ(toBase64String(hash(bytesOf(row.source))), row.base64OfHash) << row.source;
    const auto failure = support::thrown<vx::BaseException>([] { hash({}); });
    EXPECT_EQ(failure.reason(), L"Bad argument: source is empty");
}

TEST(Crypto, encodesWithoutLineBreaks)
{
    EXPECT_EQ(toBase64String({}), L"");
    EXPECT_EQ(toBase64String(bytesOf("f")), L"Zg==");
    EXPECT_EQ(toBase64String(bytesOf("fo")), L"Zm8=");
    EXPECT_EQ(toBase64String(bytesOf(std::string(300, '\xFF'))), std::wstring(400, L'/'));
}
