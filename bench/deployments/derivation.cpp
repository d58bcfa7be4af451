#include "common/patches/updateid.h"
#include "rows.h"

#include <windows.h>

#include <array>
#include <stdexcept>
#include <string>
#include <wincrypt.h>

namespace {

void check(BOOL succeeded)
{
    if (!succeeded)
        throw std::runtime_error("cryptography failed: " + std::to_string(GetLastError()));
}

std::array<BYTE, 16> hashWithOwnProvider(const std::wstring& text)
{
    HCRYPTPROV provider = 0;
    HCRYPTHASH hash = 0;
    std::array<BYTE, 16> value{};
    DWORD size = value.size();
    check(CryptAcquireContextW(&provider, nullptr, L"Microsoft Enhanced RSA and AES Cryptographic Provider",
        PROV_RSA_AES, CRYPT_VERIFYCONTEXT));
    check(CryptCreateHash(provider, CALG_MD5, 0, 0, &hash));
    check(CryptHashData(hash, reinterpret_cast<const BYTE*>(text.data()), static_cast<DWORD>(2 * text.size()), 0));
    check(CryptGetHashParam(hash, HP_HASHVAL, value.data(), &size, 0));
    CryptDestroyHash(hash);
    CryptReleaseContext(provider, 0);
    return value;
}

} // namespace

void compareDerivation(bench::Comparison& table)
{
    const std::wstring bulletin = L"TB24-100000";
    const std::wstring product = L"Document Reader Professional";
    const std::wstring servicePack = L"Gold";
    const std::wstring name = L"KB100000 (64-bit)";
    const auto floor = bench::perCall(
        100, [text = bulletin + product + servicePack + name] { bench::keep(hashWithOwnProvider(text)); });
    const auto ours = bench::perCall(
        2000, [=] { bench::keep(vx::tarn::common::deriveUpdateId(bulletin, product, servicePack, name)); });
    table.row("update_id of one patch", floor, ours, bench::Reach::timeUpTo(0.02));
}
