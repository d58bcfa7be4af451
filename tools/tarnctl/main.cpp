#include "program/program.h"
#include "tarnctl/commandline.h"
#include "tarnctl/health/healthcommand.h"
#include "tarnctl/log/logcommand.h"
#include "tarnctl/tablescommand.h"
#include "tarnctl/why/whycommand.h"

#include <iostream>

int wmain(int count, wchar_t** texts)
{
    std::ios::sync_with_stdio(false);
    return tarnctl::runCommandLine(devhost::program::begin(count, texts),
        {tarnctl::health::addHealthCommand, tarnctl::why::addWhyCommand, tarnctl::log::addLogCommand,
            tarnctl::addTablesCommands},
        std::cout, std::cerr);
}
