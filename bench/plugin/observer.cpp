#include "observer.h"

#include "reading.h"

#include <algorithm>
#include <chrono>
#include <stdexcept>
#include <string>
#include <vector>
#include <windows.h>

namespace {

constexpr int runs = 15;

double medianOf(const std::filesystem::path& folder, const wchar_t* arguments)
{
    std::vector<double> times;
    for (int i = 0; i < runs; ++i)
        times.push_back(runTarnctl(folder, arguments));
    std::ranges::sort(times);
    return times[times.size() / 2];
}

} // namespace

double runTarnctl(const std::filesystem::path& folder, const wchar_t* arguments)
{
    SECURITY_ATTRIBUTES inherited{sizeof(inherited), nullptr, TRUE};
    STARTUPINFOW startup{};
    startup.cb = sizeof(startup);
    startup.dwFlags = STARTF_USESTDHANDLES;
    startup.hStdOutput = startup.hStdError =
        CreateFileW(L"NUL", GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE, &inherited, OPEN_EXISTING, 0, nullptr);
    std::wstring line = L'"' + (folder / L"tarnctl.exe").native() + L"\" " + arguments;
    PROCESS_INFORMATION process{};
    const auto begin = std::chrono::steady_clock::now();
    const bool started =
        CreateProcessW(nullptr, line.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr, &startup, &process);
    CloseHandle(startup.hStdOutput);
    if (!started)
        throw std::runtime_error("tarnctl can't be started");
    WaitForSingleObject(process.hProcess, INFINITE);
    const std::chrono::duration<double, std::milli> time = std::chrono::steady_clock::now() - begin;
    CloseHandle(process.hThread);
    CloseHandle(process.hProcess);
    return time.count();
}

Observer::Observer(const std::filesystem::path& folder)
    : m_stop(CreateEventW(nullptr, TRUE, FALSE, nullptr)), m_thread([this, folder] {
          while (WaitForSingleObject(m_stop, 0) == WAIT_TIMEOUT)
              runTarnctl(folder, L"health");
      })
{}

Observer::~Observer()
{
    SetEvent(m_stop);
    m_thread.join();
    CloseHandle(m_stop);
}

bool measureHealth(const std::filesystem::path& folder)
{
    constexpr double reach = 300;
    const double bare = medianOf(folder, L"codes"), health = medianOf(folder, L"health");
    return printReading("tarnctl health beside a running host, p50 of 15", reading(bare, " ms"), reading(health, " ms"),
        reading(health / bare, "x"), "< 300 ms", health < reach);
}
