#pragma once

#include "libraries/systemobjects/answer.h"

#include <memory>
#include <nlohmann/json.hpp>

namespace devhost::systemobjects {

/// An object of named values that several objects share.
using Values = std::shared_ptr<nlohmann::json>;

/// What stands behind the functions get_NAME and put_NAME of an interface: members of the same name. A member that is
/// missing is 0, false, or no text at all, which is a success too.
class Properties {
public:
    struct Range {
        long lowest, highest;
    };

    Properties(const char* interfaceName, Values values) : m_interface(interfaceName), m_values(std::move(values)) {}

    HRESULT getText(const char* name, BSTR* text) const;
    HRESULT putText(const char* name, BSTR text) const;
    HRESULT getFlag(const char* name, VARIANT_BOOL* flag) const;
    HRESULT putFlag(const char* name, VARIANT_BOOL flag) const;
    template <typename Number>
    HRESULT getNumber(const char* name, Number* number) const
    {
        return answer(call("::get_", name), number, [&] {
            *number = static_cast<Number>(m_values->value(name, 0l));
            return S_OK;
        });
    }
    /// E_INVALIDARG for a number outside the range.
    HRESULT putNumber(const char* name, long number, Range range) const;

private:
    std::string call(const char* kind, const char* name) const { return std::string(m_interface) + kind + name; }

    const char* m_interface;
    Values m_values;
};

} // namespace devhost::systemobjects
