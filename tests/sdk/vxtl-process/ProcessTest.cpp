#include "vxtl/process/process.h"
#include "ownaccount.h"
#include "support/childtest.h"
#include "support/logcapture.h"
#include "support/thrown.h"
#include "vxtl/users/useraccount.h"
#include "vxtl/win32exception.h"

#include <winternl.h>

#include <algorithm>
#include <filesystem>
#include <iostream>
#include <iterator>
#include <span>

using namespace vx;
using namespace vx::process;
using support::thrown;
using testing::HasSubstr;
namespace fs = std::filesystem;

namespace {

constexpr unsigned long deadlineMs = 30000;
const std::wstring none;
constexpr unsigned long tokenFlags = CREATE_NO_WINDOW | CREATE_UNICODE_ENVIRONMENT;

std::wstring self()
{
    wchar_t path[MAX_PATH];
    return {path, GetModuleFileNameW(nullptr, path, MAX_PATH)};
}

std::wstring selfAsChild(const std::wstring& part)
{
    return L"\"" + self() + L"\" --child " + part;
}

std::uint32_t exitCode(const Process& process)
{
    EXPECT_TRUE(sync::waitForSingleObject(process, deadlineMs));
    return process.getReturnCode();
}

struct SystemHandle {
    ULONG owner;
    BYTE type;
    BYTE flags;
    USHORT value;
    void* object;
    ULONG access;
};

/// Counted in the system's own list: GetProcessHandleCount isn't everywhere more than a stub.
std::ptrdiff_t openHandles()
{
    constexpr auto systemHandleInformation = static_cast<SYSTEM_INFORMATION_CLASS>(16);
    std::vector<ULONG> list(1 << 18);
    ULONG size = 0;
    EXPECT_EQ(NtQuerySystemInformation(systemHandleInformation, list.data(), list.size() * sizeof(ULONG), &size), 0);
    const std::span handles(reinterpret_cast<const SystemHandle*>(list.data() + 1), list[0]);
    return std::ranges::count(handles, GetCurrentProcessId(), &SystemHandle::owner);
}

int echo()
{
    std::string line;
    std::getline(std::cin, line);
    std::cout << "out " << line << std::flush;
    std::cerr << "err " << line << std::flush;
    return 3;
}

int drain()
{
    return static_cast<int>(std::distance(std::istreambuf_iterator<char>(std::cin), {}));
}

int cwd()
{
    return fs::exists("elsewhere") ? 5 : 6;
}

} // namespace

TEST(Process, failsOnWhatIsNotThere)
{
    const auto missing =
        thrown<BaseException>([] { Process(L"no such folder\\no such program.exe", none, none, Credentials()); });
    EXPECT_EQ(missing.reason(), L"Executable file does not exists") << "the system was asked";
    EXPECT_THAT(missing.what(), HasSubstr("Function: vx::process::Process::Process,"));
    for (const auto& [token, reason] : {std::pair<SharedHandle, const wchar_t*>(nullptr, L"Can't create process"),
             {ownToken(), L"CreateProcessAsUser failed"}}) {
        void* const user = token ? token->get() : nullptr;
        const auto failure =
            thrown<Win32Exception>([&] { Process(L"nosuchprogram.exe", tokenFlags, Redirect::StandardOutput, user); });
        EXPECT_EQ(failure.reason(), reason);
        EXPECT_EQ(failure.code(), ERROR_FILE_NOT_FOUND);
        EXPECT_THAT(failure.what(), HasSubstr("Function: vx::process::Process::createProcess,"));
        HANDLE thread = nullptr;
        EXPECT_FALSE(OpenThreadToken(GetCurrentThread(), TOKEN_QUERY, TRUE, &thread)) << "still impersonated";
    }
}

