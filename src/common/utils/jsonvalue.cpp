#include "common/utils/jsonvalue.h"

namespace vx::tarn::common::utils {

namespace {

using nlohmann::json;

template <typename Content>
const Content& contentOf(const json& value, const char* wanted)
{
    if (const auto* content = value.get_ptr<const Content*>())
        return *content;
    throw json::type_error::create(
        302, std::string("type must be ") + wanted + ", but is " + value.type_name(), &value);
}

} // namespace

const std::string& stringIn(const json& value)
{
    return contentOf<std::string>(value, "string");
}

const json::array_t& arrayIn(const json& value)
{
    return contentOf<json::array_t>(value, "array");
}

const json::object_t& objectIn(const json& value)
{
    return contentOf<json::object_t>(value, "object");
}

} // namespace vx::tarn::common::utils
