#include "program/program.h"
#include "tarnctl/commandline.h"
#include "tarnctl/log/logcommand.h"
#include "tarnctl/why/whycommand.h"

#include <iostream>

int wmain(int count, wchar_t** texts)
{
    std::ios::sync_with_stdio(false);
    return tarnctl::runCommandLine(devhost::program::begin(count, texts),
        {tarnctl::log::addLogCommand, tarnctl::why::addWhyCommand}, std::cout, std::cerr);
}
