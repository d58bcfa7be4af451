#pragma once

#include <string>

/// Downloads the URL into the file with the system's calls and nothing around them. Throws std::runtime_error.
void downloadBare(const std::wstring& url, const std::wstring& file);
