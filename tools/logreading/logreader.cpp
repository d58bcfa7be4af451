#include "logreading/logreader.h"

#include "logging-backend/location.h"
#include "vxtl/handle.h"
#include "vxtl/scopeexit.h"
#include "vxtl/str.h"
#include "vxtl/win32exception.h"

#include <array>
#include <cstdint>
#include <optional>
#include <utility>
#include <windows.h>

extern "C" LONG NTAPI RtlGetLastNtStatus();

namespace logreading {

namespace {

// The logger keeps at most this many rotated files.
constexpr unsigned highestIndex = 100;
constexpr std::size_t bufferSize = 262'144;

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

/// Which file it is. The system's number of a file may be given to another one once the file is deleted, so its first
/// bytes belong to its identity, as far as they were there.
struct LogReader::Identity {
    std::array<DWORD, 3> number{};
    std::string head;
};

/// Where reading stands while no file is open.
struct LogReader::Position {
    Identity file;
    std::optional<Identity> older; ///< the file before it, if there was one
    std::uint64_t offset = 0;
};

/// An open file of the log. While it is open no other file can get its number.
class LogReader::File {
public:
    static std::unique_ptr<File> open(const std::filesystem::path& path)
    {
        const auto handle = CreateFileW(path.c_str(), GENERIC_READ,
            FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr, OPEN_EXISTING, 0, nullptr);
        if (handle != INVALID_HANDLE_VALUE)
            return std::unique_ptr<File>(new File(path, handle));
        const auto code = GetLastError();
        if (code != ERROR_FILE_NOT_FOUND && code != ERROR_PATH_NOT_FOUND && !isBeingDeleted(code))
            fail(path, code);
        return nullptr;
    }

    bool isSame(const File& other) const { return m_number == other.m_number; }
    bool hasNumber(const Identity& identity) const { return m_number == identity.number; }
    bool is(const Identity& identity) const { return hasNumber(identity) && readHead().starts_with(identity.head); }
    bool isAt(const Position& position) const { return is(position.file) && size() >= position.offset; }
    Identity identity() const { return {m_number, readHead()}; }
    std::uint64_t offset() const { return m_offset; }
    void seek(std::uint64_t offset) { m_offset = offset; }

    /// What was appended since the last call. Empty at the end, also at one that has come closer since.
    std::string_view readSome(std::vector<char>& buffer)
    {
        const auto got = readAt(m_offset, buffer.data(), static_cast<DWORD>(buffer.size()));
        m_offset += got;
        return {buffer.data(), got};
    }

private:
    static constexpr DWORD headSize = 256;

    File(std::filesystem::path path, HANDLE handle) : m_path(std::move(path)), m_handle(handle)
    {
        BY_HANDLE_FILE_INFORMATION information{};
        GetFileInformationByHandle(handle, &information);
        m_number = {information.dwVolumeSerialNumber, information.nFileIndexHigh, information.nFileIndexLow};
    }

    /// A file that was deleted while somebody had it open keeps its name for a while. Only the system's own status
    /// tells that from a lack of rights.
    static bool isBeingDeleted(DWORD code)
    {
        constexpr LONG deletePending = static_cast<LONG>(0xC0000056);
        return code == ERROR_DELETE_PENDING || (code == ERROR_ACCESS_DENIED && RtlGetLastNtStatus() == deletePending);
    }

    [[noreturn]] static void fail(const std::filesystem::path& path, DWORD code)
    {
        const auto reason = vx::str::trim(vx::Win32ErrorCategory::emptyReason(code));
        VX_THROW_WIN32(code, L"cannot read " + path.native() + L": " + reason);
    }

    std::uint64_t size() const
    {
        LARGE_INTEGER size{};
        GetFileSizeEx(m_handle.get(), &size);
        return static_cast<std::uint64_t>(size.QuadPart);
    }

    DWORD readAt(std::uint64_t offset, void* buffer, DWORD size) const
    {
        DWORD got = 0;
        OVERLAPPED place{};
        place.Offset = static_cast<DWORD>(offset);
        place.OffsetHigh = static_cast<DWORD>(offset >> 32);
        if (ReadFile(m_handle.get(), buffer, size, &got, &place))
            return got;
        const auto code = GetLastError();
        if (code != ERROR_HANDLE_EOF)
            fail(m_path, code);
        return 0;
    }

    std::string readHead() const
    {
        std::string head(headSize, '\0');
        head.resize(readAt(0, head.data(), headSize));
        return head;
    }

