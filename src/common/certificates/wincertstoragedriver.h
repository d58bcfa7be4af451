#pragma once

#include "common/certificates/iwincertstoragedriver.h"

namespace vx::tarn::common {

/// The system itself.
class WinCertStorageDriver : public IWinCertStorageDriver {
public:
    Store certOpenStore(std::uintptr_t cryptProvider, const std::wstring& name, unsigned long& error) override;
    bool certCloseStore(Store store, unsigned long flags) override;
    bool certAddEncodedCertificateToStore(Store store, unsigned long encoding, const std::uint8_t* data,
        std::size_t size, unsigned long disposition, const void** context, unsigned long& error) override;
};

} // namespace vx::tarn::common
