#include "bench/sandbox.h"
#include "logging-backend/processlogger.h"
#include "machine/system.h"
#include "rows.h"
#include "vxtl/comutils.h"

#include <cstdio>
#include <stdexcept>

namespace {

constexpr int infoLevel = 4;

int run()
{
    if (devhost::machine::thisSystem() != devhost::machine::System::Wine)
        throw std::runtime_error("this makes a task and asks for a reboot on the machine that it runs on: Wine only");
    const bench::Sandbox sandbox;
    const vx::comutils::ComApartment apartment;
    bench::Comparison table("What the plug-in does with Windows");
    VxQrlLogging::open("bench", "windows", infoLevel, 0);
    compareTaskUpdate(table);
    comparePollRounds(table);
    VxQrlLogging::close();
    return table.exitCode();
}

} // namespace

int main()
{
    try {
        return run();
    } catch (const std::exception& e) {
        std::fprintf(stderr, "bench-windows: %s\n", e.what());
        return 2;
    }
}
