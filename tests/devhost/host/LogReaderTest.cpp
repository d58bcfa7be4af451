#include "host/logreader.h"

#include "childprocess.h"

#include <gmock/gmock.h>
#include <thread>
#include <windows.h>

namespace devhost::host {

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

/// Writes and rotates as the logger does: the file stays open and is renamed by its name.
class LogWriter {
public:
    explicit LogWriter(std::filesystem::path file, unsigned rotateCount = 2)
        : m_current(std::move(file)), m_rotateCount(rotateCount)
    {}
    ~LogWriter() { close(); }

    void raw(const std::wstring& text)
    {
        if (m_file == INVALID_HANDLE_VALUE)
            open();
        DWORD written = 0;
        WriteFile(m_file, text.data(), static_cast<DWORD>(text.size() * sizeof(wchar_t)), &written, nullptr);
    }

    void line(const std::wstring& text) { raw(text + L"\r\n"); }

    void rotate()
    {
        close();
        DeleteFileW(name(m_rotateCount).c_str());
        for (unsigned index = m_rotateCount; index-- > 0;)
            MoveFileExW(name(index).c_str(), name(index + 1).c_str(), MOVEFILE_REPLACE_EXISTING);
    }

    std::filesystem::path name(unsigned index) const { return LogReader::fileName(m_current, index); }

private:
    void open()
    {
        m_file = CreateFileW(m_current.c_str(), GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
            nullptr, OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
        if (GetLastError() != ERROR_ALREADY_EXISTS)
            raw(L"\xFEFF");
        SetFilePointer(m_file, 0, nullptr, FILE_END);
    }

    void close()
    {
        if (m_file != INVALID_HANDLE_VALUE)
            CloseHandle(m_file);
        m_file = INVALID_HANDLE_VALUE;
    }

    std::filesystem::path m_current;
    unsigned m_rotateCount;
    HANDLE m_file = INVALID_HANDLE_VALUE;
};

class LogReaderTest : public testing::Test {
protected:
    support::TemporaryFolder folder;
    const std::filesystem::path file = folder.path() / "sample.log";
    LogWriter writer{file};
    LogReader reader{file};
};

} // namespace

TEST_F(LogReaderTest, tellsCompleteLinesOnce)
{
    EXPECT_THAT(reader.read(), IsEmpty());
    writer.line({});
    writer.line(L"first \u00e4\u20ac");
    writer.raw(L"sec");
    EXPECT_THAT(reader.read(), ElementsAre("", "first \xC3\xA4\xE2\x82\xAC"));
    writer.line(L"ond");
    EXPECT_THAT(reader.read(), ElementsAre("second"));
    EXPECT_THAT(reader.read(), IsEmpty());
}

TEST_F(LogReaderTest, goesOnInTheNewFile)
{
    writer.line(L"a");
    reader.read();
    writer.line(L"b");
    writer.rotate();
    EXPECT_THAT(reader.read(), ElementsAre("b"));
    writer.line(L"c");
    EXPECT_THAT(reader.read(), ElementsAre("c"));
}

TEST_F(LogReaderTest, catchesUpOverSeveralRotations)
{
    writer.line(L"a");
    reader.read();
    writer.line(L"b");
    for (const auto* text : {L"c", L"d"}) {
        writer.rotate();
        writer.line(text);
    }
    EXPECT_THAT(reader.read(), ElementsAre("b", "c", "d"));
}

TEST_F(LogReaderTest, tellsWhatIsLeftWhenItsFileIsGone)
{
    writer.line(L"a");
    reader.read();
    for (const auto* text : {L"b", L"c", L"d", L"e"}) {
        writer.rotate();
        writer.line(text);
    }
    EXPECT_THAT(reader.read(), ElementsAre("c", "d", "e"));
}

TEST_F(LogReaderTest, startsWithTheOldestFileAfterRewind)
{
    writer.line(L"a");
    writer.rotate();
    writer.line(L"b");
    writer.rotate();
    reader.rewind(); // the current file is missing at this moment
    EXPECT_THAT(reader.read(), ElementsAre("a", "b"));
    writer.line(L"c");
    EXPECT_THAT(reader.read(), ElementsAre("c"));
}

TEST_F(LogReaderTest, waitsForARotationThatIsHalfDone)
{
    writer.line(L"a");
    writer.rotate();
    writer.line(L"b");
    reader.rewind();
    std::filesystem::rename(writer.name(1), writer.name(2));
    // The newer file still bears its old number.
    EXPECT_THAT(reader.read(), ElementsAre("a", "b"));
    std::filesystem::rename(writer.name(0), writer.name(1));
    EXPECT_THAT(reader.read(), IsEmpty());
}

TEST(LogReaderRace, losesAndDoublesNothingWhileAnotherThreadRotates)
{
    constexpr int count = 3000;
    const support::TemporaryFolder folder;
    const auto file = folder.path() / "race.log";
    std::thread thread([&] {
        // Keeps all its files, so a slow reader is no fault.
        LogWriter writer(file, 90);
        for (int i = 0; i < count; ++i) {
            if (i % 40 == 39)
                writer.rotate();
            writer.line(std::to_wstring(i));
        }
    });
    LogReader reader(file);
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(60);
    std::vector<std::string> lines;
    while (lines.size() < count && std::chrono::steady_clock::now() < deadline)
        for (auto& line : reader.read())
            lines.push_back(std::move(line));
    thread.join();
    ASSERT_EQ(lines.size(), static_cast<std::size_t>(count));
    for (int i = 0; i < count; ++i)
        ASSERT_EQ(lines[static_cast<std::size_t>(i)], std::to_string(i));
}

} // namespace devhost::host
