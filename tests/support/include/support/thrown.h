#pragma once

#include <stdexcept>

namespace support {

/// What the operation throws. Ends the test as failed when that is nothing or of another kind.
template <typename Exception, typename Operation>
Exception thrown(Operation operation)
{
    try {
        operation();
    } catch (const Exception& exception) {
        return exception;
    }
    throw std::logic_error("nothing was thrown");
}

} // namespace support
