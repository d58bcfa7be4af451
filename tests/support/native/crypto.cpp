// Native twins of hash and Base64.

#include "vxtl/crypto.h"

#include "vxtl/exception.h"

#include <bit>
#include <cmath>

namespace vx::crypto {

namespace {

using Words = std::uint32_t[4];

std::uint32_t littleEndian(const std::uint8_t* p)
{
    return p[0] | p[1] << 8 | p[2] << 16 | static_cast<std::uint32_t>(p[3]) << 24;
}

void addBlock(Words& state, const std::uint8_t* block)
{
    static constexpr int shifts[4][4] = {{7, 12, 17, 22}, {5, 9, 14, 20}, {4, 11, 16, 23}, {6, 10, 15, 21}};
    auto [a, b, c, d] = state;
    for (unsigned i = 0; i < 64; ++i) {
        const unsigned round = i / 16;
        const std::uint32_t f = round == 0   ? (b & c) | (~b & d)
                                : round == 1 ? (d & b) | (~d & c)
                                : round == 2 ? b ^ c ^ d
                                             : c ^ (b | ~d);
        const unsigned word = (round == 0 ? i : round == 1 ? 5 * i + 1 : round == 2 ? 3 * i + 5 : 7 * i) % 16;
        const auto constant = static_cast<std::uint32_t>(std::floor(std::fabs(std::sin(i + 1.0)) * 4294967296.0));
        const std::uint32_t sum = a + f + constant + littleEndian(block + 4 * word);
        a = d;
        d = c;
        c = b;
        b += std::rotl(sum, shifts[round][i % 4]);
    }
    state[0] += a;
    state[1] += b;
    state[2] += c;
    state[3] += d;
}

} // namespace

std::vector<std::uint8_t> hash(std::span<const std::uint8_t> source)
{
    if (source.empty())
        VX_THROW(BaseException, L"Bad argument: source is empty");
    std::vector<std::uint8_t> data(source.begin(), source.end());
    const std::uint64_t bits = 8 * static_cast<std::uint64_t>(data.size());
    data.push_back(0x80);
    data.resize((data.size() + 8 + 63) / 64 * 64);
    for (unsigned i = 0; i < 8; ++i)
        data[data.size() - 8 + i] = static_cast<std::uint8_t>(bits >> (8 * i));
    Words state = {0x67452301, 0xEFCDAB89, 0x98BADCFE, 0x10325476};
    for (std::size_t i = 0; i < data.size(); i += 64)
        addBlock(state, &data[i]);
    std::vector<std::uint8_t> value;
    for (const std::uint32_t word : state)
        for (int shift = 0; shift < 32; shift += 8)
            value.push_back(static_cast<std::uint8_t>(word >> shift));
    return value;
}

std::wstring toBase64String(std::span<const std::uint8_t> bytes)
{
    static constexpr wchar_t digits[] = L"ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    std::wstring text;
    for (std::size_t i = 0; i < bytes.size(); i += 3) {
        std::uint32_t group = 0;
        for (std::size_t k = i; k < i + 3; ++k)
            group = group << 8 | (k < bytes.size() ? bytes[k] : 0u);
        for (std::size_t k = 0; k < 4; ++k)
            text += i + k <= bytes.size() ? digits[group >> (18 - 6 * k) & 63] : L'=';
    }
    return text;
}

} // namespace vx::crypto
