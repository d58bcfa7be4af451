#include "delay-load/bootstrap.h"

#include "vxtl/str.h"

#include <algorithm>
#include <cstring>

namespace vx::delayload {

namespace {

/// Ends an initialiser; never leaves the bootstrap.
struct LateLoadFailure {
    LoadStatus status;
    std::string library;
    std::string function;
};

template <std::size_t Size>
void copyBounded(char (&target)[Size], const std::string& text)
{
    std::memcpy(target, text.data(), std::min(text.size(), Size));
}

} // namespace

void* LateLibrary::find(const char* name) const
{
    void* const function = m_loader.findFunction(m_module, name);
    if (!function)
        throw LateLoadFailure{LoadStatus::FunctionNotFound, m_name, name};
    return function;
}

void LateLibrary::call(const char* name) const
{
    // Without arguments the two conventions are the same.
    reinterpret_cast<void(VX_CDECL*)()>(find(name))();
}

class Bootstrap::Binder final : public LateBinder {
public:
    Binder(Bootstrap& bootstrap, const LoadContext& context) : m_bootstrap(bootstrap), m_context(context) {}

    LateLibrary load(const std::string& name) override
    {
        return LateLibrary(*m_bootstrap.m_loader, m_bootstrap.load(m_context, name), name);
    }

private:
    Bootstrap& m_bootstrap;
    const LoadContext& m_context;
};

Module Bootstrap::load(const LoadContext& context, const std::string& name)
{
    if (name.empty())
        throw LateLoadFailure{LoadStatus::Other, {}, {}};
    if (const auto known = m_modules.find(name); known != m_modules.end())
        return known->second;
    const Module module = findLibrary(*m_loader, context, str::toUnicode(name));
    if (!module)
        throw LateLoadFailure{LoadStatus::ModuleNotFound, name, {}};
    m_modules[name] = module;
    return module;
}

LoadStatus Bootstrap::initialize(const LoadContext& context, const Initializer& initializer, LoadResult& result)
{
    const std::lock_guard lock(m_mutex);
    LoadResult record{};
    try {
        if (!initializer)
            throw LateLoadFailure{LoadStatus::Other, {}, {}};
        Binder binder(*this, context);
        initializer(binder);
    } catch (const LateLoadFailure& failure) {
        record.status = failure.status;
        copyBounded(record.library, failure.library);
        copyBounded(record.function, failure.function);
    }
    result = record;
    return record.status;
}

} // namespace vx::delayload
