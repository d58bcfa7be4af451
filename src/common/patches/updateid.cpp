#include "common/patches/updateid.h"

#include "common/patches/patchinfo.h"
#include "vxtl/crypto.h"

#include <algorithm>
#include <bit>
#include <cstdint>
#include <span>

namespace vx::tarn::common {

namespace {

/// Appends the text's UTF-16 code units, also where a wide character is wider.
void appendUnits(std::u16string& units, const std::wstring& text)
{
    if constexpr (sizeof(wchar_t) == sizeof(char16_t)) {
        const std::size_t before = units.size();
        units.resize(before + text.size());
        std::copy(text.begin(), text.end(), units.begin() + static_cast<std::ptrdiff_t>(before));
        return;
    }
    for (const wchar_t c : text) {
        const auto code = static_cast<std::uint32_t>(c);
        if (code >= 0x10000)
            units += {static_cast<char16_t>(0xD7C0 + (code >> 10)), static_cast<char16_t>(0xDC00 + (code & 0x3FF))};
        else
            units += static_cast<char16_t>(code);
    }
}

} // namespace

std::wstring deriveUpdateId(const std::wstring& bulletinId, const std::wstring& productName,
    const std::wstring& servicePack, const std::wstring& updateName)
{
    std::u16string units;
    units.reserve(bulletinId.size() + productName.size() + servicePack.size() + updateName.size());
    for (const std::wstring* text : {&bulletinId, &productName, &servicePack, &updateName})
        appendUnits(units, *text);
    static_assert(std::endian::native == std::endian::little, "the hash is over the low byte first");
    const std::span bytes(reinterpret_cast<const std::uint8_t*>(units.data()), 2 * units.size());
    std::wstring id = crypto::toBase64String(crypto::hash(bytes));
    for (wchar_t& c : id)
        if (c >= L'a' && c <= L'z')
            c = static_cast<wchar_t>(c - L'a' + L'A');
    return id;
}

std::wstring deriveUpdateId(const ListedPatch& patch)
{
    return deriveUpdateId(patch.bulletinId, patch.productName, patch.servicePack, patch.updateName);
}

} // namespace vx::tarn::common
