#include "common/certificates/wincertstoragedriver.h"

#include <windows.h>

#include <wincrypt.h>

namespace vx::tarn::common {

WinCertStorageDriver::Store WinCertStorageDriver::certOpenStore(
    std::uintptr_t cryptProvider, const std::wstring& name, unsigned long& error)
{
    const HCERTSTORE store =
        CertOpenStore(CERT_STORE_PROV_SYSTEM_W, 0, cryptProvider, CERT_SYSTEM_STORE_LOCAL_MACHINE, name.c_str());
    if (!store)
        error = GetLastError();
    return store;
}

bool WinCertStorageDriver::certCloseStore(Store store, unsigned long flags)
{
    return CertCloseStore(store, flags);
}

bool WinCertStorageDriver::certAddEncodedCertificateToStore(Store store, unsigned long encoding,
    const std::uint8_t* data, std::size_t size, unsigned long disposition, const void** context, unsigned long& error)
{
    const bool added = CertAddEncodedCertificateToStore(
        store, encoding, data, static_cast<DWORD>(size), disposition, reinterpret_cast<const CERT_CONTEXT**>(context));
    if (!added)
        error = GetLastError();
    return added;
}

} // namespace vx::tarn::common
