#pragma once

#include <map>
#include <string>
#include <string_view>

namespace vx::tarn::common {

/// Name to value.
using HttpHeaders = std::map<std::wstring, std::wstring>;

/// Reads a server's header block, lines that end with CR LF. Names in lower case; the first of a name counts. A line
/// without ": ", as the status line, is no header. Never fails, whatever the text.
HttpHeaders parseHeaders(std::wstring_view text);

/// The headers as a request carries them, each with its line end; empty for none.
std::wstring headerText(const HttpHeaders& headers);

} // namespace vx::tarn::common
