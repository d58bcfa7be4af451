#pragma once

#include "delay-load/librarysearch.h"
#include "delay-load/loadresult.h"
#include "vxtl/lock.h"

#include <functional>
#include <map>
#include <memory>
#include <string>

namespace vx::delayload {

/// A library found at run time, for the initialiser that binds its functions. A function that the library lacks
/// ends the bootstrap with status FunctionNotFound and both names.
class LateLibrary {
public:
    /// `loader` is borrowed.
    LateLibrary(ILoader& loader, Module module, std::string name)
        : m_loader(loader), m_module(module), m_name(std::move(name))
    {}

    /// Fills one pointer of a typed table. The type is the caller's promise.
    template <typename Function>
    void bind(Function*& target, const char* name) const
    {
        target = reinterpret_cast<Function*>(find(name));
    }
    /// Calls a function that takes nothing and whose result is not used.
    void call(const char* name) const;

private:
    void* find(const char* name) const;

    ILoader& m_loader;
    Module m_module;
    std::string m_name;
};

/// Given to an initialiser for the length of one bootstrap.
class LateBinder {
public:
    /// Finds a library, or has it from an earlier bootstrap. A library that is nowhere ends the bootstrap with
    /// status ModuleNotFound and its name, an empty name with status Other.
    virtual LateLibrary load(const std::string& name) = 0;

protected:
    ~LateBinder() = default;
};

/// Loads a library, calls its own initialiser and binds the functions that the program uses.
using Initializer = std::function<void(LateBinder&)>;

/// Runs initialisers, one after another in the whole process, and tells how each ended. Any thread; a library may
/// bootstrap others from within.
class Bootstrap {
public:
    explicit Bootstrap(std::shared_ptr<ILoader> loader) : m_loader(std::move(loader)) {}
    Bootstrap(const Bootstrap&) = delete;
    Bootstrap& operator=(const Bootstrap&) = delete;

    /// Exceptions of the initialiser's own pass on, and leave `result` as it was.
    LoadStatus initialize(const LoadContext& context, const Initializer& initializer, LoadResult& result);

private:
    class Binder;
    Module load(const LoadContext& context, const std::string& name);

    std::shared_ptr<ILoader> m_loader;
    sync::RecursiveMutex m_mutex;
    std::map<std::string, Module> m_modules; ///< guarded by m_mutex
};

/// Bootstraps one of the host's libraries by the process-wide rules: no directory of the caller's, the executable's
/// directory first.
LoadStatus delayLoadInitialize(std::uint32_t component, const Initializer& initializer, LoadResult& result);
/// The same by the caller's rules.
LoadStatus delayLoadInitialize(const LoadContext& context, const Initializer& initializer, LoadResult& result);

/// The number of this program's component.
inline constexpr std::uint32_t ownComponent = 100;

/// Bootstraps a library of this program's into a table of its functions, which `bind` fills.
template <typename Table>
LoadResult loadInto(Table& table, void (*bind)(LateBinder& binder, Table& table))
{
    LoadResult result{};
    delayLoadInitialize(
        ownComponent, [&](LateBinder& binder) { bind(binder, table); }, result);
    return result;
}

} // namespace vx::delayload
