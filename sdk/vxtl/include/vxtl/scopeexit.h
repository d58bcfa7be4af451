#pragma once

#include <utility>

namespace vx {

/// Calls a function, which must not throw, on every way out of a scope, unless it is dismissed before. A stack object.
template <typename Function>
class ScopeExit {
public:
    explicit ScopeExit(Function function) : m_function(std::move(function)) {}
    ~ScopeExit()
    {
        if (m_armed)
            m_function();
    }
    ScopeExit(const ScopeExit&) = delete;
    ScopeExit& operator=(const ScopeExit&) = delete;

    void dismiss() noexcept { m_armed = false; }

private:
    Function m_function;
    bool m_armed = true;
};

} // namespace vx
