#include "common/certificates/wincertstorage.h"
#include "support/logcapture.h"
#include "vxtl/str.h"

#include <filesystem>
#include <fstream>

using namespace vx::tarn::common;
namespace fs = std::filesystem;

namespace {

/// Takes no store but CA and MY and no certificate but "DER" and the longest.
struct FakeDriver : IWinCertStorageDriver {
    Store certOpenStore(std::uintptr_t, const std::wstring& name, unsigned long& error) override
    {
        calls.push_back("open " + vx::str::toUtf8(name));
        error = 5;
        return name == L"CA" || name == L"MY" ? this : nullptr;
    }
    bool certCloseStore(Store store, unsigned long flags) override
    {
        calls.push_back((store ? "close " : "close none ") + std::to_string(flags));
        return true;
    }
    bool certAddEncodedCertificateToStore(Store store, unsigned long encoding, const std::uint8_t* data,
        std::size_t size, unsigned long disposition, const void** context, unsigned long& error) override
    {
        calls.push_back((store && !context ? "add " : "add to none ") + std::to_string(encoding) + " " +
                        std::to_string(size) + " " + std::to_string(disposition));
        error = 13;
        return size >= 3 && std::string(data, data + 3) == "DER" && (size == 3 || size == 20971520);
    }

    std::vector<std::string> calls;
};

} // namespace

TEST(WinCertStorage, takesFilesThatCanHoldACertificateAndSaysWhatWentWrong)
{
    const auto file = fs::temp_directory_path() / "WinCertStorageTest.der";
    const std::string head = "Failed to add certificate to the certificate sto",
                      fileHead = head + "rage. File " + file.string();
    const struct {
        std::int64_t size; ///< -1 for no file
        int protocol;
        std::vector<std::string> calls;
        std::string line; ///< empty for a success
    } rows[] = {
        {-1, 0, {}, fileHead + " doesn't exist."},
        {0, 0, {}, fileHead + " has wrong file size: 0. Maximum allowed: 20971520 bytes."},
        {20971521, 1, {}, fileHead + " has wrong file size: 20971521. Maximum allowed: 20971520 bytes."},
        {0x100000003, 1, {}, fileHead + " has wrong file size: 4294967299. Maximum allowed: 20971520 bytes."},
        {20971520, 1, {"open CA", "add 65537 20971520 2", "close 0"}, ""},
        {3, 0, {"open MY", "add 65537 3 2", "close 0"}, ""},
        {2, 0, {"open MY", "add 65537 2 2", "close 0"}, head + "re. Last error code: 13"},
        {3, 2, {"open ROOT"}, head + "re. Exception caught: Type: vx::BaseException, Reason: Failed to open "},
        {3, 3, {"open SPC"}, "Failed to open certificates system store. Last error code: 5"},
        {2, 4, {"add to none 65537 2 2", "close none 0"}, "Failed to find cert protocol value in protocol map: 4"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(testing::Message() << row.size << " bytes for " << row.protocol);
        fs::remove(file);
        if (row.size >= 0) {
            std::ofstream(file) << "DER";
            fs::resize_file(file, static_cast<std::uintmax_t>(row.size));
        }
        const auto driver = std::make_shared<FakeDriver>();
        const support::LogCapture log;
        EXPECT_EQ(
            WinCertStorage(driver, nullptr).addToStorage(static_cast<CertStoreProtocol>(row.protocol), file.wstring()),
            row.line.empty());
        EXPECT_EQ(driver->calls, row.calls);
        EXPECT_EQ(log.has(2, row.line), !row.line.empty()) << log.text();
    }
    fs::remove(file);
}
