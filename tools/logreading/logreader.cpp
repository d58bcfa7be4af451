#include "logreading/logreader.h"

#include "logging-backend/location.h"
#include "vxtl/handle.h"
#include "vxtl/str.h"
#include "vxtl/win32exception.h"

#include <array>
#include <cstdint>
#include <utility>
#include <windows.h>

namespace logreading {

namespace {

// The logger keeps at most this many rotated files.
constexpr unsigned highestIndex = 100;

std::wstring systemText(DWORD code)
{
    return vx::str::trim(vx::Win32ErrorCategory::emptyReason(code));
}

/// NAME.log for 0, NAME.1.log for 1.
std::filesystem::path fileName(const std::filesystem::path& current, unsigned index)
{
    if (index == 0)
        return current;
    auto name = current;
    name.replace_extension(L"." + std::to_wstring(index) + current.extension().native());
    return name;
}

} // namespace

std::filesystem::path logLocation()
{
    using namespace VxQrlLogging;
    return std::filesystem::path(logFolder(makerFolder(Location::Machine), L"tarn")) / L"tarnhd.log";
}

/// Where reading stands while no file is open. The system's number of a file may be given to another one
/// once the file is deleted, so its first bytes belong to its identity, as far as they were there.
struct LogReader::Position {
    std::array<DWORD, 3> number;
    std::string head;
    std::uint64_t offset;
};

/// An open file of the log. While it is open no other file can get its number.
class LogReader::File {
public:
    static std::unique_ptr<File> open(const std::filesystem::path& path)
    {
        const auto handle = CreateFileW(path.c_str(), GENERIC_READ,
            FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr, OPEN_EXISTING, 0, nullptr);
        if (handle != INVALID_HANDLE_VALUE)
            return std::unique_ptr<File>(new File(handle));
        const auto code = GetLastError();
        // A file that was deleted while somebody had it open keeps its name for a while.
        if (code != ERROR_FILE_NOT_FOUND && code != ERROR_PATH_NOT_FOUND && code != ERROR_DELETE_PENDING)
            VX_THROW_WIN32(code, L"cannot read " + path.native() + L": " + systemText(code));
        return nullptr;
    }

    bool isSame(const File& other) const { return m_number == other.m_number; }
    bool isAt(const Position& position) const
    {
        const auto head = readHead();
        // The shorter one is of a file that has shrunk to less since.
        return m_number == position.number && (head.starts_with(position.head) || position.head.starts_with(head));
    }
    /// False, and at the beginning, when the file has shrunk to less than that.
    bool seek(const Position& position)
    {
        LARGE_INTEGER size{};
        GetFileSizeEx(m_handle.get(), &size);
        const bool isThere = position.offset <= static_cast<std::uint64_t>(size.QuadPart);
        m_offset = isThere ? position.offset : 0;
        return isThere;
    }
    Position position() const { return {m_number, readHead(), m_offset}; }

    /// What was appended since the last call. Empty at the end, also at one that has come closer since.
    std::string_view readSome()
    {
        const auto got = readAt(m_offset, m_buffer.data(), static_cast<DWORD>(m_buffer.size()));
        m_offset += got;
        return {m_buffer.data(), got};
    }

private:
    static constexpr DWORD headSize = 256;

    explicit File(HANDLE handle) : m_handle(handle)
    {
        BY_HANDLE_FILE_INFORMATION information{};
        GetFileInformationByHandle(handle, &information);
        m_number = {information.dwVolumeSerialNumber, information.nFileIndexHigh, information.nFileIndexLow};
    }

    DWORD readAt(std::uint64_t offset, void* buffer, DWORD size) const
    {
        DWORD got = 0;
        OVERLAPPED place{};
        place.Offset = static_cast<DWORD>(offset);
        place.OffsetHigh = static_cast<DWORD>(offset >> 32);
        if (ReadFile(m_handle.get(), buffer, size, &got, &place))
            return got;
        if (const auto code = GetLastError(); code != ERROR_HANDLE_EOF)
            VX_THROW_WIN32(code, L"cannot read on: " + systemText(code));
        return 0;
    }

    std::string readHead() const
    {
        std::string head(headSize, '\0');
        head.resize(readAt(0, head.data(), headSize));
        return head;
    }

    vx::KernelHandle m_handle;
    std::array<DWORD, 3> m_number;
    std::uint64_t m_offset = 0;
    std::array<char, 65536> m_buffer;
};

LogReader::LogReader(std::filesystem::path file) : m_current(std::move(file)) {}

LogReader::~LogReader() = default;

void LogReader::rewind()
{
    m_splitter = {};
    m_position.reset();
    if (const auto oldest = openOldest())
        m_position = std::make_unique<Position>(oldest->position());
}

void LogReader::read(const LineSplitter::Sink& sink)
{
    m_file = m_position ? reopen(sink) : File::open(m_current);
    if (m_file) {
        drain(sink);
        while (advance(sink))
            drain(sink);
        m_position = std::make_unique<Position>(m_file->position());
        // Between the calls nothing is open: the logger could not replace a file that somebody holds.
        m_file.reset();
    }
}

std::unique_ptr<LogReader::File> LogReader::openOldest() const
{
    std::unique_ptr<File> oldest;
    for (unsigned index = 0; index <= highestIndex; ++index) {
        auto file = File::open(fileName(m_current, index));
        if (file)
            oldest = std::move(file);
        else if (index > 0) // the current file is missing for a moment in each rotation
            break;
    }
    return oldest;
}

/// The file in which reading stood. Files only move up, so one walk up cannot miss it. When it is gone, the
/// oldest one that is left.
std::unique_ptr<LogReader::File> LogReader::reopen(const LineSplitter::Sink& sink)
{
    for (unsigned index = 0; index <= highestIndex; ++index) {
        auto file = File::open(fileName(m_current, index));
        if (file && file->isAt(*m_position)) {
            if (!file->seek(*m_position))
                m_splitter.finish(sink);
            return file;
        }
    }
    m_splitter.finish(sink);
    return openOldest();
}

/// Steps into the file that follows the present one. False when that is the current one, or when a
/// rotation is just going on; the next call finds it finished.
bool LogReader::advance(const LineSplitter::Sink& sink)
{
    const auto isAt = [this](unsigned index) {
        const auto file = File::open(fileName(m_current, index));
        return file && file->isSame(*m_file);
    };
    unsigned index = 0;
    while (index <= highestIndex && !isAt(index))
        ++index;
    if (index == 0)
        return false;
    auto next = index > highestIndex ? openOldest() : openSuccessor(index);
    // A rotation moves the older file first. So if the present file has not moved, the newer one opened
    // before this test was its direct successor.
    if (!next || (index <= highestIndex && !isAt(index)))
        return false;
    // Only now is the present file certain to be complete.
    drain(sink);
    m_splitter.finish(sink);
    m_file = std::move(next);
    return true;
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

void LogReader::drain(const LineSplitter::Sink& sink)
{
    for (auto bytes = m_file->readSome(); !bytes.empty(); bytes = m_file->readSome())
        m_splitter.take(bytes, sink);
}

} // namespace logreading
