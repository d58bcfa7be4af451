#pragma once

namespace vx::comutils {

namespace details {
/// Enters the multithreaded apartment. Throws ComException "CoInitializeEx failed".
void initializeCom();
} // namespace details

/// Keeps the thread that made it in the multithreaded apartment; to be destroyed on the same thread.
class ComApartment {
public:
    /// Throws ComException.
    ComApartment() { details::initializeCom(); }
    ~ComApartment();
    ComApartment(const ComApartment&) = delete;
    ComApartment& operator=(const ComApartment&) = delete;
};

} // namespace vx::comutils
