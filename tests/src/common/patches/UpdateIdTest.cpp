#include "common/patches/updateid.h"
#include "common/patches/patchinfo.h"
#include "support/thrown.h"
#include "vxtl/exception.h"
#include "vxtl/str.h"

using namespace vx::tarn::common;

// The expected texts come from another implementation of MD5 and Base64.
TEST(UpdateId, isTheUpperCasedBase64OfTheMd5OfTheUtf16UnitsOfTheJoinedText)
{
    EXPECT_EQ(deriveUpdateId(L"MS17-010", L"Windows 7", L"SP1", L"KB4012212"), L"BK8QLILTU79QVEY/HMNKYG==");
    EXPECT_EQ(deriveUpdateId(L"", L"MS17-010Windows 7SP1", L"KB", L"4012212"), L"BK8QLILTU79QVEY/HMNKYG==");
    const std::wstring beyondTheBasicPlane = vx::str::fromUtf8("\xc3\xbc\xf0\x9f\x98\x80x");
    EXPECT_EQ(deriveUpdateId(beyondTheBasicPlane, L"", L"", L""), L"LULGLE5A4OUECG+CQNOY1W==");
    const auto derive = [] { toMissingUpdate(PatchInfo()); };
    EXPECT_EQ(support::thrown<vx::BaseException>(derive).reason(), L"Bad argument: source is empty");
}
