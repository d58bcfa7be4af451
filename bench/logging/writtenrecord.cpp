#include "writtenrecord.h"

#include "barefile.h"
#include "logging-backend/processlogger.h"
#include "logging/logstream.h"

#include <string>

namespace {

constexpr std::size_t calls = 4000;
constexpr unsigned long neverFull = 4'000'000; // kilobytes

} // namespace

void compareWrittenRecords(bench::Comparison& table, const Sandbox& sandbox)
{
    Sandbox::configure(neverFull, 2);
    VxQrlLogging::open(L"single", L"ours", 4, 0);
    VxQrlLogging::log(4, "first");
    // Header, message and line end make 140 characters, so 280 bytes of the file, on both sides.
    const std::string path = "C:\\Program Files\\Vantorix\\tool.exe";
    const std::string details = std::string(98 - path.size() - 30, 'd');
    const int number = 12345;
    BareFile bare(sandbox.folder(L"single").wstring(), L"bare");
    const std::wstring record = std::wstring(138, L'r') + L"\r\n";
    const std::filesystem::path ourFile = sandbox.folder(L"single") / L"ours.log";
    const auto before = std::filesystem::file_size(ourFile);
    table.row("written record of 280 bytes", bench::perCall(calls, [&] { bare.append(record); }),
        bench::perCall(calls,
            [&] {
                vx::logging::LogStream(vx::logging::Level::Info)
                    << "process started: " << path << ", id: " << number << ", " << details;
            }),
        bench::Reach::timeUpTo(1.08));
    const auto written = std::filesystem::file_size(ourFile) - before;
    table.note("our record takes " + std::to_string(written % 280 == 0 ? 280 : written) + " bytes of the file",
        written % 280 == 0 && written >= calls * 280);
    VxQrlLogging::close();
}