    std::filesystem::path m_path;
    vx::KernelHandle m_handle;
    std::array<DWORD, 3> m_number;
    std::uint64_t m_offset = 0;
};

LogReader::LogReader(std::filesystem::path file, PassedOver passedOver)
    : m_current(std::move(file)), m_passedOver(std::move(passedOver))
{}

LogReader::~LogReader() = default;

bool LogReader::rewind()
{
    m_splitter = {};
    m_position.reset();
    if (const auto oldest = openOldest())
        notePosition(*oldest);
    return m_position != nullptr;
}

void LogReader::read(const LineSplitter::Sink& sink)
{
    // Between the calls nothing is open: the logger could not replace a file that somebody holds.
    const vx::ScopeExit closing([this] { m_file.reset(); });
    m_file = m_position ? reopen(sink) : open(0);
    if (!m_file)
        return;
    // Before anything is told: the call may end by an exception anywhere, and the next one tells nothing twice.
    notePosition(*m_file);
    drain(sink);
    while (advance(sink))
        drain(sink);
    notePosition(*m_file);
}

std::unique_ptr<LogReader::File> LogReader::open(unsigned index)
{
    try {
        return File::open(fileName(m_current, index));
    } catch (const vx::Win32Exception& exception) {
        if (!m_passedOver)
            throw;
        ++m_passedOverCount;
        m_passedOver(exception);
        return nullptr;
    }
}

/// A number may be missing, for a moment in each rotation or for good; what lies beyond it is older all the same.
std::unique_ptr<LogReader::File> LogReader::openOldest()
{
    std::unique_ptr<File> oldest;
    for (unsigned index = 0; index <= highestIndex; ++index)
        if (auto file = open(index))
            oldest = std::move(file);
    return oldest;
}

void LogReader::notePosition(const File& file)
{
    auto position = std::make_unique<Position>(Position{file.identity(), std::nullopt, file.offset()});
    for (unsigned index = 0; index <= highestIndex; ++index) {
        const auto candidate = open(index);
        if (!candidate || !candidate->isSame(file))
            continue;
        if (const auto older = open(index + 1))
            position->older = older->identity();
        break;
    }
    m_position = std::move(position);
}

/// Whether the file of this index, with the number of the one in which reading stood, is that one and was cut.
/// Another one that was given the number is newer, and comes after another file.
bool LogReader::wasCut(unsigned index)
{
    const auto older = open(index + 1);
    const auto& known = m_position->older;
    return known ? older && older->is(*known) : !older;
}

/// The file in which reading stood. Files only move up, so one walk up cannot miss it. When it is gone, the
/// oldest one that is left. Null when it may be one that can't be opened now.
std::unique_ptr<LogReader::File> LogReader::reopen(const LineSplitter::Sink& sink)
{
    const auto passedOver = m_passedOverCount;
    for (unsigned index = 0; index <= highestIndex; ++index) {
        auto file = open(index);
        if (!file || !file->hasNumber(m_position->file))
            continue;
        if (file->isAt(*m_position)) {
            file->seek(m_position->offset);
            return file;
        }
        if (wasCut(index)) {
            m_splitter.finish(sink);
            return file;
        }
    }
    if (m_passedOverCount != passedOver)
        return nullptr;
    m_splitter.finish(sink);
    return openOldest();
}

/// Steps into the file that follows the present one. False when that is the current one, or when a
/// rotation is just going on; the next call finds it finished.
bool LogReader::advance(const LineSplitter::Sink& sink)
{
    const auto passedOver = m_passedOverCount;
    const auto isAt = [this](unsigned index) {
        const auto file = open(index);
        return file && file->isSame(*m_file);
    };
    unsigned index = 0;
    while (index <= highestIndex && !isAt(index))
        ++index;
    if (index == 0 || (index > highestIndex && m_passedOverCount != passedOver))
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
    notePosition(*m_file);
    return true;
}

/// The next newer file. Within a rotation it may still bear its old number; then nothing may have come to
/// stand between the two while it was opened.
std::unique_ptr<LogReader::File> LogReader::openSuccessor(unsigned index)
{
    for (unsigned newer = index; newer-- > 0;) {
        auto file = open(newer);
        if (!file)
            continue;
        for (unsigned between = newer + 1; between < index; ++between)
            if (open(between))
                return nullptr;
        return file;
    }
    return nullptr;
}

void LogReader::drain(const LineSplitter::Sink& sink)
{
    m_buffer.resize(bufferSize);
    for (auto bytes = m_file->readSome(m_buffer); !bytes.empty(); bytes = m_file->readSome(m_buffer)) {
        m_position->offset = m_file->offset();
        m_splitter.take(bytes, sink);
    }
}

} // namespace logreading
