#pragma once

#include "common/patches/patchrecords.h"

#include <cstdint>
#include <string>
#include <vector>

namespace vx::tarn::common {

/// What identifies a patch and what filters match: a filter that looks at more does not compile. A plain value.
struct ListedPatch {
    ListedPatch() = default;
    /// Severity and category are cut to 16 bits.
    explicit ListedPatch(ListedUpdate update);

    std::wstring bulletinId;
    std::wstring productName;
    std::wstring servicePack;
    std::wstring updateName;
    std::uint16_t severity = 0; ///< 1 critical, 2 important
    PatchSpecifier specifier{L"00000000-0000-0000-0000-000000000000", 0};
    std::uint16_t category = 0;
};

/// One patch in memory. Without an update_id: that is derived when it is needed, and the one the agent wrote is
/// dropped.
struct PatchInfo : ListedPatch {
    PatchInfo() = default;
    /// As ListedPatch.
    explicit PatchInfo(MissingUpdate update);

    std::wstring endOfLife;
    std::wstring vendor;
    std::wstring userFriendlyUpdateName;
    std::vector<std::wstring> cveIds;
    std::wstring descriptionUrl;
};

/// The way back, with the given identifier as update_id.
MissingUpdate toMissingUpdate(PatchInfo patch, std::wstring updateId);
/// The way back, with the derived update_id. Throws what deriveUpdateId throws.
MissingUpdate toMissingUpdate(PatchInfo patch);

} // namespace vx::tarn::common
