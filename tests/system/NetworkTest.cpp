#include "common/downloader/idownloader.h"
#include "common/factory/commonfactory.h"
#include "machine/system.h"
#include "stage.h"
#include "support/fakesettings.h"
#include "support/footprint.h"
#include "support/logcapture.h"

#include <windows.h>

#include <psapi.h>

#include <cstdlib>
#include <future>

namespace {

using namespace support;
using namespace vx::tarn::common;
using testing::HasSubstr;

const HttpHeaders logsIn = {{L"Proxy-Authorization", L"Basic dGFybnBhdGNoOm9wZW4tc2VzYW1l"}};

std::string address(const char* variable)
{
    const char* const text = std::getenv(variable);
    return text ? text : "";
}

/// The factory's downloads, from the web server and by way of the proxies that the tests are run beside.
struct NetworkTest : testing::Test {
    void SetUp() override
    {
        if (server.empty())
            GTEST_SKIP() << "TARNHD_SERVER names no server: ./run test starts one";
        store->set(settings.communication.useHttpProxy, "no");
        factory.setSettings(FakeSettings::handle(store));
    }

    ExitStatus fetch(const std::string& url, const HttpHeaders& headers = {}) { return fetchTo(file, url, headers); }
    ExitStatus fetchTo(const std::wstring& target, const std::string& url, const HttpHeaders& headers = {})
    {
        downloader = factory.createDownloader();
        downloader->setWaitSeconds(0);
        return downloader->download(vx::str::fromUtf8(url), target, headers);
    }
    std::string seen(const wchar_t* header) { return vx::str::toUtf8(downloader->getHeaders()[header]); }

    const std::string server = address("TARNHD_SERVER");
    const TemporaryFolder folder;
    const std::wstring file = (folder.path() / "file").wstring();
    const LogCapture log;
    const std::shared_ptr<FakeSettings> store = std::make_shared<FakeSettings>();
    CommonFactory factory;
    std::shared_ptr<IDownloader> downloader;
};

std::size_t peakMemory()
{
    PROCESS_MEMORY_COUNTERS counters = {};
    EXPECT_TRUE(GetProcessMemoryInfo(GetCurrentProcess(), &counters, sizeof counters));
    return counters.PeakWorkingSetSize;
}

} // namespace

TEST_F(NetworkTest, takesWhatTheServerHasAndLeavesTheFileOtherwise)
{
    constexpr std::uintmax_t all = 1 << 20, before = 3;
    const struct {
        const char* path;
        HttpHeaders headers;
        ExitStatus result;
        std::int32_t status;
        std::uintmax_t size;
        std::size_t refusals = 0;
    } rows[] = {
        {"/patch.bin", {{L"X-Thing", L"a: b"}}, exitstatus::success, 200, all},
        {"/patch.bin", {{L"Range", L"bytes=0-99"}}, exitstatus::success, 206, 100},
        {"/moved", {}, exitstatus::success, 200, all},
        {"/status/202", {}, exitstatus::resourceNotReady, 202, before},
        {"/patch.bin", {{L"If-None-Match", L"*"}, {L"X-Thing", L"c"}}, exitstatus::success, 304, before},
        {"/status/404", {}, exitstatus::failedToDownload, 404, before, 3},
        {"/status/500", {}, exitstatus::failedToDownload, 500, before, 3},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.path + std::to_string(row.status));
        writeFile(file, "old");
        EXPECT_EQ(fetch(server + row.path, row.headers), row.result);
        EXPECT_EQ(downloader->getHttpStatus(), row.status);
        EXPECT_EQ(std::filesystem::file_size(file), row.size);
        const auto refusal = "Failed to download because of server response: " + std::to_string(row.status);
        EXPECT_EQ(log.count(refusal), row.refusals);
        const auto thing = row.headers.find(L"X-Thing");
        EXPECT_EQ(downloader->getHeaders()[L"x-seen-thing"], thing == row.headers.end() ? L"" : thing->second);
        EXPECT_THAT(seen(L"x-seen-user-agent"), HasSubstr("VantorixTarnpatch"));
    }
}

