#include "common/utils/number.h"

#include <cerrno>
#include <cwchar>
#include <limits>
#include <stdexcept>

namespace vx::tarn::common::utils {

namespace {

// The standard library's own conversions name only the function that failed.
template <typename Number>
Number parse(const std::wstring& text, const std::string& function)
{
    using Limits = std::numeric_limits<Number>;
    const wchar_t* const begin = text.c_str();
    wchar_t* end = nullptr;
    errno = 0;
    const long long number = std::wcstoll(begin, &end, 10);
    if (end == begin)
        throw std::invalid_argument("invalid " + function + " argument");
    if (errno == ERANGE || number < Limits::min() || number > Limits::max())
        throw std::out_of_range(function + " argument out of range");
    return static_cast<Number>(number);
}

} // namespace

std::int32_t toInt32(const std::wstring& text)
{
    return parse<std::int32_t>(text, "stoi");
}

std::int64_t toInt64(const std::wstring& text)
{
    return parse<std::int64_t>(text, "stoll");
}

} // namespace vx::tarn::common::utils
