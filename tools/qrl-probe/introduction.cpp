#include "qrl-probe/introduction.h"

#include "qrl-probe/memory.h"

#include <cstring>

namespace tools::qrlprobe {

namespace {

constexpr std::size_t nameLimit = 260;

bool isAligned(const void* address)
{
    return reinterpret_cast<std::uintptr_t>(address) % 4 == 0;
}

std::optional<std::string> readName(const char* name)
{
    const auto readable = memory::extent(name, nameLimit, memory::Access::Read);
    const auto length = strnlen(name, readable);
    if (length == readable)
        return std::nullopt;
    return std::string(name, length);
}

} // namespace

Introduction introductionOf(const char* name, const vx::qrl::hosterAPI* hoster, const vx::qrl::pluginAPI* record)
{
    Introduction result;
    result.name = readName(name);
    result.isRecordAligned = isAligned(record);
    if (memory::extent(record, sizeof(record->size), memory::Access::Read) == sizeof(record->size)) {
        result.size = record->size;
        const auto room = roomOf(record->size);
        result.isRecordWritable = memory::extent(record, room, memory::Access::Write) == room;
    }
    result.isHosterAligned = isAligned(hoster);
    result.isHosterReadable = memory::extent(hoster, sizeof(*hoster), memory::Access::Read) == sizeof(*hoster);
    result.isReportCode =
        result.isHosterReadable &&
        memory::extent(reinterpret_cast<const void*>(hoster->reportPluginState), 1, memory::Access::Execute) == 1;
    return result;
}

} // namespace tools::qrlprobe