TEST_F(NetworkTest, goesTheWayThatTheSettingsName)
{
    const bool isWine = devhost::machine::thisSystem() == devhost::machine::System::Wine;
    const auto proxy = address("TARNHD_PROXY"), withPassword = address("TARNHD_PASSWORD_PROXY");
    const auto withoutPassword = "http://" + withPassword.substr(withPassword.find('@') + 1);
    const struct {
        const char *label, *strategy;
        std::string users, products, hq;
        HttpHeaders headers;
        std::int32_t status;
        const char* via;
        unsigned long error = 0;
    } rows[] = {
        {"none", "no", proxy, proxy, "", {}, 200, ""},
        {"the user's", "user_defined", proxy, "", "", {}, 200, "open-proxy"},
        {"the product's", "from_product_configuration", "", proxy, "", {}, 200, "open-proxy"},
        {"the product has none", "from_product_configuration", proxy, "", "", {}, 200, ""},
        {"the management server's", "user_defined", proxy, "", server, {}, 200, ""},
        {"a dead one", "user_defined", "127.0.0.1:1", "", "", {}, 0, "", 12029},
        {"one that refuses", "user_defined", withoutPassword, "", "", {}, 407, ""},
        // Wine takes no password for a session; the next row shows that this one would do.
        {"one with a password", "user_defined", withPassword, "", "", {}, isWine ? 407 : 200,
            isWine ? "" : "password-proxy"},
        {"a password from the caller", "user_defined", withoutPassword, "", "", logsIn, 200, "password-proxy"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.label);
        store->set(settings.communication.useHttpProxy, row.strategy);
        store->set(settings.communication.userDefinedProxy, row.users);
        store->set(devhost::host::keys::host.currentProxy, row.products);
        store->set(settings.communication.hqProxyUrl, row.hq);
        const auto url =
            factory.buildDownloadUrl()(vx::str::fromUtf8(server + "/patch.bin"), vx::str::fromUtf8(row.hq));
        EXPECT_EQ(fetch(vx::str::toUtf8(url), row.headers) == exitstatus::success, row.status == 200);
        EXPECT_EQ(downloader->getHttpStatus(), row.status);
        EXPECT_EQ(downloader->getLastError(), row.error);
        EXPECT_THAT(seen(L"x-seen-via"), HasSubstr(row.via));
        EXPECT_EQ(seen(L"x-seen-via").empty(), !*row.via);
        EXPECT_EQ(seen(L"x-seen-uri").find("http%3A%2F%2F127.0.0.1%3A") == 0, !row.hq.empty());
    }
    EXPECT_EQ(log.count("Using proxy password."), 1u);
    for (const char* secret : {"open-sesame", "dGFybnBhdGNo"})
        EXPECT_EQ(log.count(secret), 0u) << log.text();
}

TEST_F(NetworkTest, failsOnAFullDisk)
{
    const std::wstring full = L"\\\\?\\unix\\dev\\full";
    if (!vx::KernelHandle(CreateFileW(full.c_str(), GENERIC_WRITE, 0, nullptr, OPEN_EXISTING, 0, nullptr)).isValid())
        GTEST_SKIP() << "no device that is always full";
    EXPECT_EQ(fetchTo(full, server + "/patch.bin"), exitstatus::failedToDownload);
    EXPECT_EQ(downloader->getLastError(), static_cast<unsigned long>(ERROR_DISK_FULL));
}

// Accepting it is for a real Windows: Wine passes what a session ignores on to no request.
TEST_F(NetworkTest, refusesAServerThatNobodyVouchesFor)
{
    EXPECT_EQ(fetch(address("TARNHD_SERVER_TLS") + "/patch.bin"), exitstatus::failedToDownload);
    EXPECT_EQ(downloader->getLastError(), 12045u);
    EXPECT_EQ(log.count("Failed to download because of ERROR_INTERNET_INVALID_CA."), 3u);
}

TEST_F(NetworkTest, takesTwoFilesAtOnce)
{
    const auto take = [&](const std::wstring& target) {
        const auto own = factory.createDownloader();
        return own->download(vx::str::fromUtf8(server + "/patch.bin"), target, {}).code();
    };
    auto first = std::async(std::launch::async, take, file);
    EXPECT_EQ(take(file + L"2"), 0);
    EXPECT_EQ(first.get(), 0);
    EXPECT_EQ(readFile(file).size(), 1u << 20);
    EXPECT_TRUE(readFile(file) == readFile(file + L"2"));
}

TEST_F(NetworkTest, needsNoMoreMemoryForAGigabyte)
{
    ASSERT_EQ(fetch(server + "/patch.bin"), exitstatus::success);
    const auto peak = peakMemory();
    const auto before = footprint();
    ASSERT_GT(peak, 0u);
    EXPECT_EQ(fetchTo(L"NUL", server + "/large.bin"), exitstatus::success);
    EXPECT_EQ(downloader->getHeaders()[L"content-length"], L"1073741824");
    // The buffer, and stacks of threads that the system begins: how many hangs on how busy the machine is.
    EXPECT_LE(peakMemory() - peak, 16u << 20);
    EXPECT_LE((footprint() - before).heapBytes, 1 << 16);
}
