#pragma once

#include <string>

namespace vx::tarn::common {

struct ListedPatch;

/// The identifier of a patch: the Base64 text of the MD5 hash over the four joined texts' UTF-16 code
/// units, in upper case and so no longer Base64. Throws BaseException when all four are empty, and what
/// the system's cryptography throws.
std::wstring deriveUpdateId(const std::wstring& bulletinId, const std::wstring& productName,
    const std::wstring& servicePack, const std::wstring& updateName);
std::wstring deriveUpdateId(const ListedPatch& patch);

} // namespace vx::tarn::common
