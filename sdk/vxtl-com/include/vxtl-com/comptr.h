#pragma once

#include <utility>

namespace vx::com {

namespace details {
/// Throws ComException with E_POINTER.
[[noreturn]] void throwNull();
} // namespace details

/// One counted reference to a COM object, or none. The interface may be incomplete where a pointer is only declared, so
/// that headers need none of the system's. One thread at a time; a copy may go to another one of the apartment.
template <typename Interface>
class ComPtr {
public:
    ComPtr() = default;
    /// Adds a reference; null stands for none.
    explicit ComPtr(Interface* object) : m_object(object)
    {
        if (m_object)
            m_object->AddRef();
    }
    ComPtr(const ComPtr& other) : ComPtr(other.m_object) {}
    ComPtr(ComPtr&& other) noexcept : m_object(std::exchange(other.m_object, nullptr)) {}
    ComPtr& operator=(ComPtr other) noexcept
    {
        std::swap(m_object, other.m_object);
        return *this;
    }
    ~ComPtr() { reset(); }

    void reset() noexcept
    {
        if (Interface* const object = std::exchange(m_object, nullptr))
            object->Release();
    }
    /// Where a call is to put the reference that it gives. Lets the present one go.
    Interface** put() noexcept
    {
        reset();
        return &m_object;
    }

    Interface* get() const noexcept { return m_object; }
    explicit operator bool() const noexcept { return m_object != nullptr; }
    /// Both throw ComException with E_POINTER where there is none: a call may give none and still say that it
    /// succeeded.
    Interface& operator*() const
    {
        if (!m_object)
            details::throwNull();
        return *m_object;
    }
    Interface* operator->() const { return &**this; }

private:
    Interface* m_object = nullptr;
};

} // namespace vx::com
