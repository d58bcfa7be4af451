#pragma once

#include "host/pluginapi.h"

#include <array>

namespace devhost::host {

/// A PluginApi of one of the known sizes. What lies behind that size is filled with a pattern, so that a
/// plug-in that writes too far is found out. Not copied: the plug-in keeps its address.
class PluginRecord {
public:
    static constexpr std::array<std::uint32_t, 5> knownSizes{0, 24, 28, 32, 36};

    /// `size` is one of knownSizes, or any other up to 36, which a plug-in may take amiss.
    explicit PluginRecord(std::uint32_t size);
    PluginRecord(const PluginRecord&) = delete;
    PluginRecord& operator=(const PluginRecord&) = delete;

    PluginApi* get() { return &m_api; }
    const PluginApi& api() const { return m_api; }
    /// Whether a field that ends at this offset is part of the record.
    bool holds(std::size_t end) const { return end <= roomOf(m_size); }
    /// False once anything behind the size, or the size itself, was written to.
    bool isIntact() const;

private:
    static std::size_t roomOf(std::uint32_t size) { return size == 0 ? 24 : size; }

    std::uint32_t m_size;
    PluginApi m_api;
};

} // namespace devhost::host
