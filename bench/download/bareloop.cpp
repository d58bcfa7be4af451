#include "bareloop.h"

#include <windows.h>

#include <wininet.h>

#include <stdexcept>
#include <vector>

void downloadBare(const std::wstring& url, const std::wstring& file)
{
    const HINTERNET session = InternetOpenW(L"bare", INTERNET_OPEN_TYPE_PRECONFIG, nullptr, nullptr, 0);
    const HINTERNET request = InternetOpenUrlW(session, url.c_str(), nullptr, 0, 0, 0);
    const HANDLE target = CreateFileW(
        file.c_str(), GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, CREATE_ALWAYS, 0, nullptr);
    std::vector<char> buffer(256 * 1024);
    bool good = true;
    for (DWORD read = 1; good && read > 0;) {
        DWORD written = 0;
        good = InternetReadFile(request, buffer.data(), static_cast<DWORD>(buffer.size()), &read) &&
               WriteFile(target, buffer.data(), read, &written, nullptr);
    }
    CloseHandle(target);
    InternetCloseHandle(request);
    InternetCloseHandle(session);
    if (!good)
        throw std::runtime_error("the bare loop fails");
}
