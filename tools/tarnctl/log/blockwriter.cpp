#include "tarnctl/log/blockwriter.h"

#include <ostream>

namespace tarnctl::log {

namespace {

// Consoles of older systems refuse more than 64 KiB at once.
constexpr std::size_t blockSize = 32'768;

} // namespace

BlockWriter::BlockWriter(std::ostream& stream) : m_stream(stream), m_block(blockSize, '\0') {}

void BlockWriter::putLarge(std::string_view text)
{
    hand();
    if (text.size() > m_block.size())
        m_stream.write(text.data(), static_cast<std::streamsize>(text.size()));
    else
        put(text);
}

void BlockWriter::hand()
{
    m_stream.write(m_block.data(), static_cast<std::streamsize>(m_used));
    m_used = 0;
}

void BlockWriter::flush()
{
    hand();
    m_stream.flush();
}

} // namespace tarnctl::log
