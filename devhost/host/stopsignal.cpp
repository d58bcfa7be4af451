#include "host/stopsignal.h"

#include <atomic>
#include <windows.h>

namespace devhost::host {

namespace {

std::atomic<HANDLE> consoleEvent;

BOOL WINAPI onConsoleControl(DWORD)
{
    const auto event = consoleEvent.load();
    return event && SetEvent(event);
}

} // namespace

StopSignal::StopSignal()
{
    consoleEvent = handle();
    SetConsoleCtrlHandler(onConsoleControl, TRUE);
}

StopSignal::~StopSignal()
{
    SetConsoleCtrlHandler(onConsoleControl, FALSE);
    consoleEvent = nullptr;
}

} // namespace devhost::host
