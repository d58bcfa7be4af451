#include "process/pipestreambuf.h"
#include "process/pipe.h"
#include "support/thrown.h"

#include <windows.h>

#include <system_error>

using vx::process::detail::ipipestreambuf;
using vx::process::detail::opipestreambuf;

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

TEST(PipeStreamBuf, throwsTheSystemsErrorOnceTheOtherEndIsGone)
{
    const auto reading = vx::pipe::createPipe(false, false).first;
    ipipestreambuf reader(reading->get());
    EXPECT_THROW(reader.sgetc(), std::system_error);
    EXPECT_EQ(support::thrown<std::system_error>([&] { reader.sbumpc(); }).code(),
        std::error_code(ERROR_BROKEN_PIPE, std::system_category()));
    const auto writing = vx::pipe::createPipe(false, false).second;
    opipestreambuf writer(writing->get());
    EXPECT_THROW(writer.sputc('a'), std::system_error);
    EXPECT_THROW(writer.sputn("ab", 2), std::system_error);
}
