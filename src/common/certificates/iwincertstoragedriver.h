#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace vx::tarn::common {

/// The system's certificate stores, one operation for each of its functions. Numbers are the system's; `error` is its
/// code for a failure and left alone otherwise. Any thread. Throws Win32Exception on a system without the functions.
class IWinCertStorageDriver {
public:
    /// An open store; null is none.
    using Store = void*;

    static constexpr unsigned long x509AndPkcs7 = 0x10001;
    static constexpr unsigned long useExisting = 2;

    virtual ~IWinCertStorageDriver() = default;
    /// The store of that name of the local machine, to be closed with certCloseStore. Null when that fails.
    virtual Store certOpenStore(std::uintptr_t cryptProvider, const std::wstring& name, unsigned long& error) = 0;
    virtual bool certCloseStore(Store store, unsigned long flags) = 0;
    /// `size` in bytes. `context`: takes the certificate as it stands in the store, to be freed by the caller; null for
    /// not wanted.
    virtual bool certAddEncodedCertificateToStore(Store store, unsigned long encoding, const std::uint8_t* data,
        std::size_t size, unsigned long disposition, const void** context, unsigned long& error) = 0;
};

} // namespace vx::tarn::common
