#pragma once

#include "vxtl/sync.h"

#include <functional>

namespace vx::tarn::common {

/// A start or stop under way that can be waited for, once. One thread. Moves, does not copy.
class ServiceOperation {
public:
    /// Blocks until the service is there: true. False on its time-out or once `cancel`, which may be
    /// null, has fired.
    using Wait = std::function<bool(const IWaitable* cancel)>;

    /// Nothing to wait on.
    ServiceOperation() = default;
    explicit ServiceOperation(Wait wait);
    ServiceOperation(ServiceOperation&& other) noexcept;
    ServiceOperation& operator=(ServiceOperation&& other) noexcept;

    /// Calls the wait. Throws std::logic_error "Subsequent call to wait" when there is nothing to wait on,
    /// the second time too, and what the wait throws.
    bool wait(const IWaitable* cancel = nullptr);

private:
    Wait m_wait;
};

} // namespace vx::tarn::common
