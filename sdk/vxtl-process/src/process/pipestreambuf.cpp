#include "process/pipestreambuf.h"

#include <windows.h>

#include <system_error>

namespace vx::process::detail {

namespace {

void check(BOOL done)
{
    const DWORD error = GetLastError();
    if (!done)
        throw std::system_error(static_cast<int>(error), std::system_category());
}

} // namespace

std::streamsize ipipestreambuf::showmanyc()
{
    DWORD available = 0;
    check(PeekNamedPipe(m_pipe, nullptr, 0, nullptr, &available, nullptr));
    return available == 0 ? -1 : static_cast<std::streamsize>(available);
}

ipipestreambuf::int_type ipipestreambuf::underflow()
{
    for (;;) {
        char byte = 0;
        DWORD read = 0;
        DWORD available = 0;
        check(PeekNamedPipe(m_pipe, &byte, 1, &read, &available, nullptr));
        if (available != 0)
            return read == 1 ? traits_type::to_int_type(byte) : traits_type::eof();
        // An anonymous pipe can't be waited on.
        Sleep(m_pauseMs);
    }
}

ipipestreambuf::int_type ipipestreambuf::uflow()
{
    char byte = 0;
    DWORD read = 0;
    check(ReadFile(m_pipe, &byte, 1, &read, nullptr));
    return read == 1 ? traits_type::to_int_type(byte) : traits_type::eof();
}

opipestreambuf::int_type opipestreambuf::overflow(int_type byte)
{
    if (traits_type::eq_int_type(byte, traits_type::eof()))
        return traits_type::eof();
    const char character = traits_type::to_char_type(byte);
    return write(&character, 1) == 1 ? byte : traits_type::eof();
}

std::streamsize opipestreambuf::xsputn(const char* bytes, std::streamsize count)
{
    return write(bytes, count) == count ? count : -1;
}

std::streamsize opipestreambuf::write(const char* bytes, std::streamsize count)
{
    DWORD written = 0;
    check(WriteFile(m_pipe, bytes, static_cast<DWORD>(count), &written, nullptr));
    return written;
}

} // namespace vx::process::detail
