#pragma once

#include "vxtl/enumtext.h"

#include <string>
#include <string_view>
#include <vector>

namespace vx::tarn::common {

struct ListedPatch;

/// Which of a patch's texts, or its severity, a parameter of a rule is compared with.
enum class RuleParameterType : std::int32_t { Product = 1, Bulletin = 2, ServicePack = 3, Patch = 4, Severity = 5 };
inline constexpr auto ruleParameterTexts = enumTexts<RuleParameterType>({
    {RuleParameterType::Product, "PRODUCT"},
    {RuleParameterType::Bulletin, "BULLETIN"},
    {RuleParameterType::ServicePack, "SP"},
    {RuleParameterType::Patch, "PATCH"},
    {RuleParameterType::Severity, "SEVERITY"},
});
constexpr EnumTexts textsOf(RuleParameterType)
{
    return {"RuleParameterType", ruleParameterTexts};
}

/// One "name=value" of a rule.
struct RuleParameter {
    RuleParameterType type;
    std::wstring value; ///< as written in the rule
};

/// Parses a list of parameters joined with ";". Bad parameters are logged and left out; never throws but
/// for lack of memory.
std::vector<RuleParameter> parseParametricRule(std::wstring_view rule);

/// Whether any parameter matches; they are alternatives, tried in order. A severity that is no number is
/// logged at each evaluation and ends it with false.
bool matchesParametricRule(const std::vector<RuleParameter>& parameters, const ListedPatch& patch);

} // namespace vx::tarn::common
