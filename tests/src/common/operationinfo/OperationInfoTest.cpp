#include "common/operationinfo.h"

#include "common/patchinfo.h"
#include "common/updateid.h"
#include "support/logcapture.h"

#include <gmock/gmock.h>

namespace vx::tarn::common {
namespace {

using testing::IsEmpty;
using testing::UnorderedElementsAre;

PatchInfo patch(std::uint16_t severity = 0)
{
    PatchInfo info;
    info.bulletinId = L"b";
    info.productName = L"a";
    info.servicePack = L"SP1";
    info.updateName = L"n";
    info.severity = severity;
    info.specifier.id = L"00112233-4455-6677-8899-AABBCCDDEEFF";
    return info;
}

TEST(OperationInfo, decidesScopeFlagAndSeverityByTheBeginning)
{
    using S = OperationScope;
    using F = SeverityFilter;
    const struct {
        const wchar_t* text;
        S scope;
        bool allowUnsigned;
        F severity;
    } rows[] = {
        {L"CRITICAL;ALLOW_UNSIGNED", S::BySeverity, true, F::Critical},
        {L"IMPORTANT_AND_MORE", S::BySeverity, false, F::Important},
        {L"ALLOW_UNSIGNED", S::BySeverity, false, F::All},
        {L";ALLOW_UNSIGNED", S::Unknown, true, F::None},
        {L";ALLOW_UNSIGNED;ALLOW_UNSIGNED", S::Unknown, true, F::None},
        {L"A;ALLOW_UNSIGNEDLL", S::BySeverity, true, F::All},
        {L"critical", S::Unknown, false, F::None},
        {L" ALL", S::Unknown, false, F::None},
        {L"", S::Unknown, false, F::None},
        {L"ID=x", S::ByIds, false, F::None},
        {L"GUID=x", S::ByGuids, false, F::None},
        {L"SPX=1", S::ByRule, false, F::None},
        {L"COLOR=red;PRODUCT=a", S::Unknown, false, F::None},
    };
    for (const auto& row : rows) {
        const OperationInfo info(row.text);
        EXPECT_EQ(info.scope(), row.scope) << testing::PrintToString(std::wstring(row.text));
        EXPECT_EQ(info.allowUnsigned(), row.allowUnsigned) << testing::PrintToString(std::wstring(row.text));
        EXPECT_EQ(info.severity(), row.severity) << testing::PrintToString(std::wstring(row.text));
    }
}

TEST(OperationInfo, comparesTheLowByteOfTheSeverity)
{
    const struct {
        const wchar_t* text;
        bool expected[4]; // severities 0, 1, 2 and 257
    } rows[] = {
        {L"CRITICAL", {false, true, false, true}},
        {L"IMPORTANT", {false, true, true, true}},
        {L"ALL", {true, true, true, true}},
        {L"critical", {false, false, false, false}},
    };
    const std::uint16_t severities[] = {0, 1, 2, 257};
    for (const auto& row : rows)
        for (int i = 0; i < 4; ++i)
            EXPECT_EQ(OperationInfo(row.text).isApplicable(patch(severities[i])), row.expected[i]) << i;
}

TEST(OperationInfo, readsIdListsWithSemicolonsDeleted)
{
    EXPECT_THAT(OperationInfo(L"ID=a;b&c").ids(), UnorderedElementsAre(L"ab", L"c"));
    EXPECT_THAT(OperationInfo(L"ID= a & &b ").ids(), UnorderedElementsAre(L"a", L"b"));
    const OperationInfo own(L"ID=zzz&" + deriveUpdateId(patch()));
    EXPECT_TRUE(own.isApplicable(patch()));
    PatchInfo other = patch();
    other.updateName = L"m";
    EXPECT_FALSE(own.isApplicable(other));
}

TEST(OperationInfo, dropsBadAndZeroGuids)
{
    support::LogCapture log;
    EXPECT_THAT(OperationInfo(L"GUID=00000000-0000-0000-0000-000000000000").guids(), IsEmpty());
    EXPECT_EQ(log.count("Failed to parse GUID"), 0u);
    EXPECT_THAT(OperationInfo(L"GUID=zz").guids(), IsEmpty());
    EXPECT_TRUE(log.has(3, "Failed to parse GUID: zz. Exception caught: Bad GUID format")) << log.text();
}

TEST(OperationInfo, comparesGuidsInUpperCase)
{
    const OperationInfo info(L"GUID=00112233-4455-6677-8899-aabbccddeeff&zz");
    EXPECT_TRUE(info.isApplicable(patch()));
    PatchInfo lower = patch();
    lower.specifier.id = L"00112233-4455-6677-8899-aabbccddeeff";
    EXPECT_FALSE(info.isApplicable(lower));
}

TEST(ParametricRule, matchesAnyParameterInOrder)
{
    const struct {
        const wchar_t* rule;
        bool matches; // a patch of product a, bulletin b, service pack SP1, name n, severity 2
        std::size_t warnings;
    } rows[] = {
        {L"PRODUCT=a;BULLETIN=x", true, 0},
        {L"PRODUCT=x;BULLETIN=b", true, 0},
        {L"PRODUCT = x ; SP = SP1 ", true, 0},
        {L"PATCH=n", true, 0},
        {L"PATCH=00112233-4455-6677-8899-AABBCCDDEEFF", false, 0},
        {L"SEVERITY=2abc", true, 0},
        {L"SEVERITY=+2", true, 0},
        {L"SEVERITY=3", false, 0},
        {L"SEVERITY=x;PRODUCT=a", false, 1},
        {L"SEVERITY=99999999999;PRODUCT=a", false, 1},
        {L"PRODUCT=a;SEVERITY=x", true, 0},
        {L"PRODUCT=a=b", false, 1},
        {L"PRODUCT=", false, 1},
        {L"SPX=1;PRODUCT=a;ALLOW_UNSIGNED", true, 1},
    };
    for (const auto& row : rows) {
        support::LogCapture log(3);
        EXPECT_EQ(OperationInfo(row.rule).isApplicable(patch(2)), row.matches) << log.text();
        EXPECT_EQ(log.lines().size(), row.warnings) << log.text();
    }
}

TEST(ParametricRule, saysWhatIsWrong)
{
    support::LogCapture log;
    const PatchInfo any = patch(2);
    OperationInfo(L"PRODUCT=x;SEVERITY=y").isApplicable(any);
    OperationInfo(L"PRODUCT=x;SEVERITY=99999999999").isApplicable(any);
    OperationInfo(L"PRODUCT=a=b;COLOR=red");
    EXPECT_TRUE(log.has(3, "Failed to convert severity to number: invalid stoi argument")) << log.text();
    EXPECT_TRUE(log.has(3, "Failed to convert severity because of out of range exception: stoi argument out of range"))
        << log.text();
    EXPECT_TRUE(log.has(3, "Failed to parse a parametric rule: PRODUCT=a=b;COLOR=red")) << log.text();
    EXPECT_TRUE(log.has(3, "Unknown rule parameter type: COLOR. Rule: PRODUCT=a=b;COLOR=red")) << log.text();
}

} // namespace
} // namespace vx::tarn::common
