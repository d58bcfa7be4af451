#pragma once

#include "common/operationinfo/parametricrule.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

namespace vx::tarn::common {

struct ListedPatch;

/// How a request names what it means: the first word of its text.
enum class OperationScope : std::int32_t { Unknown = 0, BySeverity = 1, ByIds = 2, ByGuids = 3, ByRule = 4 };
/// Which patches a request by severity means; Important includes the critical ones.
enum class SeverityFilter : std::int32_t { None = 0, Critical = 1, Important = 2, All = 3 };

/// The parsed text of a remote installation request; answers whether a patch is in its scope. A plain
/// value; reading it is safe from several threads.
class OperationInfo {
public:
    OperationInfo() = default;
    explicit OperationInfo(const std::wstring& text) { fromString(text); }

    /// Fills this object. Bad input ends in logged, shortened lists, never in an exception.
    void fromString(const std::wstring& deploymentTask);

    /// Derives the patch's update_id when the scope needs it, and throws what that throws.
    bool isApplicable(const ListedPatch& patch) const;
    /// The same for a caller that has the patch's update_id at hand.
    bool isApplicable(const ListedPatch& patch, const std::wstring& updateId) const;

    OperationScope scope() const { return m_scope; }
    /// The agent's business; no effect on isApplicable.
    bool allowUnsigned() const { return m_allowUnsigned; }
    SeverityFilter severity() const { return m_severity; }
    const std::unordered_set<std::wstring>& ids() const { return m_ids; }
    /// In the form that a patch's specifier is compared with: upper case, no braces.
    const std::unordered_set<std::wstring>& guids() const { return m_guids; }
    const std::vector<RuleParameter>& ruleParameters() const { return m_ruleParameters; }

private:
    void parseSeverity(std::wstring_view text);
    void parseIds(std::wstring_view text);
    void parseGuids(std::wstring_view text);
    bool isSeverityApplicable(const ListedPatch& patch) const;

    OperationScope m_scope = OperationScope::Unknown;
    bool m_allowUnsigned = false;
    SeverityFilter m_severity = SeverityFilter::None;
    std::unordered_set<std::wstring> m_ids;
    std::unordered_set<std::wstring> m_guids;
    std::vector<RuleParameter> m_ruleParameters;
};

} // namespace vx::tarn::common
