#include "logreading/logreader.h"

#include "vxtl/handle.h"

#include <fstream>
#include <gmock/gmock.h>
#include <windows.h>

namespace logreading {
namespace {

class LogReaderTest : public testing::Test {
protected:
    LogReaderTest() { create_directories(m_folder); }
    ~LogReaderTest() override { remove_all(m_folder); }

    /// Of ASCII.
    void write(const char* name, std::string_view text, std::ios::openmode mode = std::ios::trunc) const
    {
        std::ofstream stream(m_folder / name, std::ios::binary | std::ios::out | mode);
        for (const char character : text)
            stream.put(character).put('\0');
    }
    std::string read() { return read(m_reader); }
    static std::string read(LogReader& reader)
    {
        std::string lines;
        reader.read([&](std::string_view line) { (lines += line) += ' '; });
        return lines;
    }

    const std::filesystem::path m_folder =
        std::filesystem::temp_directory_path() / ("logreader-" + std::to_string(GetCurrentProcessId()));
    LogReader m_reader{m_folder / "a.log"};
};

TEST_F(LogReaderTest, goesOnInAFileThatWasCutAndTellsNoOtherTwice)
{
    write("a.1.log", "1\n2\n");
    write("a.log", "3\n4\n");
    EXPECT_TRUE(m_reader.rewind());
    EXPECT_EQ(read(), "1 2 3 4 ");
    write("a.log", "5\n");
    EXPECT_EQ(read(), "5 ") << "other text";
    write("a.log", "6\n", std::ios::app);
    EXPECT_EQ(read(), "6 ");
    write("a.log", "");
    EXPECT_EQ(read(), "") << "nothing";
    write("a.log", "7\n8\n", std::ios::app);
    EXPECT_EQ(read(), "7 8 ");
    resize_file(m_folder / "a.log", 4);
    EXPECT_EQ(read(), "7 ") << "its own front";
}

TEST_F(LogReaderTest, knowsOlderFilesBehindAMissingNumber)
{
    EXPECT_FALSE(m_reader.rewind());
    write("a.3.log", "1\n");
    write("a.2.log", "2\n");
    EXPECT_TRUE(m_reader.rewind()) << "within a rotation there is no current file";
    write("a.log", "3\n");
    EXPECT_EQ(read(), "1 2 3 ");
}

TEST_F(LogReaderTest, passesOverWhatCannotBeOpenedAndKeepsItsPlace)
{
    const auto hold = [&](const char* name) {
        return vx::KernelHandle(
            CreateFileW((m_folder / name).c_str(), GENERIC_WRITE, 0, nullptr, OPEN_EXISTING, 0, nullptr));
    };
    int count = 0;
    LogReader reader(m_folder / "a.log", [&](const auto&) { ++count; });
    write("a.2.log", "1\n");
    write("a.1.log", "2\n");
    write("a.log", "3\n");
    {
        const auto oldest = hold("a.2.log"), current = hold("a.log");
        EXPECT_TRUE(reader.rewind());
        EXPECT_EQ(read(reader), "2 ");
        EXPECT_GE(count, 2);
    }
    EXPECT_EQ(read(reader), "3 ");
    {
        const auto current = hold("a.log");
        EXPECT_EQ(read(reader), "");
    }
    write("a.log", "4\n", std::ios::app);
    EXPECT_EQ(read(reader), "4 ");
}

} // namespace
} // namespace logreading
