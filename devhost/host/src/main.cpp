#include "host/commandline.h"
#include "vxtl/str.h"

#include <windows.h>

int wmain(int count, wchar_t** texts)
{
    // A fault of the plug-in must end the host with a code, not with a dialog that nobody answers.
    SetErrorMode(SEM_FAILCRITICALERRORS | SEM_NOGPFAULTERRORBOX);
    SetConsoleOutputCP(CP_UTF8);
    std::vector<std::string> arguments;
    for (int i = 1; i < count; ++i)
        arguments.push_back(vx::str::toUtf8(texts[i]));
    return devhost::host::runCommandLine(arguments);
}
