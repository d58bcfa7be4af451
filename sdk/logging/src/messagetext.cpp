#include "logging/details/messagetext.h"

#include <algorithm>
#include <cstring>

namespace vx::logging::details {

char* MessageText::grow(std::size_t count)
{
    if (count > m_capacity - m_size) {
        const std::size_t capacity = std::max(2 * m_capacity, m_size + count);
        std::unique_ptr<char[]> larger(new char[capacity]);
        std::memcpy(larger.get(), data(), m_size);
        m_heap = std::move(larger);
        m_capacity = capacity;
    }
    char* end = (m_heap ? m_heap.get() : m_inline) + m_size;
    m_size += count;
    return end;
}

void MessageText::append(std::string_view text)
{
    char* target = grow(text.size());
    if (!text.empty())
        std::memcpy(target, text.data(), text.size());
}

void MessageText::append(std::size_t count, char c)
{
    char* target = grow(count);
    if (count != 0)
        std::memset(target, c, count);
}

} // namespace vx::logging::details
