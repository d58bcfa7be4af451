#pragma once

#include "ipc/signal.h"

namespace devhost::host {

/// The user's wish that the program ends: set by Ctrl-C, by the closing of the console, or by the program
/// itself. One object per process.
class StopSignal : public ipc::Signal {
public:
    StopSignal();
    ~StopSignal();
};

} // namespace devhost::host
