#pragma once

#include <memory>

namespace devhost::store {

/// Security attributes that let the process's own user and administrators in, and nobody else.
class PipeSecurity {
public:
    /// Throws StoreException.
    PipeSecurity();
    ~PipeSecurity();
    PipeSecurity(const PipeSecurity&) = delete;
    PipeSecurity& operator=(const PipeSecurity&) = delete;

    /// A SECURITY_ATTRIBUTES, borrowed.
    void* attributes() const noexcept;

private:
    struct Attributes;
    std::unique_ptr<Attributes> m_attributes;
};

} // namespace devhost::store
