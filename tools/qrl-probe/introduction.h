#pragma once

#include "qrl-plugin/hostrecords.h"

#include <optional>
#include <string>

namespace tools::qrlprobe {

/// How many bytes a record has that tells this size.
constexpr std::uint32_t roomOf(std::uint32_t size)
{
    return size == 0 ? 24 : size;
}

/// What the host gives to the export, looked at without trusting any of it.
struct Introduction {
    std::optional<std::string> name; ///< as it is; nothing where no zero ends it in time
    bool isRecordAligned = false;
    std::optional<std::uint32_t> size; ///< nothing where the record can't be read
    bool isRecordWritable = false;     ///< to the end that its size tells
    bool isHosterAligned = false;
    bool isHosterReadable = false;
    bool isReportCode = false;
};

/// Any pointer may be null or wild.
Introduction introductionOf(const char* name, const vx::qrl::hosterAPI* hoster, const vx::qrl::pluginAPI* record);

} // namespace tools::qrlprobe
