#include "common/updateid.h"

#include "common/patchinfo.h"
#include "vxtl/crypto.h"

#include <cstdint>
#include <vector>

namespace vx::tarn::common {

namespace {

void appendUnit(std::vector<std::uint8_t>& bytes, std::uint32_t unit)
{
    bytes.push_back(static_cast<std::uint8_t>(unit));
    bytes.push_back(static_cast<std::uint8_t>(unit >> 8));
}

/// Appends the text's UTF-16 code units, low byte first, also where a wide character is wider.
void appendUnits(std::vector<std::uint8_t>& bytes, const std::wstring& text)
{
    for (const wchar_t c : text) {
        const auto code = static_cast<std::uint32_t>(c);
        if (code < 0x10000) {
            appendUnit(bytes, code);
        } else {
            appendUnit(bytes, 0xD7C0 + (code >> 10));
            appendUnit(bytes, 0xDC00 + (code & 0x3FF));
        }
    }
}

} // namespace

std::wstring deriveUpdateId(const std::wstring& bulletinId, const std::wstring& productName,
    const std::wstring& servicePack, const std::wstring& updateName)
{
    std::vector<std::uint8_t> bytes;
    bytes.reserve(2 * (bulletinId.size() + productName.size() + servicePack.size() + updateName.size()));
    for (const std::wstring* text : {&bulletinId, &productName, &servicePack, &updateName})
        appendUnits(bytes, *text);
    std::wstring id = crypto::toBase64String(crypto::hash(bytes));
    for (wchar_t& c : id)
        if (c >= L'a' && c <= L'z')
            c = static_cast<wchar_t>(c - L'a' + L'A');
    return id;
}

std::wstring deriveUpdateId(const PatchInfo& patch)
{
    return deriveUpdateId(patch.bulletinId, patch.productName, patch.servicePack, patch.updateName);
}

} // namespace vx::tarn::common
