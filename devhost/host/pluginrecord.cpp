#include "host/pluginrecord.h"

#include <algorithm>
#include <cstring>

namespace devhost::host {

namespace {
constexpr unsigned char pattern = 0xA5;
}

PluginRecord::PluginRecord(std::uint32_t size) : m_size(size)
{
    std::memset(static_cast<void*>(&m_api), pattern, sizeof(m_api));
    std::memset(static_cast<void*>(&m_api), 0, roomOf(size));
    m_api.size = size;
}

bool PluginRecord::isIntact() const
{
    const auto* bytes = reinterpret_cast<const unsigned char*>(&m_api);
    return m_api.size == m_size && std::all_of(bytes + roomOf(m_size), bytes + sizeof(m_api),
                                       [](unsigned char byte) { return byte == pattern; });
}

} // namespace devhost::host
