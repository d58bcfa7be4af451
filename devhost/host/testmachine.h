#pragma once

#include "machine/system.h"

namespace CLI {
class App;
}

namespace devhost::host {

/// What commands for the whole machine have in common; on a real Windows it would be somebody's.
struct MachineOptions {
    bool isTestMachine = false;
};

/// Adds --test-machine; the options outlive the command.
void addTestMachine(CLI::App* command, MachineOptions& options);

/// Throws CommandError on a real Windows that is not said to be there for tests.
void requireTestMachine(const MachineOptions& options, machine::System system = machine::thisSystem());

} // namespace devhost::host
