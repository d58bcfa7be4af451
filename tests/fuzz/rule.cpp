// A rule never throws. Written anew from its parameters it reads as the same rule, without a warning. Its verdict is
// that of the first parameter that matches or, with one warning, has a bad severity.

#include "common/operationinfo/parametricrule.h"
#include "common/patches/patchinfo.h"
#include "input.h"
#include "support/logcapture.h"

using namespace vx::tarn::common;

namespace {

using Parameters = std::vector<RuleParameter>;

std::wstring written(const Parameters& parameters)
{
    std::wstring rule;
    for (const auto& [type, value] : parameters)
        rule += vx::str::fromUtf8(vx::toText(type)) + L'=' + value + L';';
    return rule;
}

/// What a rule says of a patch, and the number of its warnings.
std::pair<bool, std::size_t> judge(const Parameters& parameters, const PatchInfo& patch)
{
    const support::LogCapture log(3);
    const bool verdict = matchesParametricRule(parameters, patch);
    return {verdict, log.lines().size()};
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const auto text = fuzz::text(data, size);
    if (!text)
        return 0;
    const auto parameters = parseParametricRule(*text);
    const std::wstring rule = written(parameters);
    const support::LogCapture log(3);
    fuzz::require(written(parseParametricRule(rule)) == rule && log.lines().empty(), "round trip");
    for (const auto& [type, value] : parameters) {
        PatchInfo patch;
        patch.productName = patch.bulletinId = patch.servicePack = patch.updateName = value;
        patch.severity = 1;
        std::pair<bool, std::size_t> expected;
        for (std::size_t i = 0; i < parameters.size() && expected == std::pair(false, std::size_t(0)); ++i)
            expected = judge({parameters[i]}, patch);
        fuzz::require(expected.second <= !expected.first, "a warning for a bad severity alone");
        fuzz::require(judge(parameters, patch) == expected, "verdict");
    }
    return 0;
}
