#include "program/program.h"
#include "service/playedservice.h"
#include "service/updateservice.h"
#include "vxtl/guarded.h"

#include <cstdio>
#include <string>
#include <windows.h>

namespace {

void WINAPI serve(DWORD, wchar_t**)
{
    // A service that has not said that it stopped ends for the system with its process.
    if (!vx::guarded([] { devhost::service::PlayedService().run(); }))
        ExitProcess(1);
}

} // namespace

int wmain(int count, wchar_t** texts)
{
    devhost::program::begin(count, texts);
    std::wstring name = devhost::service::serviceName;
    const SERVICE_TABLE_ENTRYW services[] = {{name.data(), serve}, {nullptr, nullptr}};
    if (StartServiceCtrlDispatcherW(services))
        return 0;
    std::fputs(
        "wuservice: plays the Windows Update service; the system starts it: see tarnhost service --help\n", stderr);
    return 1;
}
