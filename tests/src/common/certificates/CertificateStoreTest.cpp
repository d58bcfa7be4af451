#include "common/certificates/wincertstorage.h"
#include "common/factory/commonfactory.h"
#include "machine/system.h"
#include "stage.h"

#include <windows.h>

#include <wincrypt.h>

using namespace vx::tarn::common;
using CertificateStoreTest = support::StageTest;

namespace {

/// A certificate that no store has, signed by a key that goes with this call.
std::string makeCertificate()
{
    BYTE name[256];
    CERT_NAME_BLOB subject{sizeof name, name};
    HCRYPTPROV provider = 0;
    HCRYPTKEY key = 0;
    CertStrToNameW(X509_ASN_ENCODING, L"CN=tarnhd test", CERT_X500_NAME_STR, nullptr, name, &subject.cbData, nullptr);
    EXPECT_TRUE(CryptAcquireContextW(&provider, nullptr, nullptr, PROV_RSA_FULL, CRYPT_VERIFYCONTEXT));
    EXPECT_TRUE(CryptGenKey(provider, AT_SIGNATURE, 0, &key));
    const auto made = CertCreateSelfSignCertificate(provider, &subject, 0, nullptr, nullptr, nullptr, nullptr, nullptr);
    const std::string encoded(made->pbCertEncoded, made->pbCertEncoded + made->cbCertEncoded);
    CertFreeCertificateContext(made);
    CryptDestroyKey(key);
    CryptReleaseContext(provider, 0);
    return encoded;
}

/// Takes the certificate out of the machine's store; how often it was there.
int takeOut(const wchar_t* name, const std::string& encoded)
{
    const auto store = CertOpenStore(CERT_STORE_PROV_SYSTEM_W, 0, 0, CERT_SYSTEM_STORE_LOCAL_MACHINE, name);
    int found = 0;
    const CERT_CONTEXT* next = nullptr;
    while ((next = CertEnumCertificatesInStore(store, next)) != nullptr)
        if (std::string(next->pbCertEncoded, next->pbCertEncoded + next->cbCertEncoded) == encoded) {
            ++found;
            CertDeleteCertificateFromStore(CertDuplicateCertificateContext(next));
            next = nullptr; // deleted, so the search begins anew
        }
    CertCloseStore(store, 0);
    return found;
}

} // namespace

TEST_F(CertificateStoreTest, theMachinesStoresHaveEachCertificateOnceAndTheSettingsRemember)
{
    if (devhost::machine::thisSystem() == devhost::machine::System::Windows)
        GTEST_SKIP() << "it would change this computer's certificate stores";
    server.start();
    CommonFactory factory;
    const auto storage = factory.createWinCertStorage();
    const auto encoded = makeCertificate();
    const auto file = folder.path() / "certificate.der";
    const std::pair<CertStoreProtocol, const wchar_t*> stores[] = {
        {CertStoreProtocol::Ca, L"CA"}, {CertStoreProtocol::My, L"MY"}, {CertStoreProtocol::Spc, L"SPC"}};
    for (const auto& [protocol, name] : stores) {
        support::writeFile(file, encoded);
        EXPECT_TRUE(storage->addToStorage(protocol, file.wstring()));
        EXPECT_TRUE(storage->addToStorage(protocol, file.wstring()));
        support::writeFile(file, encoded.substr(1));
        EXPECT_FALSE(storage->addToStorage(protocol, file.wstring()));
        EXPECT_EQ(takeOut(name, encoded), 1) << name;
    }
    EXPECT_FALSE(storage->isAlreadyInStorage());
    storage->setAlreadyInStorage(true);
    EXPECT_TRUE(factory.createWinCertStorage()->isAlreadyInStorage());
}
