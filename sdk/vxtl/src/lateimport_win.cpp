// Every first call of a function of sdk/system-imports comes here, in place of the run-time library's own helper: that
// one goes on to the process's search path, where anyone may have put a library of the name, and ends in a structured
// exception.

#include "vxtl/str.h"
#include "vxtl/win32exception.h"

#include <windows.h>

#include <delayimp.h>

#include <cstddef>
#include <cstdint>

extern "C" const IMAGE_DOS_HEADER __ImageBase;

namespace vx {

namespace {

struct Missing {
    const char* library;
    const char* function;
    unsigned long error;
};

thread_local Missing missing;

/// Called in place of a function that is not there, with that one's arguments. The helper has returned by then, so
/// nothing that can't be unwound lies between here and the caller.
[[noreturn]] void throwMissing()
{
    VX_THROW_WIN32(missing.error,
        L"Can't import " + str::toUnicode(missing.function) + L" from " + str::toUnicode(missing.library));
}

template <typename T>
T* at(RVA offset) noexcept
{
    return reinterpret_cast<T*>(reinterpret_cast<std::uintptr_t>(&__ImageBase) + offset);
}

// The directory of 32-bit libraries by its own name: it is found also by a thread that has switched the
// redirection of system files off. A 32-bit system has but one directory, and no answer to the first question.
HMODULE loadFromSystemDirectory(const char* library) noexcept
{
    char path[2 * MAX_PATH];
    UINT length = GetSystemWow64DirectoryA(path, MAX_PATH);
    if (length == 0)
        length = GetSystemDirectoryA(path, MAX_PATH);
    if (length == 0 || length >= MAX_PATH)
        return nullptr;
    path[length] = '\\';
    lstrcpynA(path + length + 1, library, MAX_PATH - 1);
    return LoadLibraryExA(path, nullptr, LOAD_WITH_ALTERED_SEARCH_PATH);
}

const char* nameOf(const IMAGE_THUNK_DATA& import) noexcept
{
    return at<const char>(import.u1.AddressOfData + offsetof(IMAGE_IMPORT_BY_NAME, Name));
}

// The library's other functions too. Those that give back what this one is about to give are called by destructors,
// which can't pass on an exception.
void bindAll(HMODULE module, const IMAGE_THUNK_DATA* imports, FARPROC* slots) noexcept
{
    for (; imports->u1.AddressOfData != 0; ++imports, ++slots)
        if (const FARPROC function = GetProcAddress(module, nameOf(*imports)))
            *slots = function;
}

FARPROC fail(const char* library, const char* function, unsigned long error) noexcept
{
    missing = {library, function, error};
    return reinterpret_cast<FARPROC>(&throwMissing);
}

FARPROC bind(const ImgDelayDescr& imports, FARPROC* slot) noexcept
{
    const auto* const names = at<const IMAGE_THUNK_DATA>(imports.rvaINT);
    auto* const slots = at<FARPROC>(imports.rvaIAT);
    const auto* const library = at<const char>(imports.rvaDLLName);
    const auto* const function = nameOf(names[slot - slots]);
    const HMODULE module = loadFromSystemDirectory(library);
    if (!module)
        return fail(library, function, GetLastError());
    bindAll(module, names, slots);
    const FARPROC found = GetProcAddress(module, function);
    return found ? found : fail(library, function, ERROR_PROC_NOT_FOUND);
}

} // namespace

} // namespace vx

// The caller then jumps to what this gives.
extern "C" FARPROC WINAPI __delayLoadHelper2(const ImgDelayDescr* imports, FARPROC* slot)
{
    return vx::bind(*imports, slot);
}
