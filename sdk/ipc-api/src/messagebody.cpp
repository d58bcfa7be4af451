#include "messagebody.h"

#include "logging/logstream.h"
#include "vxtl/exception.h"
#include "vxtl/parsejson.h"

#include <nlohmann/json.hpp>

namespace vx::tarn::common {

nlohmann::json readMessageBody(const void* data, std::size_t dataSize)
{
    if (!data || dataSize == 0)
        return nullptr;
    const std::string text(static_cast<const char*>(data), dataSize);
    try {
        return parseJson(text);
    } catch (const std::exception& e) {
        logging::LogStream(logging::Level::Warning) << "Failed to parse json data from: \"" << text
                                                    << "\". Data will be wrapped to json. Exception: " << What(e);
        return text;
    }
}

} // namespace vx::tarn::common
