#include "program/program.h"

#include "vxtl/str.h"

#include <cstdio>
#include <fcntl.h>
#include <io.h>
#include <windows.h>

namespace devhost::program {

std::vector<std::string> begin(int count, wchar_t** texts)
{
    // Without it a dialog that nobody answers would keep the process.
    SetErrorMode(SEM_FAILCRITICALERRORS | SEM_NOGPFAULTERRORBOX);
    SetConsoleOutputCP(CP_UTF8);
    _setmode(_fileno(stdout), _O_BINARY);
    _setmode(_fileno(stderr), _O_BINARY);
    std::vector<std::string> arguments;
    for (int i = 1; i < count; ++i)
        arguments.push_back(vx::str::toUtf8(texts[i]));
    return arguments;
}

std::filesystem::path ownFolder()
{
    wchar_t path[MAX_PATH];
    GetModuleFileNameW(nullptr, path, MAX_PATH);
    return std::filesystem::path(path).parent_path();
}

} // namespace devhost::program
