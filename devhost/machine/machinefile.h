#pragma once

#include "machine/machinestate.h"

#include <filesystem>
#include <functional>

// The state is one file for all processes of the machine. Each call reads it anew under a mutex that they share, which
// it waits for; any thread. The calls throw StoreException when the file can't be used, and the JSON library's errors
// when it does not hold a state.
namespace devhost::machine {

/// The file that the environment variable TARNHD_MACHINE names; Vantorix\Development\machine.json below the folder of
/// programs' data without it.
std::filesystem::path machineFile();

MachineState readState();

/// Puts the changed state in place of the old as a whole, unless it is the same; when `change` throws, nothing changes.
void changeState(const std::function<void(MachineState&)>& change);

} // namespace devhost::machine
