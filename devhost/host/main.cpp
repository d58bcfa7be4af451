#include "host/commandline.h"
#include "program/program.h"

#include <iostream>

int wmain(int count, wchar_t** texts)
{
    return devhost::host::runCommandLine(devhost::program::begin(count, texts), std::cout, std::cerr);
}
