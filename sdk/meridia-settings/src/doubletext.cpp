#include "doubletext.h"

#include <cerrno>
#include <cwchar>
#include <stdexcept>

namespace vx::meridia {

double parseDouble(const std::wstring& text)
{
    wchar_t* end = nullptr;
    errno = 0;
    const double value = std::wcstod(text.c_str(), &end);
    if (end == text.c_str())
        throw std::invalid_argument("invalid stod argument");
    if (errno == ERANGE)
        throw std::out_of_range("stod argument out of range");
    return value;
}

std::wstring formatDouble(double value)
{
    return std::to_wstring(value);
}

} // namespace vx::meridia
