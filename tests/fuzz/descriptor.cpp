// Any text parses without an exception into what a second, plainer reading finds, and covers the patches that
// this reading names.

#include "common/operationinfo/operationinfo.h"
#include "common/patches/patchinfo.h"
#include "common/patches/updateid.h"
#include "input.h"
#include "support/logcapture.h"

#include <algorithm>
#include <set>

using namespace vx::tarn::common;

namespace {

using enum OperationScope;

OperationScope scopeOf(const std::wstring& body)
{
    static const std::pair<const wchar_t*, OperationScope> words[] = {{L"CRITICAL", BySeverity},
        {L"IMPORTANT", BySeverity}, {L"ALL", BySeverity}, {L"ID=", ByIds}, {L"GUID=", ByGuids}, {L"PRODUCT", ByRule},
        {L"BULLETIN", ByRule}, {L"SP", ByRule}, {L"PATCH", ByRule}, {L"SEVERITY", ByRule}};
    for (const auto& [word, scope] : words)
        if (body.starts_with(word))
            return scope;
    return Unknown;
}

void checkSeverities(const OperationInfo& operation, const std::wstring& body)
{
    // What the low byte of the severity has to be below.
    const unsigned end = body.starts_with(L"CRITICAL") ? 2 : 3;
    PatchInfo patch;
    for (const unsigned severity : {0u, 1u, 2u, 3u, 255u, 256u, 257u, 258u, 65535u}) {
        patch.severity = static_cast<std::uint16_t>(severity);
        const bool covered = body.starts_with(L"ALL") || (severity % 256 > 0 && severity % 256 < end);
        fuzz::require(operation.isApplicable(patch) == covered, "severity table");
    }
}

std::vector<std::wstring> listIn(std::wstring body, std::size_t wordLength)
{
    body.erase(0, wordLength);
    body.erase(std::remove(body.begin(), body.end(), L';'), body.end());
    return fuzz::pieces(body, L'&');
}

void checkIds(const OperationInfo& operation, const std::wstring& body)
{
    const auto list = listIn(body, 3);
    const std::set<std::wstring> ids(list.begin(), list.end());
    fuzz::require(ids == std::set(operation.ids().begin(), operation.ids().end()), "ids");
    PatchInfo patch;
    patch.updateName = L"name";
    fuzz::require(operation.isApplicable(patch) == (ids.count(deriveUpdateId(patch)) == 1), "the patch's own id");
    for (const std::wstring& id : ids)
        fuzz::require(operation.isApplicable(patch, id), "a listed id");
}

void checkGuids(const OperationInfo& operation, const std::wstring& body, std::size_t warnings)
{
    std::set<std::wstring> guids;
    std::size_t bad = 0;
    for (const std::wstring& piece : listIn(body, 5)) {
        if (const auto guid = fuzz::guid(piece))
            guids.insert(utils::guidToString(*guid));
        else
            ++bad;
    }
    guids.erase(L"00000000-0000-0000-0000-000000000000");
    fuzz::require(guids == std::set(operation.guids().begin(), operation.guids().end()), "guids");
    fuzz::require(bad == warnings, "one warning for each bad GUID");
    PatchInfo patch;
    fuzz::require(!operation.isApplicable(patch), "the zero GUID");
    for (const std::wstring& guid : guids) {
        patch.specifier.id = guid;
        fuzz::require(operation.isApplicable(patch), "a listed GUID");
        patch.specifier.id += L' ';
        fuzz::require(!operation.isApplicable(patch), "a GUID with a tail");
    }
}

void checkRule(const OperationInfo& operation, const std::wstring& body)
{
    const auto parameters = parseParametricRule(body);
    const bool same = std::equal(parameters.begin(), parameters.end(), operation.ruleParameters().begin(),
        operation.ruleParameters().end(),
        [](const RuleParameter& a, const RuleParameter& b) { return a.type == b.type && a.value == b.value; });
    fuzz::require(same, "rule");
    PatchInfo patch;
    patch.productName = L"a";
    fuzz::require(operation.isApplicable(patch) == matchesParametricRule(parameters, patch), "rule's verdict");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const auto text = fuzz::text(data, size);
    if (!text)
        return 0;
    const support::LogCapture log(3);
    OperationInfo operation(L"ALL;ALLOW_UNSIGNED");
    operation.fromString(*text);
    std::wstring body = *text;
    if (const auto flag = body.find(L";ALLOW_UNSIGNED"); flag != std::wstring::npos)
        body.erase(flag, 15);
    fuzz::require(operation.allowUnsigned() == (body != *text), "the flag is seen where it stands");
    fuzz::require(operation.scope() == scopeOf(body), "scope");
    fuzz::require(operation.scope() == BySeverity || operation.severity() == SeverityFilter::None, "severity");
    switch (operation.scope()) {
    case BySeverity: checkSeverities(operation, body); break;
    case ByIds: checkIds(operation, body); break;
    case ByGuids: checkGuids(operation, body, log.lines().size()); break;
    case ByRule: checkRule(operation, body); break;
    case Unknown: fuzz::require(!operation.isApplicable(PatchInfo()), "no scope, no patch"); break;
    }
    return 0;
}
