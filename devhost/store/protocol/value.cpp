#include "store/protocol/value.h"

#include "store/protocol/errorcode.h"

#include <charconv>
#include <nlohmann/json.hpp>
#include <optional>

namespace devhost::store {

namespace {

[[noreturn]] void refuse(std::string_view text, std::string_view expected)
{
    throw StoreException(ErrorCode::InvalidParameter, "'" + std::string(text) + "'", "not " + std::string(expected));
}

template <typename Number>
std::optional<Number> toNumber(std::string_view text)
{
    Number number{};
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc() || end != text.data() + text.size())
        return std::nullopt;
    return number;
}

std::optional<bool> toBool(std::string_view text)
{
    if (text == "true" || text == "1")
        return true;
    if (text == "false" || text == "0")
        return false;
    return std::nullopt;
}

} // namespace

Type parseType(std::string_view name)
{
    if (const auto type = vx::findText<Type>(name))
        return *type;
    refuse(name, "a type (bool, int32, int64, string, object)");
}

Value Value::parse(std::string_view text, Type type)
{
    switch (type) {
    case Type::Boolean:
        if (const auto value = toBool(text))
            return fromBool(*value);
        refuse(text, "a bool (true, false, 1, 0)");
    case Type::Int32:
        if (const auto value = toNumber<std::int32_t>(text))
            return fromInt32(*value);
        refuse(text, "a number of 32 bits");
    case Type::Int64:
        if (const auto value = toNumber<std::int64_t>(text))
            return fromInt64(*value);
        refuse(text, "a number of 64 bits");
    case Type::String: return fromString(std::string(text));
    case Type::Object:
        if (!nlohmann::json::accept(text))
            refuse(text, "JSON");
        return fromObject(std::string(text));
    }
    refuse(text, "a value of a known type");
}

Value Value::fromJson(const nlohmann::json& json)
{
    try {
        const Type type = parseType(json.at("type").get<std::string>());
        const nlohmann::json& value = json.at("value");
        // The library converts between numbers and cuts them off without a word, so the ranges are
        // checked by the way through text.
        switch (type) {
        case Type::Boolean: return fromBool(value.get<bool>());
        case Type::Int32:
        case Type::Int64: return parse(value.is_number_integer() ? value.dump() : "?", type);
        case Type::String: return fromString(value.get<std::string>());
        case Type::Object: return fromObject(value.get<std::string>());
        }
    } catch (const nlohmann::json::exception& exception) {
        throw StoreException(ErrorCode::InvalidParameter, "value", exception.what());
    }
    throw StoreException(ErrorCode::InvalidParameter, "value");
}

void Value::refuseType() const
{
    throw StoreException(ErrorCode::InvalidType, "value of type " + vx::toText(type()));
}

std::string Value::text() const
{
    const nlohmann::json value = toJson().at("value");
    return value.is_string() ? value.get<std::string>() : value.dump();
}

nlohmann::json Value::toJson() const
{
    nlohmann::json json{{"type", vx::toText(type())}};
    const auto put = [&](const auto& value) {
        if constexpr (requires { value.text; })
            json["value"] = value.text;
        else
            json["value"] = value;
    };
    std::visit(put, m_value);
    return json;
}

} // namespace devhost::store
