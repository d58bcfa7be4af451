#include "barefile.h"

#include <algorithm>
#include <windows.h>

namespace {

unsigned long long seekEnd(HANDLE file)
{
    LARGE_INTEGER end{};
    SetFilePointerEx(file, LARGE_INTEGER{}, &end, FILE_END);
    return static_cast<unsigned long long>(end.QuadPart);
}

void writeAll(HANDLE file, std::wstring_view text)
{
    DWORD written = 0;
    WriteFile(file, text.data(), static_cast<DWORD>(text.size() * sizeof(wchar_t)), &written, nullptr);
}

} // namespace

BareFile::BareFile(const std::wstring& folder, const std::wstring& stem, unsigned rotateCount)
{
    for (unsigned i = 0; i <= rotateCount; ++i)
        m_names.push_back(folder + L"\\" + stem + (i ? L"." + std::to_wstring(i) : L"") + L".log");
    std::wstring name = m_names[0];
    std::replace(name.begin(), name.end(), L'\\', L'_');
    m_mutex = CreateMutexW(nullptr, FALSE, (L"Global\\bare_" + name).c_str());
    open();
}

BareFile::~BareFile()
{
    CloseHandle(m_file);
    CloseHandle(m_mutex);
}

void BareFile::open()
{
    m_file = CreateFileW(m_names[0].c_str(), GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
        nullptr, OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (seekEnd(m_file) == 0)
        writeAll(m_file, L"\xFEFF");
}

void BareFile::append(std::wstring_view record)
{
    WaitForSingleObject(m_mutex, INFINITE);
    seekEnd(m_file);
    writeAll(m_file, record);
    ReleaseMutex(m_mutex);
}

void BareFile::appendRotating(std::wstring_view record, unsigned long long maxSize)
{
    WaitForSingleObject(m_mutex, INFINITE);
    if (seekEnd(m_file) >= maxSize) {
        CloseHandle(m_file);
        open();
        if (seekEnd(m_file) >= maxSize) {
            // cppcheck-suppress doubleFree ; open() has stored another handle
            CloseHandle(m_file);
            rotate();
            open();
        }
    }
    writeAll(m_file, record);
    ReleaseMutex(m_mutex);
}

void BareFile::rotate()
{
    DeleteFileW(m_names.back().c_str());
    for (std::size_t n = m_names.size() - 1; n-- > 0;)
        MoveFileExW(m_names[n].c_str(), m_names[n + 1].c_str(), MOVEFILE_REPLACE_EXISTING);
}
