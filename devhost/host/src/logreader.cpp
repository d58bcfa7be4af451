#include "host/logreader.h"

#include "host/exitcode.h"
#include "host/systemtext.h"
#include "vxtl/str.h"

#include <array>
#include <utility>
#include <windows.h>

namespace devhost::host {

namespace {

// The logger keeps at most this many rotated files.
constexpr unsigned highestIndex = 100;
constexpr wchar_t byteOrderMark = 0xFEFF;

/// Damaged text must not end the reading.
std::string toUtf8(std::wstring_view line)
{
    const auto size =
        WideCharToMultiByte(CP_UTF8, 0, line.data(), static_cast<int>(line.size()), nullptr, 0, nullptr, nullptr);
    std::string text(static_cast<std::size_t>(size), '\0');
    WideCharToMultiByte(CP_UTF8, 0, line.data(), static_cast<int>(line.size()), text.data(), size, nullptr, nullptr);
    return text;
}

} // namespace

/// An open file of the log with its identity, which a rename does not change. While it is open, no other
/// file can get that identity.
class LogReader::File {
public:
    static std::unique_ptr<File> open(const std::filesystem::path& path)
    {
        const auto handle = CreateFileW(path.c_str(), GENERIC_READ,
            FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr, OPEN_EXISTING, 0, nullptr);
        if (handle != INVALID_HANDLE_VALUE)
            return std::unique_ptr<File>(new File(handle));
        const auto code = GetLastError();
        if (code != ERROR_FILE_NOT_FOUND && code != ERROR_PATH_NOT_FOUND)
            throw CommandError(ExitCode::Failed, "cannot read " + toText(path) + ": " + systemText(code));
        return nullptr;
    }
    ~File() { CloseHandle(m_handle); }
    File(const File&) = delete;
    File& operator=(const File&) = delete;

    bool isSame(const File& other) const { return m_identity == other.m_identity; }

    /// What was appended since the last call; whole characters only. Empty at the end.
    std::wstring_view readSome()
    {
        DWORD got = 0;
        OVERLAPPED place{};
        place.Offset = static_cast<DWORD>(m_offset);
        place.OffsetHigh = static_cast<DWORD>(m_offset >> 32);
        if (!ReadFile(m_handle, m_buffer.data(), sizeof(m_buffer), &got, &place))
            got = 0;
        m_offset += got - got % sizeof(wchar_t);
        return {m_buffer.data(), got / sizeof(wchar_t)};
    }

private:
    explicit File(HANDLE handle) : m_handle(handle)
    {
        BY_HANDLE_FILE_INFORMATION information{};
        GetFileInformationByHandle(handle, &information);
        m_identity = {information.dwVolumeSerialNumber, information.nFileIndexHigh, information.nFileIndexLow};
    }

    HANDLE m_handle;
    std::array<DWORD, 3> m_identity;
    std::uint64_t m_offset = 0;
    std::array<wchar_t, 16384> m_buffer;
};

LogReader::LogReader(std::filesystem::path file) : m_current(std::move(file)) {}

LogReader::~LogReader() = default;

std::filesystem::path LogReader::fileName(const std::filesystem::path& current, unsigned index)
{
    if (index == 0)
        return current;
    auto name = current;
    name.replace_extension(L"." + std::to_wstring(index) + current.extension().native());
    return name;
}

void LogReader::rewind()
{
    m_partial.clear();
    m_file.reset();
    for (unsigned index = 0; index <= highestIndex; ++index) {
        auto file = File::open(fileName(m_current, index));
        if (file)
            m_file = std::move(file);
        else if (index > 0) // the current file is missing for a moment in each rotation
            break;
    }
}

std::vector<std::string> LogReader::read()
{
    if (!m_file)
        m_file = File::open(m_current);
    if (m_file) {
        drain();
        while (advance())
            drain();
    }
    return std::exchange(m_lines, {});
}

/// Steps into the file that follows the present one. False when that is the current one, or when a
/// rotation is just going on; the next call finds it finished.
bool LogReader::advance()
{
    const auto isAt = [this](unsigned index) {
        const auto file = File::open(fileName(m_current, index));
        return file && file->isSame(*m_file);
    };
    if (isAt(0))
        return false;
    unsigned index = 1;
    while (index <= highestIndex && !isAt(index))
        ++index;
    const bool gone = index > highestIndex;
    auto next = gone ? nullptr : openSuccessor(index);
    // A rotation moves the older file first. So if the present file has not moved, the newer one opened
    // before this test was its direct successor.
    if (!gone && (!next || !isAt(index)))
        return false;
    // Only now is the present file certain to be complete.
    drain();
    if (!m_partial.empty())
        take(L"\n");
    if (gone)
        rewind();
    else
        m_file = std::move(next);
    return m_file != nullptr;
}

/// The next newer file. Within a rotation it may still bear its old number; then nothing may have come to
/// stand between the two while it was opened.
std::unique_ptr<LogReader::File> LogReader::openSuccessor(unsigned index) const
{
    for (unsigned newer = index; newer-- > 0;) {
        auto file = File::open(fileName(m_current, newer));
        if (!file)
            continue;
        for (unsigned between = newer + 1; between < index; ++between)
            if (File::open(fileName(m_current, between)))
                return nullptr;
        return file;
    }
    return nullptr;
}

void LogReader::drain()
{
    for (auto text = m_file->readSome(); !text.empty(); text = m_file->readSome())
        take(text);
}

void LogReader::take(std::wstring_view text)
{
    for (const wchar_t character : text) {
        if (character == L'\n') {
            if (m_partial.ends_with(L'\r'))
                m_partial.pop_back();
            m_lines.push_back(toUtf8(m_partial));
            m_partial.clear();
        } else if (character != byteOrderMark) {
            m_partial += character;
        }
    }
}

} // namespace devhost::host
