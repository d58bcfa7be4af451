#pragma once

#include "common/certificates/iwincertstoragedriver.h"
#include "common/settings/tarnpatchsettings.h"

#include <memory>
#include <string>

namespace vx::tarn::common {

/// Certificate stores of Windows. The numbers are this program's own.
enum class CertStoreProtocol : int { My = 0, Ca = 1, Root = 2, Spc = 3 };

/// Puts certificates into stores of the local machine and keeps in the settings whether that was done; the two are the
/// caller's to bring together. One thread.
class WinCertStorage {
public:
    /// The longest file that is taken, in bytes.
    static constexpr std::int64_t longestFile = 0x1400000;

    WinCertStorage(std::shared_ptr<IWinCertStorageDriver> driver, std::shared_ptr<settings::Settings> settings);
    virtual ~WinCertStorage();
    WinCertStorage(const WinCertStorage&) = delete;
    WinCertStorage& operator=(const WinCertStorage&) = delete;

    /// False until somebody has set it. Both throw what the store throws.
    virtual bool isAlreadyInStorage();
    virtual void setAlreadyInStorage(bool value);
    /// Adds the one certificate, encoded or as a signed message, that the file holds. True as well when the store has
    /// it already, and then the store's stays. A failure is logged: false.
    virtual bool addToStorage(CertStoreProtocol protocol, const std::wstring& filename);

private:
    class CertStoreHandle;

    bool addFile(CertStoreProtocol protocol, const std::wstring& filename);

    std::shared_ptr<IWinCertStorageDriver> m_driver;
    CertificatesSettings m_settings;
};

} // namespace vx::tarn::common
