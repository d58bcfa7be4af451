// Any text parses without an exception; only the list of its scope holds anything, reads back as the same list, and
// covers the patches that it names.

#include "common/operationinfo/operationinfo.h"
#include "common/patches/patchinfo.h"
#include "common/patches/updateid.h"
#include "input.h"

using namespace vx::tarn::common;

namespace {

using enum OperationScope;

void checkSeverities(const OperationInfo& operation)
{
    PatchInfo patch;
    for (const std::uint16_t severity : {0, 1, 2, 3, 255}) {
        patch.severity = severity;
        const bool covered = operation.isApplicable(patch);
        fuzz::require(!covered || severity - 1u < 2 || operation.severity() == SeverityFilter::All, "other severities");
        patch.severity |= 0xFF00;
        fuzz::require(operation.isApplicable(patch) == covered, "the low byte counts");
    }
}

void checkIds(const OperationInfo& operation)
{
    PatchInfo patch;
    patch.updateName = L"name";
    fuzz::require(
        operation.isApplicable(patch) == operation.ids().contains(deriveUpdateId(patch)), "the patch's own id");
    std::wstring text = L"ID=";
    for (const std::wstring& id : operation.ids()) {
        fuzz::require(operation.isApplicable(patch, id), "a listed id");
        text += id + L'&';
    }
    fuzz::require(OperationInfo(text).ids() == operation.ids(), "round trip");
}

void checkGuids(const OperationInfo& operation)
{
    PatchInfo patch;
    fuzz::require(!operation.isApplicable(patch), "the zero GUID");
    for (const std::wstring& text : operation.guids()) {
        const auto guid = fuzz::guid(text);
        fuzz::require(guid && utils::guidToString(*guid) == text, "a GUID's one form");
        patch.specifier.id = text;
        fuzz::require(operation.isApplicable(patch), "a listed GUID");
        patch.specifier.id += L' ';
        fuzz::require(!operation.isApplicable(patch), "a GUID with a tail");
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
    switch (scope) {
    case BySeverity: checkSeverities(operation); break;
    case ByIds: checkIds(operation); break;
    case ByGuids: checkGuids(operation); break;
    case ByRule: break;
    case Unknown: fuzz::require(!operation.isApplicable(PatchInfo()), "no scope, no patch"); break;
    }
    return 0;
}
