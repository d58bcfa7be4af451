#include "rows.h"

#include <cstdio>
#include <exception>

int main()
{
    try {
        bench::Comparison table("Deployments");
        comparePublishing(table);
        compareDerivation(table);
        compareQueuing(table);
        compareReading(table);
        return table.exitCode();
    } catch (const std::exception& e) {
        std::fprintf(stderr, "bench-deployments: %s\n", e.what());
        return 2;
    }
}
