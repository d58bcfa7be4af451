#include "common/downloader/downloaddriver.h"
#include "common/downloader/downloader.h"
#include "common/factory/commonfactory.h"
#include "common/internetproxy/nointernetproxy.h"
#include "common/internetproxy/sessiondriver.h"
#include "common/wininet/wininetdriver.h"
#include "support/childtest.h"
#include "support/fakesettings.h"
#include "support/logcapture.h"
#include "support/scriptedserver.h"
#include "vxtl/handle.h"
#include "vxtl/registry.h"
#include "vxtl/str.h"

#include <windows.h>

#include <wininet.h>

#include <filesystem>
#include <fstream>

using namespace vx;
using namespace vx::tarn::common;
using enum support::Answer::Then;
using support::answer;
using support::ScriptedServer;
using testing::HasSubstr;

namespace {

/// The system's internet, with something else to do before the first body is read.
struct HookedInternet : WinInetDriver {
    void* internetOpenUrl(
        void* session, const wchar_t* url, const wchar_t* headers, unsigned long size, unsigned long flags) override
    {
        if (patience)
            InternetSetOptionW(session, INTERNET_OPTION_RECEIVE_TIMEOUT, &patience, sizeof patience);
        return WinInetDriver::internetOpenUrl(session, url, headers, size, flags);
    }
    bool internetReadFile(void* request, void* buffer, unsigned long size, unsigned long* read) override
    {
        if (const auto hook = std::exchange(whileFileIsOpen, nullptr))
            hook();
        return WinInetDriver::internetReadFile(request, buffer, size, read);
    }

    std::function<void()> whileFileIsOpen;
    unsigned long patience = 0; ///< with a server, in milliseconds; 0 for the system's
};

struct NoPause : DownloadDriver {
    void pause(std::chrono::seconds) override { DownloadDriver::pause(std::chrono::seconds(-1)); }
};

struct RealDownload : testing::Test {
    RealDownload() { create_directories(folder); }
    ~RealDownload() override { remove_all(folder); }

    static Downloader makeDownloader(const std::shared_ptr<HookedInternet>& internet)
    {
        return {std::make_shared<NoInternetProxy>(std::make_shared<SessionDriver>(), false), internet,
            registry::createWin32Registry(), std::make_shared<NoPause>()};
    }
    static std::string content(const std::filesystem::path& path)
    {
        std::ifstream stream(path, std::ios::binary);
        return {std::istreambuf_iterator<char>(stream), {}};
    }
    bool opens(unsigned long access, unsigned long sharing) const
    {
        return KernelHandle(CreateFileW(file.c_str(), access, sharing, nullptr, OPEN_EXISTING, 0, nullptr)).isValid();
    }

    const std::filesystem::path folder =
        std::filesystem::temp_directory_path() / support::uniqueName(L"tarnhd-download");
    const std::wstring file = (folder / L"f\x00EFle\x2713").wstring();
    const std::shared_ptr<HookedInternet> internet = std::make_shared<HookedInternet>();
    Downloader downloader = makeDownloader(internet);
};

support::Answer then(support::Answer::Then then, support::Answer answer)
{
    answer.then = then;
    return answer;
}

} // namespace

