#pragma once

#include <cstddef>
#include <new>
#include <utility>

namespace vx {

/// For a static object that other threads, or the loader at the end of the process, may still need: it is made where
/// it stands, in memory that can't be short, and never destroyed. What it holds is left behind with the module.
template <typename T>
class NoDestructor {
public:
    template <typename... Arguments>
    explicit NoDestructor(Arguments&&... arguments)
    {
        new (m_memory) T(std::forward<Arguments>(arguments)...);
    }
    NoDestructor(const NoDestructor&) = delete;
    NoDestructor& operator=(const NoDestructor&) = delete;

    T& operator*() noexcept { return *operator->(); }
    T* operator->() noexcept { return std::launder(reinterpret_cast<T*>(m_memory)); }

private:
    alignas(T) std::byte m_memory[sizeof(T)];
};

} // namespace vx
