#include <string>
#include <windows.h>

#include <delayimp.h>

namespace {

// The directory of 32-bit libraries by its own name: it is found also by a thread that has switched the
// redirection of system files off. A 32-bit system has but one directory, and no answer to the first question.
std::string systemDirectory()
{
    char path[MAX_PATH];
    UINT length = GetSystemWow64DirectoryA(path, MAX_PATH);
    if (length == 0)
        length = GetSystemDirectoryA(path, MAX_PATH);
    return {path, length};
}

// By full path only: along the process's search path anyone may have put a library of that name.
FARPROC WINAPI loadFromSystemDirectory(unsigned step, DelayLoadInfo* import)
{
    if (step != dliNotePreLoadLibrary)
        return nullptr;
    const std::string path = systemDirectory() + '\\' + import->szDll;
    return reinterpret_cast<FARPROC>(LoadLibraryExA(path.c_str(), nullptr, LOAD_WITH_ALTERED_SEARCH_PATH));
}

} // namespace

PfnDliHook __pfnDliNotifyHook2 = loadFromSystemDirectory;
