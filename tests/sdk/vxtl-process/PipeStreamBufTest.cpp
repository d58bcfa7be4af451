#include "process/pipestreambuf.h"
#include "process/pipe.h"
#include "support/thrown.h"

#include <windows.h>

#include <istream>
#include <ostream>
#include <system_error>
#include <thread>

using namespace vx;
using process::detail::ipipestreambuf;
using process::detail::opipestreambuf;

namespace {

struct PipeStreamBuf : testing::Test {
    std::pair<SharedHandle, SharedHandle> ends = pipe::createPipe(false, false);
    ipipestreambuf reader{ends.first->get(), 0};
    opipestreambuf writer{ends.second->get()};
};

} // namespace

TEST(Pipe, inheritsOnlyTheEndAskedFor)
{
    const auto [read, write] = pipe::createPipe(false, true);
    DWORD ofRead = 0, ofWrite = 0;
    ASSERT_TRUE(GetHandleInformation(read->get(), &ofRead) && GetHandleInformation(write->get(), &ofWrite));
    EXPECT_EQ(std::pair(ofRead, ofWrite), std::pair(DWORD(0), DWORD(HANDLE_FLAG_INHERIT)));
}

TEST_F(PipeStreamBuf, throwsTheSystemsErrorOnceTheOtherEndIsGone)
{
    auto other = pipe::createPipe(false, false);
    ipipestreambuf orphan(other.first->get());
    other.second.reset();
    EXPECT_THROW(orphan.sgetc(), std::system_error);
    EXPECT_EQ(support::thrown<std::system_error>([&] { orphan.sbumpc(); }).code(),
        std::error_code(ERROR_BROKEN_PIPE, std::system_category()));
    ends.first.reset();
    EXPECT_THROW(writer.sputc('a'), std::system_error);
    EXPECT_THROW(writer.sputn("ab", 2), std::system_error);
}

TEST_F(PipeStreamBuf, takesBytesOnlyWhenTheyAreAskedFor)
{
    EXPECT_EQ(reader.in_avail(), -1);
    EXPECT_EQ(writer.sputn("\xff\x62", 2), 2);
    EXPECT_EQ(writer.sputc(static_cast<char>(0xfe)), 0xfe);
    EXPECT_EQ(reader.in_avail(), 3);
    EXPECT_EQ(reader.sgetc(), 0xff);
    EXPECT_EQ(reader.in_avail(), 3);
    EXPECT_EQ(reader.sbumpc(), 0xff);
    EXPECT_EQ(reader.in_avail(), 2);
    EXPECT_EQ(reader.snextc(), 0xfe);
}

TEST_F(PipeStreamBuf, waitsForALateByte)
{
    std::jthread late([&] { std::ostream(&writer) << "late\n" << std::flush; });
    std::string line;
    std::istream stream(&reader);
    EXPECT_TRUE(std::getline(stream, line));
    EXPECT_EQ(line, "late");
}
