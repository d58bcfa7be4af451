#include "serverprocess.h"

#include "support/scriptedserver.h"

#include <windows.h>

#include <cstdlib>
#include <stdexcept>

namespace {

constexpr char serveMode[] = "--serve";

} // namespace

ServerProcess::ServerProcess(unsigned mebibytes)
{
    SECURITY_ATTRIBUTES inherited = {sizeof inherited, nullptr, TRUE};
    HANDLE reading = nullptr;
    STARTUPINFOW start = {};
    start.cb = sizeof start;
    start.dwFlags = STARTF_USESTDHANDLES;
    CreatePipe(&reading, &start.hStdOutput, &inherited, 0);
    wchar_t program[MAX_PATH];
    GetModuleFileNameW(nullptr, program, MAX_PATH);
    std::wstring command = L"\"" + std::wstring(program) + L"\" --serve " + std::to_wstring(mebibytes);
    PROCESS_INFORMATION process = {};
    CreateProcessW(nullptr, command.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr, &start, &process);
    m_process = process.hProcess;
    CloseHandle(process.hThread);
    CloseHandle(start.hStdOutput);
    wchar_t url[64] = {};
    DWORD size = 0;
    const BOOL told = ReadFile(reading, url, sizeof url - sizeof *url, &size, nullptr);
    CloseHandle(reading);
    if (!told)
        throw std::runtime_error("the server does not start");
    m_url = url;
}

ServerProcess::~ServerProcess()
{
    TerminateProcess(m_process, 0);
    CloseHandle(m_process);
}

void ServerProcess::serveIfAsked(int argc, char** argv)
{
    if (argc != 3 || std::string(argv[1]) != serveMode)
        return;
    const auto times = static_cast<std::size_t>(std::atoi(argv[2]));
    support::Answer body =
        support::answer("200 OK", std::string(1 << 20, 'x'), "Content-Length: " + std::to_string(times << 20) + "\r\n");
    body.times = times;
    const support::ScriptedServer server({body});
    const std::wstring url = server.url();
    DWORD written = 0;
    WriteFile(GetStdHandle(STD_OUTPUT_HANDLE), url.data(), static_cast<DWORD>(url.size() * sizeof(wchar_t)), &written,
        nullptr);
    Sleep(INFINITE);
}
