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

template <typename T>
const T& Value::as() const
{
    if (const T* value = std::get_if<T>(&m_value))
        return *value;
    throw StoreException(ErrorCode::InvalidType, "value of type " + vx::toText(type()));
}

bool Value::asBool() const
{
    return as<bool>();
}

std::int32_t Value::asInt32() const
{
    return as<std::int32_t>();
}

std::int64_t Value::asInt64() const
{
    return as<std::int64_t>();
}

const std::string& Value::asString() const
{
    return as<std::string>();
}

const std::string& Value::asObject() const
{
    return as<Object>().text;
}

std::string Value::text() const
{
    switch (type()) {
    case Type::Boolean: return asBool() ? "true" : "false";
    case Type::Int32: return std::to_string(asInt32());
    case Type::Int64: return std::to_string(asInt64());
    case Type::String: return asString();
    case Type::Object: return asObject();
    }
    return {};
}

nlohmann::json Value::toJson() const
{
    nlohmann::json json{{"type", vx::toText(type())}};
    switch (type()) {
    case Type::Boolean: json["value"] = asBool(); break;
    case Type::Int32: json["value"] = asInt32(); break;
    case Type::Int64: json["value"] = asInt64(); break;
    case Type::String: json["value"] = asString(); break;
    case Type::Object: json["value"] = asObject(); break;
    }
    return json;
}

} // namespace devhost::store
