#include "settings-api/exceptions.h"

#include <ostream>

namespace vx::settings {

SettingsException::SettingsException(
    const wchar_t* setting, const wchar_t* reason, const wchar_t* function, const wchar_t* file, unsigned line)
    : BaseException(reason, function, file, line),
      m_setting(std::make_shared<const std::wstring>(setting ? setting : L""))
{}

void SettingsException::report(std::wostream& stream) const
{
    reportAs(L"vx::settings::SettingsException", stream);
}

void SettingsException::reportAs(const wchar_t* typeName, std::wostream& stream) const
{
    stream << L"Type: " << typeName << L", Setting: " << setting() << L", Reason: " << reason();
    reportPlace(stream);
}

} // namespace vx::settings
