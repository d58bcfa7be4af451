#pragma once

#include "common/patches/patchrecords.h"

#include <cstdint>
#include <string>
#include <vector>

namespace vx::tarn::common {

/// One patch in memory, as filters and the publisher use it. A plain value without an update_id: that is
/// derived when it is needed, and the one the agent wrote is dropped.
struct PatchInfo {
    PatchInfo() = default;
    /// Severity and category are cut to 16 bits.
    explicit PatchInfo(MissingUpdate update);

    std::wstring bulletinId;
    std::wstring productName;
    std::wstring servicePack;
    std::wstring updateName;
    std::uint16_t severity = 0; ///< 1 critical, 2 important
    PatchSpecifier specifier{L"00000000-0000-0000-0000-000000000000", 0};
    std::wstring endOfLife;
    std::uint16_t category = 0;
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
