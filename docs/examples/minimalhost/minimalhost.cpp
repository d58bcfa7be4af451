// minimalhost [LIBRARY]: runs a plug-in, tarnhd.dll of this folder without a name, until Ctrl+C or the end of the
// input.

#include "qrl-plugin/hostrecords.h"

#include <cstdio>
#include <filesystem>
#include <windows.h>

namespace {

const HANDLE started = CreateEventW(nullptr, TRUE, FALSE, nullptr);
const HANDLE stopWanted = CreateEventW(nullptr, TRUE, FALSE, nullptr);

// On main's thread, inside main: takes note and returns, and calls nothing of the plug-in.
void VX_STDCALL reportPluginState(const char* plugin, std::uint32_t state)
{
    std::printf("%s: %s\n", plugin, state == 1 ? "started" : "stopped");
    std::fflush(stdout);
    if (state == 1)
        SetEvent(started);
}

DWORD WINAPI runMain(void* argument)
{
    auto* const record = static_cast<vx::qrl::pluginAPI*>(argument);
    return record->pluginMain(record);
}

DWORD WINAPI readInput(void*)
{
    char byte;
    DWORD count = 1;
    while (count != 0)
        ReadFile(GetStdHandle(STD_INPUT_HANDLE), &byte, 1, &count, nullptr);
    SetEvent(stopWanted);
    return 0;
}

BOOL WINAPI onConsoleEvent(DWORD event)
{
    SetEvent(stopWanted);
    // A console that closes, a log-off or a shutdown ends the process as soon as this returns.
    if (event != CTRL_C_EVENT && event != CTRL_BREAK_EVENT)
        Sleep(INFINITE);
    return TRUE;
}

void waitForEither(HANDLE first, HANDLE second)
{
    const HANDLE both[] = {first, second};
    WaitForMultipleObjects(2, both, FALSE, INFINITE);
}

DWORD run(vx::qrl::pluginAPI& record)
{
    const HANDLE main = CreateThread(nullptr, 0, runMain, &record, 0, nullptr);
    // A stop ahead of the start would keep the plug-in from running at all.
    waitForEither(started, main);
    CloseHandle(CreateThread(nullptr, 0, readInput, nullptr, 0, nullptr));
    waitForEither(stopWanted, main);
    if (WaitForSingleObject(main, 0) == WAIT_TIMEOUT)
        std::printf("stop returned %u\n", record.pluginStop(&record));
    // One that hangs runs the library's code still: no unload is safe, nor is an end that tells the libraries of it.
    if (WaitForSingleObject(main, 30'000) != WAIT_OBJECT_0)
        TerminateProcess(GetCurrentProcess(), 2);
    DWORD code = 0;
    GetExitCodeThread(main, &code);
    CloseHandle(main);
    return code;
}

DWORD fail(const char* what)
{
    std::fprintf(stderr, "%s: error %lu\n", what, GetLastError());
    return 1;
}

} // namespace

int wmain(int count, wchar_t** arguments)
{
    SetConsoleCtrlHandler(onConsoleEvent, TRUE);
    // A full path: a bare name would be looked for in other folders too.
    const auto path = std::filesystem::absolute(count > 1 ? arguments[1] : L"tarnhd.dll");
    const HMODULE library = LoadLibraryExW(path.c_str(), nullptr, LOAD_WITH_ALTERED_SEARCH_PATH);
    if (!library)
        return static_cast<int>(fail("the library can't be loaded"));
    const auto found = reinterpret_cast<void*>(GetProcAddress(library, "_QRLPluginInitialize@12"));
    const auto initialize = reinterpret_cast<vx::qrl::PluginInitializeFunction>(found);
    vx::qrl::hosterAPI hoster{0, reportPluginState};
    vx::qrl::pluginAPI record{};
    record.size = sizeof record;
    const bool isReady = initialize && initialize("tarnhd", &hoster, &record) == 0;
    const DWORD code = isReady ? run(record) : fail("the library is no plug-in, or refuses");
    FreeLibrary(library);
    std::printf("result %lu, unloaded\n", code);
    return static_cast<int>(code);
}
