#include "common/operationinfo/operationinfo.h"

#include "common/patches/patchinfo.h"
#include "common/patches/updateid.h"
#include "common/utils/guid.h"
#include "logging/logstream.h"
#include "vxtl/exception.h"
#include "vxtl/str.h"

#include <stdexcept>

namespace vx::tarn::common {

namespace {

using logging::Level;
using logging::LogStream;

constexpr std::wstring_view criticalWord = L"CRITICAL";
constexpr std::wstring_view importantWord = L"IMPORTANT";
constexpr std::wstring_view allWord = L"ALL";
constexpr std::wstring_view idWord = L"ID=";
constexpr std::wstring_view guidWord = L"GUID=";
constexpr std::wstring_view allowUnsignedFlag = L";ALLOW_UNSIGNED";

OperationScope scopeOf(std::wstring_view text)
{
    if (text.starts_with(criticalWord) || text.starts_with(importantWord) || text.starts_with(allWord))
        return OperationScope::BySeverity;
    if (text.starts_with(idWord))
        return OperationScope::ByIds;
    if (text.starts_with(guidWord))
        return OperationScope::ByGuids;
    for (const EnumText& parameter : ruleParameterTexts)
        if (text.starts_with(str::fromUtf8(parameter.text)))
            return OperationScope::ByRule;
    return OperationScope::Unknown;
}

/// Cuts the first occurrence out, wherever it stands; true when there was one.
bool takeFlag(std::wstring& text)
{
    const auto position = text.find(allowUnsignedFlag);
    if (position == std::wstring::npos)
        return false;
    text.erase(position, allowUnsignedFlag.size());
    return true;
}

// Semicolons are deleted, not separators: "a;b&c" names "ab" and "c".
std::vector<std::wstring> splitList(std::wstring_view list)
{
    std::wstring text(list);
    std::erase(text, L';');
    std::vector<std::wstring> tokens = str::split(text, L'&');
    std::erase_if(tokens, [](const std::wstring& token) { return token.empty(); });
    return tokens;
}

} // namespace

void OperationInfo::fromString(const std::wstring& deploymentTask)
{
    VX_LOG_SCOPE();
    VX_LOG_VALUES(deploymentTask);
    *this = OperationInfo();
    std::wstring text = deploymentTask;
    m_allowUnsigned = takeFlag(text);
    m_scope = scopeOf(text);
    switch (m_scope) {
    case OperationScope::BySeverity: parseSeverity(text); break;
    case OperationScope::ByIds: parseIds(text); break;
    case OperationScope::ByGuids: parseGuids(text); break;
    case OperationScope::ByRule: m_ruleParameters = parseParametricRule(text); break;
    case OperationScope::Unknown: break;
    }
}

void OperationInfo::parseSeverity(std::wstring_view text)
{
    if (text.starts_with(criticalWord))
        m_severity = SeverityFilter::Critical;
    else if (text.starts_with(importantWord))
        m_severity = SeverityFilter::Important;
    else if (text.starts_with(allWord))
        m_severity = SeverityFilter::All;
}

void OperationInfo::parseIds(std::wstring_view text)
{
    if (!text.starts_with(idWord)) {
        LogStream(Level::Error) << "Failed to get ID's from a rule: " << text;
        return;
    }
    for (std::wstring& id : splitList(text.substr(idWord.size())))
        m_ids.insert(std::move(id));
}

void OperationInfo::parseGuids(std::wstring_view text)
{
    if (!text.starts_with(guidWord)) {
        LogStream(Level::Error) << "Failed to get GUIDs from rule: " << text;
        return;
    }
    for (const std::wstring& token : splitList(text.substr(guidWord.size()))) {
        utils::Guid guid{};
        try {
            guid = utils::guidFromString(token);
        } catch (const std::runtime_error& e) {
            LogStream(Level::Warning) << "Failed to parse GUID: " << token << ". Exception caught: " << What(e);
        }
        // The zero GUID stands for no GUID, also where it was written so.
        if (guid != utils::Guid{})
            m_guids.insert(utils::guidToString(guid));
    }
}

bool OperationInfo::isApplicable(const ListedPatch& patch) const
{
    return isApplicable(patch, m_scope == OperationScope::ByIds ? deriveUpdateId(patch) : std::wstring());
}

bool OperationInfo::isApplicable(const ListedPatch& patch, const std::wstring& updateId) const
{
    switch (m_scope) {
    case OperationScope::BySeverity: return isSeverityApplicable(patch);
    case OperationScope::ByIds: return m_ids.contains(updateId);
    case OperationScope::ByGuids: return m_guids.contains(patch.specifier.id);
    case OperationScope::ByRule: return matchesParametricRule(m_ruleParameters, patch);
    case OperationScope::Unknown: return false;
    }
    return false;
}

bool OperationInfo::isSeverityApplicable(const ListedPatch& patch) const
{
    const auto severity = static_cast<std::uint8_t>(patch.severity);
    switch (m_severity) {
    case SeverityFilter::Critical: return severity == 1;
    case SeverityFilter::Important: return severity == 1 || severity == 2;
    case SeverityFilter::All: return true;
    case SeverityFilter::None: return false;
    }
    return false;
}

} // namespace vx::tarn::common
