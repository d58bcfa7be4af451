// A task's text never throws. What it means is read again as the same from what it gives: ids, GUIDs in their one form,
// and a rule, which then is without a warning.

#include "common/operationinfo/operationinfo.h"
#include "common/operationinfo/parametricrule.h"
#include "common/patches/patchinfo.h"
#include "common/utils/guid.h"
#include "input.h"
#include "support/logcapture.h"

using namespace vx::tarn::common;

namespace {

using enum OperationScope;

void checkIds(const OperationInfo& operation)
{
    std::wstring text = L"ID=";
    for (const std::wstring& id : operation.ids())
        text += id + L'&';
    fuzz::require(OperationInfo(text).ids() == operation.ids(), "round trip");
}

void checkGuids(const OperationInfo& operation)
{
    PatchInfo patch;
    fuzz::require(!operation.isApplicable(patch), "the zero GUID");
    for (const std::wstring& text : operation.guids()) {
        fuzz::require(utils::guidToString(utils::guidFromString(text)) == text, "a GUID's one form");
        patch.specifier.id = text;
        fuzz::require(operation.isApplicable(patch), "a listed GUID");
    }
}

std::wstring written(const std::vector<RuleParameter>& parameters)
{
    std::wstring rule;
    for (const auto& [type, value] : parameters)
        rule += vx::str::fromUtf8(vx::toText(type)) + L'=' + value + L';';
    return rule;
}

void checkRule(const OperationInfo& operation)
{
    const std::wstring rule = written(operation.ruleParameters());
    const support::LogCapture log(3);
    fuzz::require(written(parseParametricRule(rule)) == rule && log.lines().empty(), "round trip");
    for (const auto& [type, value] : operation.ruleParameters()) {
        PatchInfo patch;
        patch.productName = patch.bulletinId = patch.servicePack = patch.updateName = value;
        const bool applies = operation.isApplicable(patch) || type == RuleParameterType::Severity;
        fuzz::require(applies || !log.lines().empty(), "what it names, but behind a bad severity");
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const auto text = fuzz::text(data, size);
    if (!text)
        return 0;
    OperationInfo operation(L"ALL;ALLOW_UNSIGNED");
    operation.fromString(*text);
    const bool hasFlag = text->find(L";ALLOW_UNSIGNED") != std::wstring::npos;
    fuzz::require(operation.allowUnsigned() == hasFlag, "the flag is seen where it stands");
    const OperationScope scope = operation.scope();
    fuzz::require((scope == BySeverity) == (operation.severity() != SeverityFilter::None), "severity");
    fuzz::require(scope == ByIds || operation.ids().empty(), "ids");
    fuzz::require(scope == ByGuids || operation.guids().empty(), "GUIDs");
    fuzz::require(scope == ByRule || operation.ruleParameters().empty(), "rule");
    if (scope == ByIds)
        checkIds(operation);
    if (scope == ByGuids)
        checkGuids(operation);
    if (scope == ByRule)
        checkRule(operation);
    return 0;
}
