#include "filteredcalls.h"
#include "rotationrace.h"
#include "writtenrecord.h"

#include <cstdio>
#include <exception>

int main(int argc, char** argv)
{
    if (argc > 1 && std::string_view(argv[1]) == racerMode)
        return runRacer(argc, argv);
    try {
        const bench::LogSandbox sandbox;
        bench::Comparison table("The log");
        compareFilteredCalls(table);
        compareWrittenRecords(table, sandbox);
        compareRotatingRecords(table, sandbox);
        compareRotationRace(table, sandbox);
        return table.exitCode();
    } catch (const std::exception& e) {
        std::fprintf(stderr, "bench-logging: %s\n", e.what());
        return 2;
    }
}
