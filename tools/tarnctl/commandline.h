#pragma once

#include "tarnctl/exitcode.h"

#include <CLI/CLI.hpp>
#include <functional>
#include <iosfwd>
#include <string>
#include <vector>

namespace tarnctl {

/// What all commands are given.
struct Context {
    std::ostream& output;
    std::ostream& errors;
    bool json = false; ///< one JSON object per line is wanted
};

/// Adds a command to the program's; `choose` takes what is to be done if it is asked for.
using Action = std::function<ExitCode(const Context& context)>;
using Choose = std::function<void(Action)>;
using AddCommand = void (*)(CLI::App& app, const Choose& choose);

/// Does what the arguments (UTF-8, without the program's name) ask for; gives the program's exit code.
int runCommandLine(const std::vector<std::string>& arguments, const std::vector<AddCommand>& commands,
    std::ostream& output, std::ostream& errors);

} // namespace tarnctl
