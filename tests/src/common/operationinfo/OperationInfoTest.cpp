#include "common/operationinfo/operationinfo.h"
#include "common/patches/patchinfo.h"
#include "common/patches/updateid.h"
#include "support/logcapture.h"

using namespace vx::tarn::common;
using testing::UnorderedElementsAre;

namespace {

constexpr auto guid = L"00112233-4455-6677-8899-AABBCCDDEEFF";

PatchInfo patch(std::uint16_t severity = 0)
{
    PatchInfo info;
    info.bulletinId = L"b";
    info.productName = L"a";
    info.servicePack = L"SP1";
    info.updateName = L"n";
    info.severity = severity;
    info.specifier.id = guid;
    return info;
}

} // namespace

TEST(OperationInfo, decidesScopeFlagAndSeverityByTheBeginning)
{
    using S = OperationScope;
    const std::vector<std::uint16_t> none, all{0, 1, 2, 257};
    const struct {
        const wchar_t* text;
        S scope;
        bool allowUnsigned;
        std::vector<std::uint16_t> covered; ///< of all these severities; their low byte counts
    } rows[] = {
        {L"CRITICAL;ALLOW_UNSIGNED", S::BySeverity, true, {1, 257}},
        {L"IMPORTANT_AND_MORE", S::BySeverity, false, {1, 2, 257}},
        {L"A;ALLOW_UNSIGNEDLL", S::BySeverity, true, all},
        {L"ALLOW_UNSIGNED", S::BySeverity, false, all},
        {L";ALLOW_UNSIGNED;ALLOW_UNSIGNED", S::Unknown, true, none},
        {L"critical", S::Unknown, false, none},
        {L"", S::Unknown, false, none},
        {L"ID=x", S::ByIds, false, none},
        {L"GUID=x", S::ByGuids, false, none},
        {L"SPX=1", S::ByRule, false, none},
        {L"COLOR=red;PRODUCT=a", S::Unknown, false, none},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(testing::PrintToString(std::wstring(row.text)));
        const OperationInfo info(row.text);
        EXPECT_EQ(info.scope(), row.scope);
        EXPECT_EQ(info.allowUnsigned(), row.allowUnsigned);
        std::vector<std::uint16_t> covered = all;
        std::erase_if(covered, [&](std::uint16_t severity) { return !info.isApplicable(patch(severity)); });
        EXPECT_EQ(covered, row.covered);
    }
}

TEST(OperationInfo, readsListsOfIdsAndGuids)
{
    EXPECT_THAT(OperationInfo(L"ID= a;b & &c ").ids(), UnorderedElementsAre(L"ab", L"c")) << "semicolons are deleted";
    PatchInfo other = patch();
    other.updateName = L"m";
    other.specifier.id = L"00112233-4455-6677-8899-aabbccddeeff";
    const OperationInfo own(L"ID=zzz&" + deriveUpdateId(patch()));
    EXPECT_TRUE(own.isApplicable(patch()));
    EXPECT_FALSE(own.isApplicable(other));

    support::LogCapture log(3);
    const OperationInfo guids(L"GUID=00112233-4455-6677-8899-aabbccddeeff&00000000-0000-0000-0000-000000000000&zz");
    EXPECT_THAT(guids.guids(), UnorderedElementsAre(guid));
    EXPECT_EQ(log.text(), "Failed to parse GUID: zz. Exception caught: Bad GUID format\n");
    EXPECT_TRUE(guids.isApplicable(patch()));
    EXPECT_FALSE(guids.isApplicable(other)) << "case counts";
}

TEST(ParametricRule, matchesAnyParameterInOrder)
{
    const struct {
        const wchar_t* rule;
        bool matches; // a patch of product a, bulletin b, service pack SP1, name n, severity 2
        const char* warning = "";
    } rows[] = {
        {L"BULLETIN=b;PRODUCT=x", true},
        {L"PRODUCT = x ; SP = SP1 ", true},
        {L"PATCH=n", true},
        {L"SEVERITY=+2abc", true},
        {L"SEVERITY=x;PRODUCT=a", false, "Failed to convert severity to number: invalid stoi argument\n"},
        {L"SEVERITY=2147483648;PRODUCT=a", false,
            "Failed to convert severity because of out of range exception: stoi argument out of range\n"},
        {L"PRODUCT=a;SEVERITY=x", true},
        {L"PRODUCT=a=b", false, "Failed to parse a parametric rule: PRODUCT=a=b\n"},
        {L"SPX=1;PRODUCT=a;ALLOW_UNSIGNED", true, "Unknown rule parameter type: SPX. Rule: SPX=1;PRODUCT=a\n"},
    };
    for (const auto& row : rows) {
        support::LogCapture log(3);
        EXPECT_EQ(OperationInfo(row.rule).isApplicable(patch(2)), row.matches);
        EXPECT_EQ(log.text(), row.warning);
    }
}
