#include "clockahead.h"

#include <algorithm>
#include <cstring>
#include <winternl.h>

namespace rig {

namespace {

std::int64_t ahead = 0;

std::int64_t realTime()
{
    LARGE_INTEGER time{};
    NtQuerySystemTime(&time);
    return time.QuadPart;
}

void WINAPI readClock(FILETIME* result)
{
    const std::int64_t time = realTime() + ahead;
    std::memcpy(result, &time, sizeof time);
}

} // namespace

ClockAhead::ClockAhead(std::int64_t now)
{
    ahead = (now + 11'644'473'600) * 10'000'000 - realTime();
    for (auto& [name, code, bytes] : m_functions) {
        code = reinterpret_cast<unsigned char*>(GetProcAddress(GetModuleHandleW(L"kernel32.dll"), name));
        if (!code)
            continue;
        std::copy_n(code, bytes.size(), bytes.begin());
        const auto distance = reinterpret_cast<std::uintptr_t>(&readClock) - reinterpret_cast<std::uintptr_t>(code) - 5;
        std::array<unsigned char, 5> jump{0xE9};
        std::memcpy(&jump[1], &distance, 4);
        overwrite(code, jump);
    }
}

ClockAhead::~ClockAhead()
{
    for (const auto& [name, code, bytes] : m_functions)
        if (code)
            overwrite(code, bytes);
}

void ClockAhead::overwrite(unsigned char* code, const std::array<unsigned char, 5>& bytes)
{
    DWORD protection = 0;
    VirtualProtect(code, bytes.size(), PAGE_EXECUTE_READWRITE, &protection);
    std::ranges::copy(bytes, code);
    VirtualProtect(code, bytes.size(), protection, &protection);
    FlushInstructionCache(GetCurrentProcess(), code, bytes.size());
}

} // namespace rig
