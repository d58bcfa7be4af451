#include "host/rebootcatch.h"

#include "host/exitcode.h"
#include "host/systemtext.h"
#include "vxtl/lock.h"

#include <windows.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <mutex>

namespace devhost::host {

namespace {

using Code = std::array<unsigned char, 5>;
using Function = BOOL WINAPI(UINT, DWORD);

vx::sync::Mutex mutex; // guards all below
RebootCatch::Listener current;
unsigned char* function = nullptr;
Code original;

void overwrite(const Code& code)
{
    DWORD protection = 0;
    VirtualProtect(function, code.size(), PAGE_EXECUTE_READWRITE, &protection);
    std::ranges::copy(code, function);
    VirtualProtect(function, code.size(), protection, &protection);
    FlushInstructionCache(GetCurrentProcess(), function, code.size());
}

BOOL WINAPI onExitWindows(UINT flags, DWORD reason);

void overwriteWithJump()
{
    const auto distance =
        reinterpret_cast<std::uintptr_t>(&onExitWindows) - reinterpret_cast<std::uintptr_t>(function) - sizeof(Code);
    Code jump{0xE9};
    std::memcpy(&jump[1], &distance, 4);
    overwrite(jump);
}

BOOL askSystem(UINT flags, DWORD reason)
{
    overwrite(original);
    const BOOL result = reinterpret_cast<Function*>(function)(flags, reason);
    const DWORD error = GetLastError();
    overwriteWithJump();
    SetLastError(error);
    return result;
}

FARPROC findExitWindows()
{
    // Never given back: who binds the library later is to get the same function.
    static const HMODULE library = LoadLibraryExW(L"user32.dll", nullptr, LOAD_LIBRARY_SEARCH_SYSTEM32);
    return library ? GetProcAddress(library, "ExitWindowsEx") : nullptr;
}

BOOL WINAPI onExitWindows(UINT flags, DWORD reason)
{
    const std::lock_guard lock(mutex);
    return current({flags, reason}) == RebootCatch::Answer::Begun ? TRUE : askSystem(flags, reason);
}

} // namespace

RebootCatch::RebootCatch(Listener listener)
{
    const FARPROC found = findExitWindows();
    if (!found)
        throw CommandError(ExitCode::Failed, "reboots cannot be caught: " + systemText(GetLastError()));
    const std::lock_guard lock(mutex);
    current = std::move(listener);
    function = reinterpret_cast<unsigned char*>(found);
    std::copy_n(function, original.size(), original.begin());
    overwriteWithJump();
}

RebootCatch::~RebootCatch()
{
    const std::lock_guard lock(mutex);
    overwrite(original);
    current = nullptr;
}

} // namespace devhost::host
