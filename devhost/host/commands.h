#pragma once

#include "host/context.h"
#include "host/exitcode.h"

#include <CLI/CLI.hpp>
#include <functional>
#include <memory>
#include <utility>

namespace devhost::host {

/// What the program can be asked for. Commands of one kind are a family: the file NAMEcommands.cpp adds them, with
/// their options, in a function NAMECommands(Commands&), and CMakeLists.txt lists NAME. All actions may throw
/// CommandError, or StoreException when the store is not there or refuses.
class Commands {
public:
    using Action = std::function<ExitCode(const Context& context)>;

    /// The app is borrowed.
    explicit Commands(CLI::App& app) : m_app(app) {}
    Commands(const Commands&) = delete;
    Commands& operator=(const Commands&) = delete;

    /// Adds a command that does `action`.
    CLI::App* add(const char* name, const char* help, Action action)
    {
        auto* command = m_app.add_subcommand(name, help);
        command->callback([this, action = std::move(action)] { m_chosen = action; });
        return command;
    }
    /// Adds one with options; what they are to be bound to lives as long as the app.
    template <typename Options>
    std::pair<CLI::App*, Options&> add(
        const char* name, const char* help, ExitCode (*action)(const Context& context, const Options& options))
    {
        const auto options = std::make_shared<Options>();
        return {add(name, help, [=](const Context& context) { return action(context, *options); }), *options};
    }

    /// The action of the command that was asked for, once the app has parsed a command line; empty for none.
    const Action& chosen() const { return m_chosen; }

private:
    CLI::App& m_app;
    Action m_chosen;
};

/// Adds all families, in the order of CMakeLists.txt.
void addFamilies(Commands& commands);

/// How many seconds a command may be told to wait.
inline const CLI::Range waitableSeconds(1u, 86'400u);

} // namespace devhost::host
