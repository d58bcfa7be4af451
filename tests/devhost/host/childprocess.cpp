#include "childprocess.h"

#include <atomic>
#include <fstream>
#include <gtest/gtest.h>
#include <sstream>
#include <windows.h>

namespace support {

namespace {

std::atomic<int> serial{0};

std::filesystem::path uniqueFile(const std::filesystem::path& folder, const char* kind)
{
    return folder / (std::to_string(++serial) + kind);
}

HANDLE createInheritable(const std::filesystem::path& path)
{
    SECURITY_ATTRIBUTES attributes{sizeof(attributes), nullptr, TRUE};
    return CreateFileW(path.c_str(), GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, &attributes,
        CREATE_ALWAYS, 0, nullptr);
}

} // namespace

ChildProcess::ChildProcess(const std::wstring& commandLine, const std::filesystem::path& outputFolder)
    : m_outputFile(uniqueFile(outputFolder, ".out")), m_errorFile(uniqueFile(outputFolder, ".err")), m_process(nullptr)
{
    STARTUPINFOW startup{};
    startup.cb = sizeof(startup);
    startup.dwFlags = STARTF_USESTDHANDLES;
    startup.hStdOutput = createInheritable(m_outputFile);
    startup.hStdError = createInheritable(m_errorFile);
    PROCESS_INFORMATION information{};
    auto line = commandLine;
    if (CreateProcessW(nullptr, line.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr, &startup, &information)) {
        CloseHandle(information.hThread);
        m_process = information.hProcess;
    } else {
        ADD_FAILURE() << "cannot start a program: error " << GetLastError();
    }
    CloseHandle(startup.hStdOutput);
    CloseHandle(startup.hStdError);
}

ChildProcess::~ChildProcess()
{
    kill();
    CloseHandle(m_process);
}

void ChildProcess::kill()
{
    if (!wait(std::chrono::milliseconds(0))) {
        TerminateProcess(m_process, 1);
        WaitForSingleObject(m_process, INFINITE);
    }
}

std::optional<unsigned long> ChildProcess::wait(std::chrono::milliseconds timeout)
{
    DWORD code = 0;
    if (WaitForSingleObject(m_process, static_cast<DWORD>(timeout.count())) != WAIT_OBJECT_0 ||
        !GetExitCodeProcess(m_process, &code))
        return std::nullopt;
    return code;
}

std::string ChildProcess::output() const
{
    return readFile(m_outputFile);
}

std::string ChildProcess::errors() const
{
    return readFile(m_errorFile);
}

std::filesystem::path programFolder()
{
    wchar_t path[MAX_PATH];
    GetModuleFileNameW(nullptr, path, MAX_PATH);
    return std::filesystem::path(path).parent_path();
}

TemporaryFolder::TemporaryFolder()
    : m_path(std::filesystem::temp_directory_path() /
             ("tarnhost-test-" + std::to_string(GetCurrentProcessId()) + "-" + std::to_string(++serial)))
{
    std::filesystem::remove_all(m_path);
    std::filesystem::create_directories(m_path);
}

TemporaryFolder::~TemporaryFolder()
{
    std::error_code ignored;
    std::filesystem::remove_all(m_path, ignored);
}

std::string readFile(const std::filesystem::path& path)
{
    std::ifstream file(path, std::ios::binary);
    std::ostringstream text;
    text << file.rdbuf();
    return text.str();
}

void writeFile(const std::filesystem::path& path, const std::string& text)
{
    std::ofstream(path, std::ios::binary) << text;
}

} // namespace support
