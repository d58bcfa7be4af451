#include "common/downloader/downloaddriver.h"
#include "common/downloader/downloader.h"
#include "common/internetproxy/nointernetproxy.h"
#include "common/internetproxy/sessiondriver.h"
#include "common/wininet/wininetdriver.h"
#include "support/childtest.h"
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

enum class Patience { AsTheSystem, Moment };

/// The system's internet, which a test can have wait for a server but a moment.
struct PatientDriver : WinInetDriver {
    explicit PatientDriver(Patience patience) : m_patience(patience) {}
    void* internetOpenUrl(
        void* session, const wchar_t* url, const wchar_t* headers, unsigned long size, unsigned long flags) override
    {
        unsigned long milliseconds = 300;
        if (m_patience == Patience::Moment)
            InternetSetOptionW(session, INTERNET_OPTION_RECEIVE_TIMEOUT, &milliseconds, sizeof milliseconds);
        return WinInetDriver::internetOpenUrl(session, url, headers, size, flags);
    }

private:
    const Patience m_patience;
};

/// Does not pause, and something else while a file is open.
struct HookedDriver : DownloadDriver {
    explicit HookedDriver(std::function<void()> hook) : m_hook(std::move(hook)) {}
    void* createFile(const std::wstring& name) override
    {
        void* const made = DownloadDriver::createFile(name);
        if (made)
            m_hook();
        return made;
    }
    void pause(std::chrono::seconds) override {}

private:
    const std::function<void()> m_hook;
};

std::unique_ptr<Downloader> makeDownloader(
    std::function<void()> whileFileIsOpen = [] {}, Patience patience = Patience::AsTheSystem)
{
    return std::make_unique<Downloader>(std::make_shared<NoInternetProxy>(std::make_shared<SessionDriver>(), false),
        std::make_shared<PatientDriver>(patience), registry::createWin32Registry(),
        std::make_shared<HookedDriver>(std::move(whileFileIsOpen)));
}

struct RealDownload : testing::Test {
    RealDownload() { create_directories(folder); }
    ~RealDownload() override { remove_all(folder); }
    static std::string content(const std::filesystem::path& path)
    {
        std::ifstream stream(path, std::ios::binary);
        return {std::istreambuf_iterator<char>(stream), {}};
    }

    const std::filesystem::path folder =
        std::filesystem::temp_directory_path() / support::uniqueName(L"tarnhd-download");
    const std::wstring file = (folder / "file").wstring();
};

support::Answer then(support::Answer::Then then, support::Answer answer)
{
    answer.then = then;
    return answer;
}

int dieWhileDownloading()
{
    const auto urlAndFile = str::split(support::ChildTest::argument(), L'|');
    const auto die = [] { TerminateProcess(GetCurrentProcess(), 7); };
    return makeDownloader(die)->download(urlAndFile.at(0), urlAndFile.at(1), {}).code();
}

} // namespace

TEST_F(RealDownload, endsAsTheServerWantsIt)
{
    std::string manyHeaders;
    for (int i = 0; i < 640; ++i)
        manyHeaders += "X-" + std::to_string(i) + ": " + std::string(96, 'v') + "\r\n";
    const auto good = answer("200 OK", "body", "Content-Length: 4\r\n");
    const auto longer = answer("200 OK", "body", "Content-Length: 100\r\n");
    const struct {
        const char* label;
        std::vector<support::Answer> answers;
        ExitStatus result;
        bool hasError;
        std::string content;
        std::size_t requests;
        Patience patience = Patience::AsTheSystem;
    } cases[] = {
        {"a body", {good}, exitstatus::success, false, "body", 1},
        {"a part", {answer("206 Partial Content", "body")}, exitstatus::success, false, "body", 1},
        {"not ready", {answer("202 Accepted", "wait")}, exitstatus::resourceNotReady, false, "what was before", 1},
        {"unchanged", {answer("304 Not Modified")}, exitstatus::success, false, "what was before", 1},
        {"gone", {answer("404 Not Found", "gone")}, exitstatus::failedToDownload, false, "what was before", 3},
        {"broken", {answer("500 Oops", "stack")}, exitstatus::failedToDownload, false, "what was before", 3},
        {"elsewhere", {answer("302 Found", "", "Location: /other\r\nContent-Length: 0\r\n"), good}, exitstatus::success,
            false, "body", 2},
        {"no answer, then one", {{""}, good}, exitstatus::success, false, "body", 2},
        {"lost before the headers", {{"", "", Reset}}, exitstatus::failedToDownload, true, "what was before", 3},
        {"lost in the body", {then(Reset, longer)}, exitstatus::failedToDownload, true, "", 3},
        {"stalls before the headers", {{"", "", Hold}}, exitstatus::failedToDownload, true, "what was before", 1,
            Patience::Moment},
        {"stalls in the body", {then(Hold, longer)}, exitstatus::failedToDownload, true, "", 1, Patience::Moment},
        // The system says nothing of the rest that never came.
        {"promises more", {longer}, exitstatus::success, false, "body", 1},
        {"promises nonsense", {answer("200 OK", "body", "Content-Length: -7\r\n")}, exitstatus::success, false, "body",
            1},
        {"many headers", {answer("200 OK", "body", manyHeaders)}, exitstatus::success, false, "body", 1},
    };
    for (const auto& row : cases) {
        SCOPED_TRACE(row.label);
        std::ofstream(folder / "file") << "what was before";
        const ScriptedServer server(row.answers);
        const auto downloader = makeDownloader([] {}, row.patience);
        downloader->setAttempts(row.patience == Patience::Moment ? 1 : 3);
        EXPECT_EQ(downloader->download(server.url(), file, {}), row.result);
        EXPECT_EQ(downloader->getLastError() != 0, row.hasError) << downloader->getLastError();
        EXPECT_EQ(content(file), row.content);
        EXPECT_EQ(server.requests().size(), row.requests);
        EXPECT_EQ(downloader->getHeaders().count(L"x-639"), row.answers[0].head.size() > manyHeaders.size());
    }
}

