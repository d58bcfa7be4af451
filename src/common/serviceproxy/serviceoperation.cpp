#include "common/serviceproxy/serviceoperation.h"

#include <stdexcept>
#include <utility>

namespace vx::tarn::common {

ServiceOperation::ServiceOperation(Wait wait) : m_wait(std::move(wait)) {}

ServiceOperation::ServiceOperation(ServiceOperation&& other) noexcept : m_wait(std::exchange(other.m_wait, nullptr)) {}

ServiceOperation& ServiceOperation::operator=(ServiceOperation&& other) noexcept
{
    m_wait = std::exchange(other.m_wait, nullptr);
    return *this;
}

bool ServiceOperation::wait(const IWaitable* cancel)
{
    const Wait wait = std::exchange(m_wait, nullptr);
    if (!wait)
        throw std::logic_error("Subsequent call to wait");
    return wait(cancel);
}

} // namespace vx::tarn::common
