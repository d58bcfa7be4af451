// Any text parses without an exception; severity and ids forms agree with a second, plainer reading.

#include "common/operationinfo.h"
#include "common/patchinfo.h"
#include "input.h"

#include <set>

using namespace vx::tarn::common;

namespace {

std::wstring withoutFlag(std::wstring text)
{
    const auto at = text.find(L";ALLOW_UNSIGNED");
    return at == std::wstring::npos ? text : text.substr(0, at) + text.substr(at + 15);
}

/// Which severities 0..3 the text covers when it has the severity form; nothing otherwise.
const bool* severityTable(const std::wstring& body)
{
    static constexpr bool critical[] = {false, true, false, false};
    static constexpr bool important[] = {false, true, true, false};
    static constexpr bool all[] = {true, true, true, true};
    return body.rfind(L"CRITICAL", 0) == 0    ? critical
           : body.rfind(L"IMPORTANT", 0) == 0 ? important
           : body.rfind(L"ALL", 0) == 0       ? all
                                              : nullptr;
}

std::set<std::wstring> idsOf(const std::wstring& body)
{
    std::set<std::wstring> ids;
    std::wstring id;
    for (std::size_t i = 3; i <= body.size(); ++i) {
        if (i < body.size() && body[i] != L'&') {
            if (body[i] != L';')
                id += body[i];
            continue;
        }
        while (!id.empty() && std::wstring_view(L" \t\r\n").find(id.front()) != std::wstring_view::npos)
            id.erase(0, 1);
        while (!id.empty() && std::wstring_view(L" \t\r\n").find(id.back()) != std::wstring_view::npos)
            id.pop_back();
        if (!id.empty())
            ids.insert(id);
        id.clear();
    }
    return ids;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const auto text = fuzz::text(data, size);
    if (!text)
        return 0;
    const OperationInfo operation(*text);
    const std::wstring body = withoutFlag(*text);
    fuzz::require(operation.allowUnsigned() == (body != *text), "the flag is seen where it stands");
    const bool* table = severityTable(body);
    fuzz::require((operation.scope() == OperationScope::BySeverity) == (table != nullptr), "severity scope");
    PatchInfo patch;
    patch.updateName = L"name";
    for (patch.severity = 0; patch.severity < 4; ++patch.severity) {
        const bool applicable = operation.isApplicable(patch);
        fuzz::require(!table || applicable == table[patch.severity], "severity table");
    }
    if (body.rfind(L"ID=", 0) == 0) {
        const auto expected = idsOf(body);
        fuzz::require(expected == std::set(operation.ids().begin(), operation.ids().end()), "ids");
    }
    return 0;
}
