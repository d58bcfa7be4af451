#include "winhashcontext.h"

#include "logging/nodestructor.h"
#include "vxtl/win32exception.h"

#include <windows.h>

#include <wincrypt.h>

namespace vx::crypto {

namespace {

/// In reports a bad argument stands under the name of the operation that callers know.
constexpr const wchar_t* hashName = L"vx::crypto::hash";

class Provider {
public:
    Provider()
    {
        // The second name is the first one's on the oldest systems.
        for (const wchar_t* name : {L"Microsoft Enhanced RSA and AES Cryptographic Provider",
                 L"Microsoft Enhanced RSA and AES Cryptographic Provider (Prototype)"})
            if (CryptAcquireContextW(&m_handle, nullptr, name, PROV_RSA_AES, CRYPT_VERIFYCONTEXT))
                return;
        VX_THROW_WIN32(GetLastError(), L"CryptAcquireContext failed");
    }
    Provider(const Provider&) = delete;
    Provider& operator=(const Provider&) = delete;

    HCRYPTPROV get() const noexcept { return m_handle; }

private:
    HCRYPTPROV m_handle = 0;
};

/// Opening a provider costs far more than a hash, so the process keeps one. It is never released: a static object's
/// destructor would do that while the loader is locked.
const Provider& processProvider()
{
    static NoDestructor<Provider> provider;
    return *provider;
}

HCRYPTHASH native(void* hash)
{
    return reinterpret_cast<HCRYPTHASH>(hash);
}

} // namespace

void WinHashContext::HashDeleter::operator()(void* hash) const noexcept
{
    CryptDestroyHash(native(hash));
}

WinHashContext::WinHashContext(unsigned long algorithm)
{
    HCRYPTHASH hash = 0;
    if (!CryptCreateHash(processProvider().get(), algorithm, 0, 0, &hash))
        VX_THROW_WIN32(GetLastError(), L"CryptCreateHash failed");
    m_hash.reset(reinterpret_cast<void*>(hash));
}

void WinHashContext::hashData(const std::uint8_t* source, std::size_t size)
{
    if (size == 0)
        VX_THROW_AS(BaseException, hashName, L"Bad argument: source is empty");
    if (!source)
        VX_THROW_AS(BaseException, hashName, L"Bad argument: source is null");
    if (!CryptHashData(native(m_hash.get()), source, static_cast<DWORD>(size), 0))
        VX_THROW_WIN32(GetLastError(), L"CryptHashData failed");
}

std::vector<std::uint8_t> WinHashContext::finalizeHash()
{
    DWORD hashSize = 0;
    DWORD size = sizeof(hashSize);
    if (!CryptGetHashParam(native(m_hash.get()), HP_HASHSIZE, reinterpret_cast<BYTE*>(&hashSize), &size, 0))
        VX_THROW_WIN32(GetLastError(), L"CryptGetHashParam - HP_HASHSIZE - failed");
    std::vector<std::uint8_t> value(hashSize);
    if (!CryptGetHashParam(native(m_hash.get()), HP_HASHVAL, value.data(), &hashSize, 0))
        VX_THROW_WIN32(GetLastError(), L"CryptGetHashParam - HP_HASHVAL - failed");
    return value;
}

} // namespace vx::crypto
