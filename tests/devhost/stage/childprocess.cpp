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

ChildProcess::ChildProcess(
    const std::filesystem::path& program, const std::wstring& arguments, const std::filesystem::path& outputFolder)
    : m_outputFile(uniqueFile(outputFolder, ".out")), m_errorFile(uniqueFile(outputFolder, ".err"))
{
    const vx::KernelHandle output(createInheritable(m_outputFile));
    const vx::KernelHandle errors(createInheritable(m_errorFile));
    STARTUPINFOW startup{};
    startup.cb = sizeof(startup);
    startup.dwFlags = STARTF_USESTDHANDLES;
    startup.hStdOutput = output.get();
    startup.hStdError = errors.get();
    PROCESS_INFORMATION information{};
    auto line = L'"' + (programFolder() / program).native() + L"\" " + arguments;
    EXPECT_TRUE(
        CreateProcessW(nullptr, line.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr, &startup, &information))
        << "cannot start a program: error " << GetLastError();
    CloseHandle(information.hThread);
    m_process = std::make_unique<vx::KernelHandle>(information.hProcess);
}

ChildProcess::~ChildProcess()
{
    if (!m_process)
        return;
    TerminateProcess(m_process->get(), 1);
    WaitForSingleObject(m_process->get(), INFINITE);
}

std::optional<unsigned long> ChildProcess::wait(std::chrono::milliseconds timeout) const
{
    DWORD code = 0;
    if (WaitForSingleObject(m_process->get(), static_cast<DWORD>(timeout.count())) != WAIT_OBJECT_0 ||
        !GetExitCodeProcess(m_process->get(), &code))
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

std::vector<nlohmann::json> parseLines(const std::string& text)
{
    std::vector<nlohmann::json> values;
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);)
        values.push_back(nlohmann::json::parse(line));
    return values;
}

void writeFile(const std::filesystem::path& path, const std::string& text)
{
    std::ofstream(path, std::ios::binary) << text;
}

} // namespace support