TEST_F(RealDownload, endsAsTheServerWantsIt)
{
    constexpr unsigned long moment = 300;
    const std::string before = "what was before";
    std::string headers;
    for (int i = 0; headers.size() < 65'000; ++i)
        headers += "X-" + std::to_string(i) + ": " + std::string(96, 'v') + "\r\n";
    const auto good = answer("200 OK", "body", "Content-Length: 4\r\n");
    const auto cut = answer("200 OK", "body", "Content-Length: 100\r\n");
    const struct {
        const char* label;
        std::vector<support::Answer> answers;
        ExitStatus result;
        std::string content;
        std::size_t requests;
        bool hasError = false;
        unsigned long patience = 0;
    } cases[] = {
        {"elsewhere", {answer("302 Found", "", "Location: /other\r\n"), good}, exitstatus::success, "body", 2},
        {"no answer, then one", {{""}, good}, exitstatus::success, "body", 2},
        {"lost before the headers", {{"", "", Reset}}, exitstatus::failedToDownload, before, 3, true},
        {"lost in the body", {then(Reset, cut)}, exitstatus::failedToDownload, "", 3, true},
        {"stalls before the headers", {{"", "", Hold}}, exitstatus::failedToDownload, before, 1, true, moment},
        {"stalls in the body", {then(Hold, cut)}, exitstatus::failedToDownload, "", 1, true, moment},
        // The system says nothing of the rest that never came.
        {"promises more", {cut}, exitstatus::success, "body", 1},
        {"promises nonsense", {answer("200 OK", "body", "Content-Length: -7\r\n")}, exitstatus::success, "body", 1},
        {"many headers", {answer("200 OK", "body", headers)}, exitstatus::success, "body", 1},
    };
    for (const auto& row : cases) {
        SCOPED_TRACE(row.label);
        std::ofstream(std::filesystem::path(file)) << before;
        const ScriptedServer server(row.answers);
        internet->patience = row.patience;
        downloader.setAttempts(row.patience ? 1 : 3);
        EXPECT_EQ(downloader.download(server.url(), file, {}), row.result);
        EXPECT_EQ(downloader.getLastError() != 0, row.hasError) << downloader.getLastError();
        EXPECT_EQ(content(file), row.content);
        EXPECT_EQ(server.requests().size(), row.requests);
    }
    EXPECT_EQ(downloader.getHeaders()[L"x-600"], std::wstring(96, L'v'));
}

TEST_F(RealDownload, failsWhereTheFileCanNotBeWritten)
{
    const ScriptedServer server({answer("200 OK", "body")});
    const auto errorAt = [&](const std::filesystem::path& path) {
        EXPECT_EQ(downloader.download(server.url(), path.wstring(), {}), exitstatus::failedToDownload);
        return downloader.getLastError();
    };
    EXPECT_NE(errorAt({}), 0u);
    const KernelHandle reader(
        CreateFileW(file.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, CREATE_NEW, 0, nullptr));
    const support::LogCapture log;
    EXPECT_EQ(errorAt(file), ERROR_SHARING_VIOLATION);
    EXPECT_EQ(log.count("Failed to create a file f\xC3\xAFle\xE2\x9C\x93. GetLastError() = 32"), 3u) << log.text();
    EXPECT_FALSE(DownloadDriver().writeFile(reader.get(), "body", 4));
}

TEST_F(RealDownload, goesOnBesideAnotherAndOthersMayUseTheFile)
{
    auto slow = then(Hold, answer("200 OK", "slow ", "Content-Length: 9\r\n"));
    slow.rest = "body";
    const ScriptedServer server({slow, answer("203 Other", "quick")});
    Downloader second = makeDownloader(std::make_shared<HookedInternet>());
    internet->whileFileIsOpen = [&] {
        EXPECT_TRUE(opens(GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE));
        EXPECT_EQ(second.download(server.url(), file + L"2", {}), exitstatus::success);
    };
    EXPECT_EQ(downloader.download(server.url(), file, {}), exitstatus::success);
    EXPECT_EQ(content(file), "slow body");
    EXPECT_EQ(content(file + L"2"), "quick");
    EXPECT_EQ(downloader.getHttpStatus(), 200);
    EXPECT_EQ(second.getHttpStatus(), 203);
}

int dieWhileDownloading()
{
    const auto urlAndFile = str::split(support::ChildTest::argument(), L'|');
    const auto internet = std::make_shared<HookedInternet>();
    internet->whileFileIsOpen = [] { TerminateProcess(GetCurrentProcess(), 7); };
    return RealDownload::makeDownloader(internet).download(urlAndFile.at(0), urlAndFile.at(1), {}).code();
}

TEST_F(RealDownload, leavesNoLockWhenItsProcessIsKilled)
{
    const ScriptedServer server({answer("200 OK", "body")});
    EXPECT_EQ(support::ChildTest(L"download", server.url() + L"|" + file).wait(), 7u);
    EXPECT_TRUE(opens(GENERIC_WRITE, 0));
    EXPECT_EQ(downloader.download(server.url(), file, {}), exitstatus::success);
    EXPECT_EQ(content(file), "body");
}

TEST_F(RealDownload, tellsTheServerWhoAsksAndWhatTheCallerAddsAndNobodyElse)
{
    const std::wstring name = L"HKEY_LOCAL_MACHINE\\SOFTWARE\\Vantorix\\Unitide";
    const ScriptedServer server({answer("200 OK")});
    const support::LogCapture log;
    CommonFactory factory;
    factory.setSettings(support::FakeSettings::handle(std::make_shared<support::FakeSettings>()));
    const auto made = factory.createDownloader();
    made->setAttempts(1);
    const auto key = factory.createRegistry()->createKey(name, registry::allAccess, 0, registry::View::View32);
    key->setStringValue(L"Config", L"consumer");
    key->setStringValue(L"Version", L"1.2");
    const std::wstring url = L"http://user:secret@" + server.url().substr(std::wstring_view(L"http://").size());
    EXPECT_EQ(made->download(url, file, {{L"If-None-Match", L"a: b"}, {L"Cookie", L"secret"}}), exitstatus::success);
    factory.createRegistry()->deleteKey(name, registry::View::View32);
    made->download(server.url(), file, {});
    const auto requests = server.requests();
    EXPECT_THAT(requests.at(0), HasSubstr("User-Agent: Wget/1.11.4 VantorixTarnpatch (consumer, 1.2)\r\n"));
    EXPECT_THAT(requests.at(0), HasSubstr("If-None-Match: a: b\r\n"));
    EXPECT_THAT(requests.at(0), HasSubstr("Cookie: secret\r\n"));
    EXPECT_THAT(requests.at(1), HasSubstr("User-Agent: Wget/1.11.4 VantorixTarnpatch\r\n"));
    EXPECT_GT(log.count("dwHeadersLength: "), 0u) << "the system's call is traced";
    EXPECT_EQ(log.count("secret"), 0u) << log.text();
}

int main(int argc, char** argv)
{
    return support::mainWithChildren(argc, argv, {{"download", dieWhileDownloading}});
}
