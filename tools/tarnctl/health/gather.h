#pragma once

#include "tarnctl/health/facts.h"
#include "vxtl/exception.h"
#include "vxtl/str.h"

#include <exception>
#include <string>

namespace tarnctl::health {

/// Why an exception was thrown, in UTF-8; not where, which is for those who build the program.
inline std::string textOf(const std::exception& exception)
{
    const auto* own = dynamic_cast<const vx::BaseException*>(&exception);
    return own ? vx::str::toUtf8Lossy(vx::str::trim(own->reason())) : exception.what();
}

/// Keeps what `read` gives, or what it throws as the fact's trouble.
template <typename T, typename Read>
void gather(Fact<T>& fact, Read read)
{
    try {
        fact.value = read();
    } catch (const std::exception& exception) {
        fact.trouble = textOf(exception);
    }
}

} // namespace tarnctl::health
