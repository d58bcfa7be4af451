#include "common/patches/updateid.h"
#include "common/patches/patchinfo.h"
#include "support/thrown.h"
#include "vxtl/exception.h"
#include "vxtl/str.h"

#include <gmock/gmock.h>

namespace vx::tarn::common {
namespace {

// The expected texts come from another implementation of MD5 and Base64.
TEST(UpdateId, isTheUpperCasedBase64OfTheMd5OfTheUtf16Units)
{
    EXPECT_EQ(deriveUpdateId(L"MS17-010", L"Windows 7", L"SP1", L"KB4012212"), L"BK8QLILTU79QVEY/HMNKYG==");
    EXPECT_EQ(deriveUpdateId(L"", L"", L"", L"a"), L"QUTHLFRT54O2I9PZZNBPEQ==");
    const std::wstring beyondTheBasicPlane = str::fromUtf8("\xc3\xbc\xf0\x9f\x98\x80x");
    EXPECT_EQ(deriveUpdateId(beyondTheBasicPlane, L"", L"", L""), L"LULGLE5A4OUECG+CQNOY1W==");
}

TEST(UpdateId, dependsOnTheJoinedTextOnly)
{
    EXPECT_EQ(deriveUpdateId(L"ab", L"", L"c", L"d"), deriveUpdateId(L"a", L"bc", L"", L"d"));
    EXPECT_NE(deriveUpdateId(L"ab", L"", L"c", L"d"), deriveUpdateId(L"ab", L"", L"d", L"c"));
}

TEST(UpdateId, cantBeDerivedFromNothing)
{
    const auto derive = [] { toMissingUpdate(PatchInfo()); };
    EXPECT_EQ(support::thrown<BaseException>(derive).reason(), L"Bad argument: source is empty");
}

} // namespace
} // namespace vx::tarn::common
