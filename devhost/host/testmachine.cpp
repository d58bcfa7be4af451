#include "host/testmachine.h"

#include "host/exitcode.h"

#include <CLI/CLI.hpp>

namespace devhost::host {

void addTestMachine(CLI::App* command, MachineOptions& options)
{
    command->add_flag(
        "--test-machine", options.isTestMachine, "the machine is there for tests (needed on a real Windows)");
}

void requireTestMachine(const MachineOptions& options, machine::System system)
{
    if (system == machine::System::Windows && !options.isTestMachine)
        throw CommandError(ExitCode::Failed,
            "this is a real Windows, and the command is for the whole machine: say --test-machine if that is there "
            "for tests");
}

} // namespace devhost::host
