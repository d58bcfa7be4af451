#pragma once

#include <string>

namespace vx::tarn::common::utils {

/// The URL as a value inside another one: the bytes of its UTF-8 form as they are where they are letters, digits,
/// "-", ".", "~" or "_", the others as percent codes. A percent sign stays as it is, codes of the URL's own among
/// them, but in front of "20". Throws Win32Exception when the text is no UTF-16. Any thread.
std::wstring escapeUrl(const std::wstring& url);

} // namespace vx::tarn::common::utils
