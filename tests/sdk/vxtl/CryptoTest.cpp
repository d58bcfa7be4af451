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
    const std::pair<std::string, std::wstring> rows[] = {{"a", L"DMF1ucDxtqgxw5niaXcmYQ=="},
        {"message digest", L"+WtpfXy3k41SWi8xqvFh0A=="}, {std::string(64, 'x'), L"wbtPgdiSstV5R2gq6yUkVg=="}};
    for (const auto& [source, base64OfHash] : rows)
        EXPECT_EQ(toBase64String(hash(bytesOf(source))), base64OfHash) << source;
    const auto failure = support::thrown<vx::BaseException>([] { hash({}); });
    EXPECT_THAT(failure.what(), testing::HasSubstr("source is empty, Function: vx::crypto::hash, File: "));
    EXPECT_EQ(toBase64String({}), L"");
    EXPECT_EQ(toBase64String(bytesOf(std::string(300, '\xFF'))), std::wstring(400, L'/')) << "no line breaks";
}
