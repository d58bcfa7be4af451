#pragma once

#include <string>

namespace devhost::host {

class Printer;
class StopSignal;

/// What every command works with; the references outlive the command.
struct Context {
    std::wstring instance;
    Printer& printer;
    StopSignal& stop;
};

} // namespace devhost::host
