#include "process/pipestreambuf.h"
#include "process/pipe.h"

#include <gtest/gtest.h>
#include <windows.h>

using vx::process::detail::ipipestreambuf;
using vx::process::detail::opipestreambuf;

TEST(Pipe, inheritsOnlyTheEndAskedFor)
{
    const auto [read, write] = vx::pipe::createPipe(false, true);
    DWORD ofRead = 0, ofWrite = 0;
    ASSERT_TRUE(GetHandleInformation(read->get(), &ofRead) && GetHandleInformation(write->get(), &ofWrite));
    EXPECT_EQ(std::pair(ofRead, ofWrite), std::pair(DWORD(0), DWORD(HANDLE_FLAG_INHERIT)));
}

TEST(PipeStreamBuf, takesBytesOnlyWhenTheyAreAskedFor)
{
    const auto ends = vx::pipe::createPipe(false, false);
    ipipestreambuf reader{ends.first->get(), 0};
    opipestreambuf writer{ends.second->get()};
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
