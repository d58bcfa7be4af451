#include "common/operationinfo/parametricrule.h"

#include "common/patches/patchinfo.h"
#include "common/utils/number.h"
#include "logging/logstream.h"
#include "vxtl/exception.h"
#include "vxtl/str.h"

#include <algorithm>
#include <stdexcept>

namespace vx::tarn::common {

namespace {

using logging::Level;
using logging::LogStream;

std::vector<std::wstring> splitNonEmpty(std::wstring_view text, wchar_t separator)
{
    std::vector<std::wstring> pieces = str::split(text, separator);
    std::erase_if(pieces, [](const std::wstring& piece) { return piece.empty(); });
    return pieces;
}

bool matches(const RuleParameter& parameter, const ListedPatch& patch)
{
    switch (parameter.type) {
    case RuleParameterType::Product: return parameter.value == patch.productName;
    case RuleParameterType::Bulletin: return parameter.value == patch.bulletinId;
    case RuleParameterType::ServicePack: return parameter.value == patch.servicePack;
    case RuleParameterType::Patch: return parameter.value == patch.updateName;
    // Not converted at the parsing: a rule that has matched before it comes to a bad number is no bad rule.
    case RuleParameterType::Severity: return utils::toInt32(parameter.value) == patch.severity;
    }
    return false;
}

} // namespace

std::vector<RuleParameter> parseParametricRule(std::wstring_view rule)
{
    std::vector<RuleParameter> parameters;
    for (const std::wstring& token : splitNonEmpty(rule, L';')) {
        if (token == L"ALLOW_UNSIGNED")
            continue;
        std::vector<std::wstring> pieces = splitNonEmpty(token, L'=');
        if (pieces.size() != 2) {
            LogStream(Level::Warning) << "Failed to parse a parametric rule: " << rule;
            continue;
        }
        const auto type = findText<RuleParameterType>(pieces[0]);
        if (!type) {
            LogStream(Level::Warning) << "Unknown rule parameter type: " << pieces[0] << ". Rule: " << rule;
            continue;
        }
        parameters.push_back({*type, std::move(pieces[1])});
    }
    return parameters;
}

bool matchesParametricRule(const std::vector<RuleParameter>& parameters, const ListedPatch& patch)
{
    try {
        return std::any_of(parameters.begin(), parameters.end(),
            [&](const RuleParameter& parameter) { return matches(parameter, patch); });
    } catch (const std::invalid_argument& e) {
        const std::string_view text = e.what();
        LogStream(Level::Warning) << "Failed to convert severity to number: "
                                  << (text.empty() ? "Unknown exception" : text);
    } catch (const std::out_of_range& e) {
        LogStream(Level::Warning) << "Failed to convert severity because of out of range exception: " << What(e);
    }
    return false;
}

} // namespace vx::tarn::common
