// A text is refused with the one error or gives a GUID whose own text reads back as the same GUID.

#include "common/guid.h"
#include "input.h"

#include <stdexcept>

using namespace vx::tarn::common;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const auto text = fuzz::text(data, size);
    if (!text)
        return 0;
    try {
        const auto guid = utils::guidFromString(*text);
        fuzz::require(utils::guidFromString(utils::guidToString(guid)) == guid, "round trip");
    } catch (const std::runtime_error& e) {
        fuzz::require(std::string_view(e.what()) == "Bad GUID format", "the error's text");
    }
    return 0;
}
