#include "host/commandline.h"
#include "vxtl/str.h"

#include <cstdio>
#include <fcntl.h>
#include <io.h>
#include <windows.h>

int wmain(int count, wchar_t** texts)
{
    // A fault of the plug-in must end the host with a code, not with a dialog that nobody answers.
    SetErrorMode(SEM_FAILCRITICALERRORS | SEM_NOGPFAULTERRORBOX);
    SetConsoleOutputCP(CP_UTF8);
    // Lines end alike for a script of any kind that reads them.
    _setmode(_fileno(stdout), _O_BINARY);
    _setmode(_fileno(stderr), _O_BINARY);
    std::vector<std::string> arguments;
    for (int i = 1; i < count; ++i)
        arguments.push_back(vx::str::toUtf8(texts[i]));
    return devhost::host::runCommandLine(arguments);
}
