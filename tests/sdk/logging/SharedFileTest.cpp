#include "logfolder.h"
#include "logging/logstream.h"
#include "logging/processlogger.h"
#include "logging/startupheader.h"
#include "sharedfilewriter.h"

#include <cstdlib>
#include <gmock/gmock.h>
#include <map>
#include <regex>
#include <windows.h>

namespace {

constexpr DWORD deadline = 60000;

class Writer {
public:
    Writer(const std::string& event, const std::string& tag, int count)
    {
        wchar_t program[MAX_PATH];
        GetModuleFileNameW(nullptr, program, MAX_PATH);
        std::wstring command = L"\"" + std::wstring(program) + L"\"";
        for (const std::string& argument : {std::string(sharedFileWriterMode), event, tag, std::to_string(count)})
            command += L" " + std::wstring(argument.begin(), argument.end());
        STARTUPINFOW start{};
        start.cb = sizeof start;
        EXPECT_TRUE(
            CreateProcessW(nullptr, command.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &start, &m_process));
    }
    ~Writer()
    {
        CloseHandle(m_process.hThread);
        CloseHandle(m_process.hProcess);
    }
    Writer(const Writer&) = delete;
    Writer& operator=(const Writer&) = delete;

    DWORD join() const
    {
        DWORD code = 1;
        EXPECT_EQ(WaitForSingleObject(m_process.hProcess, deadline), WAIT_OBJECT_0);
        GetExitCodeProcess(m_process.hProcess, &code);
        return code;
    }

private:
    PROCESS_INFORMATION m_process{};
};

std::string record(const std::string& tag, int number)
{
    return "record " + tag + " " + std::to_string(number) + " " + std::string(40 + number % 200, tag[0]) + " end";
}

TEST(SharedFile, losesAndTearsNothingWhileTwoProcessesRotate)
{
    constexpr int count = 600;
    LogFolder folder;
    LogFolder::configure(L"", L"LogRotateCount", 99);
    LogFolder::configure(L"", L"LogMaxSizeKB", 10);
    const std::string eventName = "vx-log-test-start-" + std::to_string(GetCurrentProcessId());
    const HANDLE start = CreateEventA(nullptr, TRUE, FALSE, eventName.c_str());
    {
        const Writer a(eventName, "a", count);
        const Writer b(eventName, "b", count);
        SetEvent(start);
        EXPECT_EQ(a.join(), 0u);
        EXPECT_EQ(b.join(), 0u);
    }
    CloseHandle(start);

    std::map<std::string, int> seen;
    std::string parents;
    const std::regex header(R"(\d{4}-\d\d-\d\d \d\d:\d\d:\d\d\.\d{3} \[[0-9a-f]{4}\.[0-9a-f]{4}\]  [ID]: .*)");
    const int files = static_cast<int>(folder.files().size());
    EXPECT_GT(files, 20) << "too few rotations to show anything";
    for (int i = 0; i < files; ++i)
        for (const std::string& line : folder.lines(i)) {
            EXPECT_TRUE(line.empty() || std::regex_match(line, header)) << line;
            if (line.find("Parent Process Id") != std::string::npos)
                parents += line.substr(line.rfind("0x")) + " ";
            if (line.size() > 40 && line.compare(40, 7, "record ") == 0)
                ++seen[line.substr(40)];
        }
    EXPECT_EQ(seen.size(), 2u * count);
    for (const std::string tag : {"a", "b"})
        for (int i = 0; i < count; ++i)
            EXPECT_EQ(seen[record(tag, i)], 1) << tag << i;
    char id[16];
    std::snprintf(id, sizeof id, "0x%04lX ", GetCurrentProcessId());
    EXPECT_EQ(parents, std::string(id) + id);
}

} // namespace

int runSharedFileWriter(int argc, char** argv)
{
    if (argc != 5)
        return 2;
    const HANDLE start = OpenEventA(SYNCHRONIZE, FALSE, argv[2]);
    if (!start || WaitForSingleObject(start, deadline) != WAIT_OBJECT_0)
        return 3;
    VxQrlLogging::open(LogFolder::name1, LogFolder::name2, 4, 0);
    vx::logging::startup_header::write();
    for (int i = 0; i < std::atoi(argv[4]); ++i)
        vx::logging::LogStream(vx::logging::Level::Info) << record(argv[3], i);
    VxQrlLogging::close();
    return 0;
}
