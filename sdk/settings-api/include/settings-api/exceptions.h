#pragma once

#include "vxtl/exception.h"

#include <memory>
#include <string>

namespace vx::settings {

/// Root of what goes wrong with one setting; carries the setting's name beside the reason. A null name
/// stands for an empty one. Throw the children through VX_THROW(vx::settings::NotFoundException, name).
class SettingsException : public BaseException {
public:
    SettingsException(
        const wchar_t* setting, const wchar_t* reason, const wchar_t* function, const wchar_t* file, unsigned line);

    void report(std::wostream& stream) const override;

    const std::wstring& setting() const noexcept { return *m_setting; }

protected:
    void reportAs(const wchar_t* typeName, std::wostream& stream) const;

private:
    std::shared_ptr<const std::wstring> m_setting;
};

namespace details {

/// A child of the family: `Kind` gives `typeName` and `reason`.
template <typename Kind>
class KindOfSettingsException : public SettingsException {
public:
    KindOfSettingsException(const wchar_t* setting, const wchar_t* function, const wchar_t* file, unsigned line)
        : SettingsException(setting, Kind::reason, function, file, line)
    {}
    KindOfSettingsException(const std::wstring& setting, const wchar_t* function, const wchar_t* file, unsigned line)
        : KindOfSettingsException(setting.c_str(), function, file, line)
    {}

    void report(std::wostream& stream) const override { reportAs(Kind::typeName, stream); }
};

// The names and reasons of the children, in the words that administrators know.
struct InvalidType {
    static constexpr const wchar_t* typeName = L"vx::settings::InvalidTypeException";
    static constexpr const wchar_t* reason = L"Setting has an invalid type";
};
struct InvalidValue {
    static constexpr const wchar_t* typeName = L"vx::settings::InvalidValueException";
    static constexpr const wchar_t* reason = L"Setting has an invalid value";
};
struct NotFound {
    static constexpr const wchar_t* typeName = L"vx::settings::NotFoundException";
    static constexpr const wchar_t* reason = L"Setting in not found";
};
struct AccessDenied {
    static constexpr const wchar_t* typeName = L"vx::settings::AccessDeniedException";
    static constexpr const wchar_t* reason = L"Access to the setting is denied";
};
struct ServerUnreachable {
    static constexpr const wchar_t* typeName = L"vx::settings::ServerUnreachableException";
    static constexpr const wchar_t* reason = L"Settings server is unreachable";
};

} // namespace details

using InvalidTypeException = details::KindOfSettingsException<details::InvalidType>;
using InvalidValueException = details::KindOfSettingsException<details::InvalidValue>;
using NotFoundException = details::KindOfSettingsException<details::NotFound>;
using AccessDeniedException = details::KindOfSettingsException<details::AccessDenied>;
using ServerUnreachableException = details::KindOfSettingsException<details::ServerUnreachable>;

} // namespace vx::settings
