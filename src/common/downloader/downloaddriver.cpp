#include "common/downloader/downloaddriver.h"

#include <windows.h>

#include <algorithm>

namespace vx::tarn::common {

void* DownloadDriver::createFile(const std::wstring& filename)
{
    const HANDLE file = CreateFileW(
        filename.c_str(), GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, CREATE_ALWAYS, 0, nullptr);
    if (file == INVALID_HANDLE_VALUE)
        return nullptr;
    return file;
}

bool DownloadDriver::writeFile(void* file, const void* data, unsigned long size)
{
    DWORD written = 0;
    return WriteFile(file, data, size, &written, nullptr) == TRUE;
}

void DownloadDriver::closeFile(void* file) noexcept
{
    CloseHandle(file);
}

unsigned long DownloadDriver::lastError()
{
    return GetLastError();
}

void DownloadDriver::pause(std::chrono::seconds length)
{
    using namespace std::chrono_literals;
    // The system's sleep takes milliseconds in 32 bits.
    while (length > 0s) {
        const std::chrono::seconds step = std::min<std::chrono::seconds>(length, 24h);
        Sleep(static_cast<DWORD>(std::chrono::milliseconds(step).count()));
        length -= step;
    }
}

} // namespace vx::tarn::common