TEST(Process, talksThroughTheRedirectedStreamsOnly)
{
    const auto all = Redirect::StandardInput | Redirect::StandardOutput | Redirect::StandardError;
    Process process(selfAsChild(L"echo"), 0, all, nullptr);
    *process.stdinStream() << "hello\n";
    EXPECT_EQ(exitCode(process), 3u);
    std::string out(9, ' ');
    EXPECT_TRUE(process.stdoutStream()->read(out.data(), 9));
    EXPECT_EQ(out, "out hello");
    // The child's ends are closed here, so its death is seen instead of waited for.
    EXPECT_EQ(process.stdoutStream()->get(), EOF);
    EXPECT_TRUE(process.stdoutStream()->bad());
    EXPECT_TRUE(process.stdinStream()->write("x", 1).bad());

    Process output(selfAsChild(L"exit1"), 0, Redirect::StandardOutput, nullptr);
    EXPECT_FALSE(output.stdinStream());
    EXPECT_TRUE(output.stdoutStream());
    EXPECT_FALSE(output.stderrStream());
}

TEST(Process, letsTheChildSeeTheEndOfItsInputWhenDestroyed)
{
    SharedHandle handle;
    {
        Process process(selfAsChild(L"drain"), 0, Redirect::StandardInput, nullptr);
        handle = process.processHandle();
        EXPECT_EQ(process.getReturnCode(), STILL_ACTIVE);
        *process.stdinStream() << "1234567";
    }
    if (!sync::details::waitForSingleObject(handle->get(), deadlineMs)) {
        TerminateProcess(handle->get(), 1);
        FAIL() << "the child still waits for input";
    }
    DWORD code = 0;
    EXPECT_TRUE(GetExitCodeProcess(handle->get(), &code));
    EXPECT_EQ(code, 7u);
}

TEST(Process, startsAnExecutableWhosePathHasBlanksInItsOwnFolder)
{
    const fs::path folder = fs::temp_directory_path() / "vxtl process test";
    fs::remove_all(folder);
    fs::create_directories(folder / "elsewhere");
    fs::copy_file(self(), folder / "the child.exe");
    const std::wstring child = folder / "the child.exe";
    EXPECT_EQ(exitCode(Process(child, L"--child cwd", none, Credentials())), 5u);
    EXPECT_EQ(exitCode(Process(child, L"--child cwd", folder / "elsewhere", Credentials())), 6u);
    std::error_code busy;
    fs::remove_all(folder, busy);
}

TEST(Process, runsUnderTheCallersOwnToken)
{
    support::LogCapture log;
    const SharedHandle token = ownToken();
    Process process(selfAsChild(L"exit42"), tokenFlags, Redirect::None, token->get());
    EXPECT_EQ(exitCode(process), 42u);
    EXPECT_EQ(log.count(" with credentials: '"), 1u);
    EXPECT_GT(users::UserAccount(token->get()).user().size(), 0u);
}

TEST(Process, leavesNoHandleOpenWhateverHappens)
{
    const SharedHandle token = ownToken();
    const auto all = Redirect::StandardInput | Redirect::StandardOutput | Redirect::StandardError;
    const auto round = [&] {
        exitCode(Process(selfAsChild(L"exit1"), tokenFlags, all, token->get()));
        EXPECT_THROW(Process(L"nosuchprogram.exe", tokenFlags, all, token->get()), Win32Exception);
        EXPECT_THROW(Process(L"nosuchprogram.exe", 0, all, nullptr), Win32Exception);
        return openHandles();
    };
    round(); // the system loads libraries of its own
    const std::ptrdiff_t before = round();
    ASSERT_GT(before, 0);
    EXPECT_EQ(round(), before);
}

TEST(Process, tellsWhyWhenTheTokenMayNotBeDuplicated)
{
    const SharedHandle token = ownToken(TOKEN_QUERY);
    EXPECT_THROW(Process(selfAsChild(L"exit1"), tokenFlags, Redirect::None, token->get()), Win32Exception);
}

int main(int argc, char** argv)
{
    return support::mainWithChildren(argc, argv,
        {{"echo", echo}, {"drain", drain}, {"cwd", cwd}, {"exit1", [] { return 1; }}, {"exit42", [] { return 42; }}});
}
