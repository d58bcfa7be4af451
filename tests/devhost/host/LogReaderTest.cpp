#include "host/logreader.h"

#include "childprocess.h"

#include <fstream>
#include <gmock/gmock.h>
#include <sstream>
#include <thread>

namespace devhost::host {

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

/// Writes and rotates as the logger does: the file stays open until it is renamed.
class LogWriter {
public:
    explicit LogWriter(std::filesystem::path file, unsigned rotateCount = 2)
        : m_current(std::move(file)), m_rotateCount(rotateCount)
    {}

    void raw(const std::u16string& text)
    {
        if (!m_stream.is_open()) {
            m_stream.open(m_current, std::ios::binary | std::ios::app);
            raw(u"\uFEFF");
        }
        m_stream.write(reinterpret_cast<const char*>(text.data()), static_cast<std::streamsize>(text.size() * 2));
        m_stream.flush();
    }

    void line(const std::string& text) { raw(std::u16string(text.begin(), text.end()) + u"\r\n"); }

    void rotate()
    {
        m_stream.close();
        for (unsigned index = m_rotateCount; index-- > 0;)
            moveUp(index);
    }

    /// Gives one file the next number, in the place of what has it.
    void moveUp(unsigned index)
    {
        std::error_code ignored; // of numbers that are not there yet
        rename(LogReader::fileName(m_current, index), LogReader::fileName(m_current, index + 1), ignored);
    }

private:
    std::filesystem::path m_current;
    unsigned m_rotateCount;
    std::ofstream m_stream;
};

} // namespace

TEST(LogReader, tellsCompleteLinesOnce)
{
    const support::TemporaryFolder folder;
    LogReader reader(folder.path() / "sample.log");
    LogWriter writer(folder.path() / "sample.log");
    EXPECT_THAT(reader.read(), IsEmpty());
    writer.raw(u"\r\nfirst \u00e4\u20ac\r\nsec");
    EXPECT_THAT(reader.read(), ElementsAre("", "first \xC3\xA4\xE2\x82\xAC"));
    writer.line("ond");
    EXPECT_THAT(reader.read(), ElementsAre("second"));
    EXPECT_THAT(reader.read(), IsEmpty());
}

TEST(LogReader, followsRotations)
{
    // +a appends the line a, | rotates, ^1 moves only file 1, < rewinds, =a,b reads these lines and no others.
    const struct {
        const char* label;
        const char* steps;
    } rows[] = {
        {"goes on in the new file", "+a =a, +b | =b, +c =c,"},
        {"catches up over several rotations", "+a =a, +b | +c | +d =b,c,d,"},
        {"tells what is left when its file is gone", "+a =a, | +b | +c | +d | +e =c,d,e,"},
        {"starts with the oldest file after a rewind, the current one missing", "+a | +b | < =a,b, +c =c,"},
        {"waits for a rotation that is half done", "+a | +b < ^1 =a,b, ^0 ="},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.label);
        const support::TemporaryFolder folder;
        LogWriter writer(folder.path() / "sample.log");
        LogReader reader(folder.path() / "sample.log");
        std::istringstream steps(row.steps);
        for (std::string step; steps >> step;) {
            switch (step[0]) {
            case '+': writer.line(step.substr(1)); break;
            case '|': writer.rotate(); break;
            case '^': writer.moveUp(static_cast<unsigned>(step[1] - '0')); break;
            case '<': reader.rewind(); break;
            default:
                std::string told;
                for (const auto& line : reader.read())
                    told += line + ",";
                EXPECT_EQ("=" + told, step);
            }
        }
    }
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
            writer.line(std::to_string(i));
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
