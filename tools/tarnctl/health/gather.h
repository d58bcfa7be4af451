#pragma once

#include "settings-api/exceptions.h"
#include "tarnctl/health/facts.h"
#include "vxtl/exception.h"
#include "vxtl/str.h"

#include <exception>
#include <nlohmann/json.hpp>
#include <stdexcept>
#include <string>
#include <typeinfo>

namespace tarnctl::health {

/// Why an exception was thrown, in UTF-8; not where, which is for those who build the program.
inline std::string textOf(const std::exception& exception)
{
    const auto* own = dynamic_cast<const vx::BaseException*>(&exception);
    return own ? vx::str::toUtf8Lossy(vx::str::trim(own->reason())) : exception.what();
}

/// What was read is missing, or not what it should be.
class WrongError : public std::runtime_error {
    using std::runtime_error::runtime_error;
};

/// Whether an exception tells of a wrong value, and not of one that can't be read.
inline bool tellsOfWrongValue(const std::exception& exception)
{
    return dynamic_cast<const WrongError*>(&exception) || dynamic_cast<const nlohmann::json::exception*>(&exception) ||
           dynamic_cast<const vx::settings::InvalidTypeException*>(&exception) ||
           dynamic_cast<const vx::settings::InvalidValueException*>(&exception) ||
           // A text that no enumerator has, or a number out of range.
           dynamic_cast<const std::logic_error*>(&exception) ||
           // A value of the registry that has another type: what the system refuses is a child of it.
           typeid(exception) == typeid(vx::BaseException);
}

/// Keeps what `read` gives, or what it throws as the fact's trouble.
template <typename T, typename Read>
void gather(Fact<T>& fact, Read read)
{
    try {
        fact.value = read();
    } catch (const std::exception& exception) {
        fact.trouble = textOf(exception);
        fact.isWrong = tellsOfWrongValue(exception);
    }
}

} // namespace tarnctl::health
