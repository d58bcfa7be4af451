// Parsing and evaluating a rule never throws, and no parameter has an empty value or a separator in it.

#include "common/parametricrule.h"
#include "common/patchinfo.h"
#include "input.h"

using namespace vx::tarn::common;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const auto text = fuzz::text(data, size);
    if (!text)
        return 0;
    const auto parameters = parseParametricRule(*text);
    for (const RuleParameter& parameter : parameters)
        fuzz::require(!parameter.value.empty() && parameter.value.find_first_of(L";=") == std::wstring::npos, "value");
    PatchInfo patch;
    matchesParametricRule(parameters, patch);
    if (!parameters.empty() && parameters[0].type == RuleParameterType::Product) {
        patch.productName = parameters[0].value;
        fuzz::require(matchesParametricRule(parameters, patch), "the first parameter decides");
    }
    return 0;
}
