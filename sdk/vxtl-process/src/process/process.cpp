#include "vxtl-process/process/process.h"

#include "process/accountlaunch.h"
#include "process/pipestreambuf.h"
#include "process/standardpipes.h"
#include "vxtl/win32exception.h"

#include <windows.h>

#include <filesystem>
#include <istream>
#include <ostream>

namespace vx::process {

namespace {

namespace fs = std::filesystem;

// Held as a base in front of the stream, so that it exists before the stream refers to it.
template <typename Buffer>
struct BufferHolder {
    explicit BufferHolder(void* pipe) : buffer(pipe) {}
    Buffer buffer;
};

template <typename Stream, typename Buffer>
class PipeStream : private BufferHolder<Buffer>, public Stream {
public:
    explicit PipeStream(void* pipe) : BufferHolder<Buffer>(pipe), Stream(&this->buffer) {}
};

using InputStream = PipeStream<std::istream, detail::ipipestreambuf>;
using OutputStream = PipeStream<std::ostream, detail::opipestreambuf>;

// The standard library takes "\\server" and "\\?" for folders of the current drive.
bool isAbsolute(const fs::path& path)
{
    const auto isSlash = [](wchar_t character) { return character == L'\\' || character == L'/'; };
    const std::wstring& text = path.native();
    return path.is_absolute() || (text.size() > 2 && isSlash(text[0]) && isSlash(text[1]));
}

// Not the standard library's question: that refuses each name with a question mark.
bool isThere(const fs::path& path)
{
    return GetFileAttributesW(path.c_str()) != INVALID_FILE_ATTRIBUTES;
}

fs::path makeAbsolute(const fs::path& path)
{
    if (isAbsolute(path))
        return path;
    std::error_code error;
    const fs::path current = fs::current_path(error);
    if (error)
        throw fs::filesystem_error("current_path(): can't get current working directory", error);
    return current / path;
}

/// Not quoted, blanks in the path or not: the application's name tells the system which file is meant.
std::wstring makeCommandLine(const fs::path& executable, const std::wstring& arguments)
{
    if (arguments.empty())
        return executable.wstring();
    return executable.wstring() + (arguments.starts_with(L' ') ? L"" : L" ") + arguments;
}

} // namespace

Process::Process(
    const std::wstring& commandLine, unsigned long flags, Redirect redirect, void* userToken, LaunchDriver& driver)
{
    VX_LOG_SCOPE();
    LaunchRequest request;
    request.commandLine = commandLine;
    request.flags = flags;
    createProcess(std::move(request), redirect, userToken, driver);
}

Process::Process(const std::wstring& executable, const std::wstring& arguments, const std::wstring& workingDirectory,
    const Credentials& credentials, LaunchDriver& driver)
{
    VX_LOG_SCOPE();
    const fs::path path = makeAbsolute(executable);
    if (!isThere(path))
        VX_THROW(BaseException, L"Executable file does not exists");
    LaunchRequest request;
    request.application = path.wstring();
    request.commandLine = makeCommandLine(path, arguments);
    request.workingDirectory = workingDirectory.empty() ? path.parent_path().wstring() : workingDirectory;
    createProcess(std::move(request), credentials, driver);
}

Process::~Process()
{
    // They refer to the pipes, which are destroyed before them otherwise.
    m_stdinStream.reset();
    m_stdoutStream.reset();
    m_stderrStream.reset();
}

std::uint32_t Process::getReturnCode() const
{
    DWORD code = 0;
    if (!GetExitCodeProcess(m_process->get(), &code)) {
        const DWORD error = GetLastError();
        VX_THROW_WIN32(error);
    }
    return code;
}

void Process::createProcess(LaunchRequest request, Redirect redirect, void* userToken, LaunchDriver& driver)
{
    const StandardPipes pipes(redirect);
    request.standardHandles = pipes.childHandles();
    // cppcheck-suppress accessMoved ; the branches exclude each other
    keep(userToken ? launchWithToken(std::move(request), userToken, driver) : driver.create(request));
    m_stdinPipe = pipes.input();
    m_stdoutPipe = pipes.output();
    m_stderrPipe = pipes.error();
    if (m_stdinPipe)
        m_stdinStream = std::make_unique<OutputStream>(m_stdinPipe->get());
    if (m_stdoutPipe)
        m_stdoutStream = std::make_unique<InputStream>(m_stdoutPipe->get());
    if (m_stderrPipe)
        m_stderrStream = std::make_unique<InputStream>(m_stderrPipe->get());
}

void Process::createProcess(LaunchRequest request, const Credentials& credentials, LaunchDriver& driver)
{
    if (!credentials.user.empty()) {
        keep(launchWithCredentials(std::move(request), credentials, driver));
        return;
    }
    request.flags = CREATE_NO_WINDOW | CREATE_DEFAULT_ERROR_MODE;
    keep(driver.create(request));
}

void Process::keep(LaunchedProcess launched)
{
    m_process = std::move(launched.process);
    m_thread = std::move(launched.thread);
}

} // namespace vx::process
