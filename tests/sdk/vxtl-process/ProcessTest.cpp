#include "vxtl-process/process/process.h"
#include "fakedrivers.h"
#include "support/childtest.h"
#include "support/footprint.h"
#include "support/thrown.h"
#include "vxtl/win32exception.h"

#include <windows.h>

#include <filesystem>
#include <iostream>
#include <iterator>

using namespace vx;
using namespace vx::process;
using support::thrown;
namespace fs = std::filesystem;

namespace {

constexpr unsigned long deadlineMs = 30000;
constexpr unsigned long tokenFlags = CREATE_NO_WINDOW | CREATE_UNICODE_ENVIRONMENT;
constexpr auto all = Redirect::StandardInput | Redirect::StandardOutput | Redirect::StandardError;
const std::wstring none;

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

TEST(Process, talksThroughTheRedirectedStreamsOnly)
{
    Process process(selfAsChild(L"echo"), 0, all, nullptr);
    (*process.stdinStream() << "h\xffllo").put('\n'); // with a byte that is no end of the stream
    std::string out(9, ' ');
    EXPECT_EQ(process.stdoutStream()->peek(), 'o') << "although it may still have to come";
    EXPECT_TRUE(process.stdoutStream()->read(out.data(), 9));
    EXPECT_EQ(out, "out h\xffllo");
    EXPECT_EQ(exitCode(process), 3u);
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
    sync::details::waitForSingleObject(handle->get(), deadlineMs);
    TerminateProcess(handle->get(), 1); // only a child that still waits for input
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
    EXPECT_EQ(exitCode(Process(L"\\\\?\\" + child, L"--child cwd", none, Credentials())), 5u);
    const auto missing = thrown<BaseException>([&] { Process(child + L"?", none, none, Credentials()); });
    EXPECT_EQ(missing.reason(), L"Executable file does not exists");
    std::error_code busy;
    fs::remove_all(folder, busy);
}

TEST(Process, leavesNoHandleOpenWhateverHappens)
{
    const SharedHandle token = ownToken();
    const auto failure = [&](void* user) {
        return thrown<Win32Exception>([&] { Process(L"nosuchprogram.exe", tokenFlags, all, user); });
    };
    const auto round = [&] {
        EXPECT_EQ(exitCode(Process(selfAsChild(L"exit1"), tokenFlags, all, token->get())), 1u);
        EXPECT_EQ(failure(nullptr).reason(), L"Can't create process");
        EXPECT_EQ(failure(token->get()).code(), ERROR_FILE_NOT_FOUND);
        return support::footprint().handles;
    };
    round(); // the system loads libraries of its own
    const std::ptrdiff_t before = round();
    ASSERT_GT(before, 0);
    EXPECT_EQ(round(), before);
}

int main(int argc, char** argv)
{
    return support::mainWithChildren(
        argc, argv, {{"echo", echo}, {"drain", drain}, {"cwd", cwd}, {"exit1", [] { return 1; }}});
}