TEST_F(RealDownload, failsWhereTheFileCanNotBeWritten)
{
    const ScriptedServer server({answer("200 OK", "body")});
    const auto downloader = makeDownloader();
    const auto errorAt = [&](const std::filesystem::path& path) {
        EXPECT_EQ(downloader->download(server.url(), path.wstring(), {}), exitstatus::failedToDownload);
        return downloader->getLastError();
    };
    EXPECT_EQ(errorAt(folder), ERROR_ACCESS_DENIED);
    EXPECT_EQ(errorAt(folder / "missing" / "file"), ERROR_PATH_NOT_FOUND);
    EXPECT_NE(errorAt({}), 0u);
    const KernelHandle reader(
        CreateFileW(file.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, CREATE_NEW, 0, nullptr));
    EXPECT_EQ(errorAt(file), ERROR_SHARING_VIOLATION);
}

TEST_F(RealDownload, goesOnBesideAnother)
{
    auto slow = then(Hold, answer("200 OK", "slow ", "Content-Length: 9\r\n"));
    slow.rest = "body";
    ScriptedServer server({slow, answer("203 Other", "quick")});
    const auto second = makeDownloader();
    const auto first = makeDownloader([&] {
        EXPECT_EQ(second->download(server.url(), file + L"2", {}), exitstatus::success);
        const KernelHandle other(CreateFileW(file.c_str(), GENERIC_READ | GENERIC_WRITE,
            FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_EXISTING, 0, nullptr));
        EXPECT_TRUE(other.isValid());
        server.release();
    });
    EXPECT_EQ(first->download(server.url(), file, {}), exitstatus::success);
    EXPECT_EQ(content(file), "slow body");
    EXPECT_EQ(content(file + L"2"), "quick");
    EXPECT_EQ(first->getHttpStatus(), 200);
    EXPECT_EQ(second->getHttpStatus(), 203);
}

TEST_F(RealDownload, leavesNoLockWhenItsProcessIsKilled)
{
    const ScriptedServer server({answer("200 OK", "body")});
    const support::ChildTest child(L"download", server.url() + L"|" + file);
    EXPECT_EQ(child.wait(), 7u);
    EXPECT_TRUE(
        KernelHandle(CreateFileW(file.c_str(), GENERIC_WRITE, 0, nullptr, OPEN_EXISTING, 0, nullptr)).isValid());
    EXPECT_EQ(makeDownloader()->download(server.url(), file, {}), exitstatus::success);
    EXPECT_EQ(content(file), "body");
}

TEST_F(RealDownload, tellsTheServerWhoAsksAndWhatTheCallerAdds)
{
    const std::wstring name = L"HKEY_LOCAL_MACHINE\\SOFTWARE\\Vantorix\\Unitide";
    const ScriptedServer server({answer("200 OK")});
    const auto system = registry::createWin32Registry();
    const auto key = system->createKey(name, registry::allAccess, 0, registry::View::View32);
    key->setStringValue(L"Config", L"consumer");
    key->setStringValue(L"Version", L"1.2");
    const auto downloader = makeDownloader();
    downloader->download(server.url(), file, {{L"If-None-Match", L"a: b"}});
    system->deleteKey(name, registry::View::View32);
    downloader->download(server.url(), file, {});
    const auto requests = server.requests();
    EXPECT_THAT(requests.at(0), HasSubstr("User-Agent: Wget/1.11.4 VantorixTarnpatch (consumer, 1.2)\r\n"));
    EXPECT_THAT(requests.at(0), HasSubstr("If-None-Match: a: b\r\n"));
    EXPECT_THAT(requests.at(1), HasSubstr("User-Agent: Wget/1.11.4 VantorixTarnpatch\r\n"));
}

int main(int argc, char** argv)
{
    return support::mainWithChildren(argc, argv, {{"download", dieWhileDownloading}});
}
