#pragma once

#include <streambuf>

namespace vx::process::detail {

/// Reads a pipe's bytes one by one, without a buffer of its own, so that nothing is taken off the pipe
/// before it is asked for. The handle is borrowed. Blocks until a byte is there. A failing system call, a
/// pipe whose writers are all gone too, throws std::system_error; inside a stream that sets badbit.
class ipipestreambuf : public std::basic_streambuf<char> {
public:
    /// `pauseMs`: milliseconds between two looks into an empty pipe.
    explicit ipipestreambuf(void* pipe, unsigned long pauseMs = 10) : m_pipe(pipe), m_pauseMs(pauseMs) {}

protected:
    std::streamsize showmanyc() override;
    int_type underflow() override;
    int_type uflow() override;

private:
    void* m_pipe;
    unsigned long m_pauseMs;
};

/// Writes bytes straight into a pipe. The handle is borrowed. Blocks while the pipe is full. Fails as the
/// reader does.
class opipestreambuf : public std::basic_streambuf<char> {
public:
    explicit opipestreambuf(void* pipe) : m_pipe(pipe) {}

protected:
    int_type overflow(int_type byte = traits_type::eof()) override;
    std::streamsize xsputn(const char* bytes, std::streamsize count) override;

private:
    std::streamsize write(const char* bytes, std::streamsize count);

    void* m_pipe;
};

} // namespace vx::process::detail
