#include "program/program.h"
#include "tarnctl/commands.h"

#include <iostream>

int wmain(int count, wchar_t** texts)
{
    std::ios::sync_with_stdio(false);
    return tarnctl::runCommandLine(devhost::program::begin(count, texts), tarnctl::allCommands(), std::cout, std::cerr);
}
