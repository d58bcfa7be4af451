#include "common/certificates/wincertstorage.h"

#include "logging/logstream.h"
#include "vxtl/exception.h"
#include "vxtl/guarded.h"

#include <filesystem>
#include <fstream>
#include <optional>
#include <vector>

namespace vx::tarn::common {

using logging::Level;
using logging::LogStream;

namespace {

using Bytes = std::vector<std::uint8_t>;

const wchar_t* storeName(CertStoreProtocol protocol)
{
    switch (protocol) {
    case CertStoreProtocol::My: return L"MY";
    case CertStoreProtocol::Ca: return L"CA";
    case CertStoreProtocol::Root: return L"ROOT";
    case CertStoreProtocol::Spc: return L"SPC";
    }
    return nullptr;
}

/// Nothing, with a line in the log, for a file that can't hold a certificate. Throws BaseException for one that can't
/// be read to its end.
std::optional<Bytes> readFile(const std::wstring& filename)
{
    const std::filesystem::path path(filename);
    std::error_code ignored;
    if (!std::filesystem::exists(path, ignored)) {
        LogStream(Level::Error) << "Failed to add certificate to the certificate storage. File " << filename
                                << " doesn't exist.";
        return std::nullopt;
    }
    std::ifstream file(path, std::ios::binary | std::ios::ate);
    // -1 for a file that can't be opened.
    const std::streamoff size = file.tellg();
    if (size <= 0 || size > WinCertStorage::longestFile) {
        LogStream(Level::Error) << "Failed to add certificate to the certificate storage. File " << filename
                                << " has wrong file size: " << size
                                << ". Maximum allowed: " << WinCertStorage::longestFile << " bytes.";
        return std::nullopt;
    }
    Bytes content(static_cast<std::size_t>(size));
    file.seekg(0);
    // The rest would be zeros, and the system looks at no signature.
    if (!file.read(reinterpret_cast<char*>(content.data()), size))
        VX_THROW(BaseException, L"Failed to read the certificate file");
    return content;
}

} // namespace

/// One open store.
class WinCertStorage::CertStoreHandle {
public:
    /// Throws BaseException when the store can't be opened. A protocol without a store leaves the handle null.
    CertStoreHandle(IWinCertStorageDriver& driver, CertStoreProtocol protocol) : m_driver(driver)
    {
        VX_LOG_SCOPE();
        VX_LOG_VALUES(static_cast<int>(protocol));
        const wchar_t* const name = storeName(protocol);
        if (!name) {
            LogStream(Level::Error) << "Failed to find cert protocol value in protocol map: "
                                    << static_cast<int>(protocol);
            return;
        }
        LogStream(Level::Debug) << "Opening certificates system store for subsystem protocol: " << name;
        unsigned long error = 0;
        m_store = driver.certOpenStore(0, name, error);
        if (m_store)
            return;
        LogStream(Level::Error) << "Failed to open certificates system store. Last error code: " << error;
        VX_THROW(BaseException, L"Failed to open certificates system store");
    }
    ~CertStoreHandle()
    {
        LogStream(Level::Debug) << "Clisong the certificates system store";
        m_driver.certCloseStore(m_store, 0);
    }
    CertStoreHandle(const CertStoreHandle&) = delete;
    CertStoreHandle& operator=(const CertStoreHandle&) = delete;

    IWinCertStorageDriver::Store get() const { return m_store; }

private:
    IWinCertStorageDriver& m_driver;
    IWinCertStorageDriver::Store m_store = nullptr;
};

WinCertStorage::WinCertStorage(
    std::shared_ptr<IWinCertStorageDriver> driver, std::shared_ptr<settings::Settings> settings)
    : m_driver(std::move(driver)), m_settings(std::move(settings))
{}

WinCertStorage::~WinCertStorage() = default;

bool WinCertStorage::isAlreadyInStorage()
{
    const bool value = m_settings.alreadyInStorage();
    LogStream(Level::Debug) << "Certificates is already in storage: " << value;
    return value;
}

void WinCertStorage::setAlreadyInStorage(bool value)
{
    VX_LOG_SCOPE();
    VX_LOG_VALUES(value);
    m_settings.alreadyInStorage.set(value);
}

bool WinCertStorage::addToStorage(CertStoreProtocol protocol, const std::wstring& filename)
{
    VX_LOG_SCOPE();
    VX_LOG_VALUES(filename);
    return guardedAgainst<BaseException>("Failed to add certificate to the certificate store. Exception caught: ",
        [&] { return addFile(protocol, filename); });
}

bool WinCertStorage::addFile(CertStoreProtocol protocol, const std::wstring& filename)
{
    const auto certificate = readFile(filename);
    if (!certificate)
        return false;
    const CertStoreHandle store(*m_driver, protocol);
    unsigned long error = 0;
    if (m_driver->certAddEncodedCertificateToStore(store.get(), IWinCertStorageDriver::x509AndPkcs7,
            certificate->data(), certificate->size(), IWinCertStorageDriver::useExisting, nullptr, error))
        return true;
    LogStream(Level::Error) << "Failed to add certificate to the certificate store. Last error code: " << error;
    return false;
}

} // namespace vx::tarn::common
