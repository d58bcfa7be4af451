// Native twin of the hash and Base64, on the build machine's cryptography library.

#include "vxtl/crypto.h"

#include "vxtl/exception.h"

#include <openssl/evp.h>

namespace vx::crypto {

std::vector<std::uint8_t> hash(std::span<const std::uint8_t> source)
{
    if (source.empty())
        VX_THROW(BaseException, L"Bad argument: source is empty");
    std::vector<std::uint8_t> result(16);
    EVP_Digest(source.data(), source.size(), result.data(), nullptr, EVP_md5(), nullptr);
    return result;
}

std::wstring toBase64String(std::span<const std::uint8_t> bytes)
{
    std::string text(4 * ((bytes.size() + 2) / 3) + 1, '\0');
    const int length =
        EVP_EncodeBlock(reinterpret_cast<unsigned char*>(text.data()), bytes.data(), static_cast<int>(bytes.size()));
    return {text.begin(), text.begin() + length};
}

} // namespace vx::crypto
