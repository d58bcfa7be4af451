#pragma once

#include <array>
#include <cstdint>
#include <string>

namespace vx::tarn::common::utils {

/// A GUID, laid out as the system's.
struct Guid {
    std::uint32_t data1 = 0;
    std::uint16_t data2 = 0;
    std::uint16_t data3 = 0;
    std::array<std::uint8_t, 8> data4{};

    friend bool operator==(const Guid&, const Guid&) = default;
};

/// Reads the text form without braces, in either case; text behind it is passed over. Fields may be
/// shorter than their full width. Throws std::runtime_error "Bad GUID format".
Guid guidFromString(const std::wstring& text);

/// The text form without braces, in capitals and full width.
std::wstring guidToString(const Guid& guid);

} // namespace vx::tarn::common::utils
