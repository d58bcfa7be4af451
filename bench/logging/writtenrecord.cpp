#include "writtenrecord.h"

#include "barefile.h"
#include "logging-backend/processlogger.h"
#include "logging/logstream.h"

#include <string>

namespace {

constexpr std::size_t calls = 4000;
constexpr std::size_t rotations = 200;

/// Header, message and line end make 140 characters, so 280 bytes of the file, on both sides.
class Record {
public:
    const std::wstring& bare() const { return m_bare; }
    void log() const
    {
        vx::logging::LogStream(vx::logging::Level::Info)
            << "process started: " << m_path << ", id: " << m_number << ", " << m_details;
    }

private:
    const std::wstring m_bare = std::wstring(138, L'r') + L"\r\n";
    const std::string m_path = "C:\\Program Files\\Vantorix\\tool.exe";
    const std::string m_details = std::string(98 - m_path.size() - 30, 'd');
    const int m_number = 12345;
};

/// What our file may keep after a rotation: its mark, and the record that came behind it.
constexpr std::uintmax_t oneRecord = 2 + 280;

} // namespace

void compareWrittenRecords(bench::Comparison& table, const bench::LogSandbox& sandbox)
{
    bench::LogSandbox::configure(bench::neverFull, 2);
    VxQrlLogging::open(L"single", L"ours", 4, 0);
    VxQrlLogging::log(4, "first");
    const Record record;
    BareFile bare(sandbox.folder(L"single").wstring(), L"bare", 2);
    const std::filesystem::path ourFile = sandbox.folder(L"single") / L"ours.log";
    const auto before = std::filesystem::file_size(ourFile);
    table.row("written record of 280 bytes", bench::perCall(calls, [&] { bare.append(record.bare()); }),
        bench::perCall(calls, [&] { record.log(); }), bench::Reach::timeUpTo(1.08));
    const auto written = std::filesystem::file_size(ourFile) - before;
    table.note("our record takes " + std::to_string(written % 280 == 0 ? 280 : written) + " bytes of the file",
        written % 280 == 0 && written >= calls * 280);
    VxQrlLogging::close();
}

void compareRotatingRecords(bench::Comparison& table, const bench::LogSandbox& sandbox)
{
    // So small that every file is full with its first record.
    bench::LogSandbox::configure(0, 2);
    VxQrlLogging::open(L"rotating", L"ours", 4, 0);
    VxQrlLogging::log(4, "first");
    const Record record;
    BareFile bare(sandbox.folder(L"rotating").wstring(), L"bare", 2);
    table.row("record that rotates, two old files",
        bench::perCall(rotations, [&] { bare.appendRotating(record.bare(), 3); }),
        bench::perCall(rotations, [&] { record.log(); }), bench::Reach::timeUpTo(1.15));
    bool rotated = true;
    for (const auto* name : {L"ours.log", L"ours.1.log", L"ours.2.log", L"bare.log", L"bare.1.log", L"bare.2.log"})
        rotated &= std::filesystem::file_size(sandbox.folder(L"rotating") / name) == oneRecord;
    table.note("each file holds one record", rotated);
    VxQrlLogging::close();
}
