#include "vxtl/process/pipestreambuf.h"
#include "support/thrown.h"
#include "vxtl/process/pipe.h"

#include <windows.h>

#include <istream>
#include <ostream>
#include <system_error>
#include <thread>

using namespace vx;
using process::detail::ipipestreambuf;
using process::detail::opipestreambuf;

namespace {

bool isInherited(const SharedHandle& handle)
{
    DWORD flags = 0;
    EXPECT_TRUE(GetHandleInformation(handle->get(), &flags));
    return flags & HANDLE_FLAG_INHERIT;
}

struct PipeStreamBuf : testing::Test {
    std::pair<SharedHandle, SharedHandle> ends = pipe::createPipe(false, false);
    ipipestreambuf reader{ends.first->get(), 0};
    opipestreambuf writer{ends.second->get()};
};

} // namespace

TEST(Pipe, inheritsOnlyTheEndsAskedFor)
{
    for (const auto& [read, write] : {std::pair(true, false), {false, true}, {false, false}}) {
        const auto ends = pipe::createPipe(read, write);
        EXPECT_EQ(isInherited(ends.first), read);
        EXPECT_EQ(isInherited(ends.second), write);
    }
}

TEST_F(PipeStreamBuf, throwsTheSystemsErrorOnceTheOtherEndIsGone)
{
    auto other = pipe::createPipe(false, false);
    ipipestreambuf orphan(other.first->get());
    other.second.reset();
    EXPECT_THROW(orphan.in_avail(), std::runtime_error);
    EXPECT_THROW(orphan.sgetc(), std::runtime_error);
    EXPECT_EQ(support::thrown<std::system_error>([&] { orphan.sbumpc(); }).code(),
        std::error_code(ERROR_BROKEN_PIPE, std::system_category()));
    ends.first.reset();
    EXPECT_THROW(writer.sputc('a'), std::system_error);
    EXPECT_THROW(writer.sputn("ab", 2), std::system_error);
}

TEST_F(PipeStreamBuf, reportsAShortWrite)
{
    DWORD mode = PIPE_NOWAIT;
    ASSERT_TRUE(SetNamedPipeHandleState(ends.second->get(), &mode, nullptr, nullptr));
    const std::string much(1 << 20, 'x');
    EXPECT_EQ(writer.sputn(much.data(), 1 << 20), -1);
    while (writer.sputc('x') != EOF)
        ;
    EXPECT_GT(reader.in_avail(), 0);
}

TEST_F(PipeStreamBuf, takesBytesOnlyWhenTheyAreAskedFor)
{
    EXPECT_EQ(reader.in_avail(), -1);
    EXPECT_EQ(writer.sputn("\xff"
                           "b",
                  2),
        2);
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
    std::thread late([&] { std::ostream(&writer) << "late\n" << std::flush; });
    std::string line;
    std::istream stream(&reader);
    EXPECT_TRUE(std::getline(stream, line));
    late.join();
    EXPECT_EQ(line, "late");
}
