#include "logfolder.h"
#include "logging-backend/processlogger.h"
#include "logging/logstream.h"
#include "support/childtest.h"

#include <map>

using support::ChildTest;

namespace {

constexpr int count = 600;

std::string record(char tag, int number)
{
    return std::string("record ") + tag + " " + std::to_string(number) + " " + std::string(40 + number % 200, tag) +
           " end";
}

/// The argument is the tag of its records, followed by the name of the event that starts it.
int writeRecords()
{
    const std::wstring argument = ChildTest::argument();
    const HANDLE start = OpenEventW(SYNCHRONIZE, FALSE, argument.c_str() + 1);
    if (!start || WaitForSingleObject(start, 60'000) != WAIT_OBJECT_0)
        return 3;
    VxQrlLogging::open(LogFolder::name1, LogFolder::name2, 4, 0);
    for (int i = 0; i < count; ++i)
        vx::logging::LogStream(vx::logging::Level::Info) << record(static_cast<char>(argument[0]), i);
    VxQrlLogging::close();
    return 0;
}

} // namespace

TEST(SharedFile, losesAndTearsNothingWhileTwoProcessesRotate)
{
    LogFolder folder;
    LogFolder::configure(L"", L"LogRotateCount", 99);
    LogFolder::configure(L"", L"LogMaxSizeKB", 10);
    const std::wstring eventName = support::uniqueName(L"vx-log-test-start");
    const HANDLE start = CreateEventW(nullptr, TRUE, FALSE, eventName.c_str());
    {
        const ChildTest a(L"writeRecords", L"a" + eventName);
        const ChildTest b(L"writeRecords", L"b" + eventName);
        SetEvent(start);
        EXPECT_EQ(a.wait(), 0u);
        EXPECT_EQ(b.wait(), 0u);
    }
    CloseHandle(start);

    std::map<std::string, int> seen;
    const int files = static_cast<int>(folder.files().size());
    EXPECT_GT(files, 20) << "too few rotations to show anything";
    for (int i = 0; i < files; ++i)
        for (const std::string& line : folder.lines(i)) {
            if (line.size() > 40 && line.compare(40, 7, "record ") == 0)
                ++seen[line.substr(40)];
        }
    EXPECT_EQ(seen.size(), 2u * count);
    for (const char tag : {'a', 'b'})
        for (int i = 0; i < count; ++i)
            EXPECT_EQ(seen[record(tag, i)], 1) << tag << i;
}

int main(int argc, char** argv)
{
    return support::mainWithChildren(argc, argv, {{"writeRecords", &writeRecords}});
}
