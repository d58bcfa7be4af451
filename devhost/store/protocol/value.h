#pragma once

#include "vxtl/enumtext.h"

#include <cstdint>
#include <nlohmann/json_fwd.hpp>
#include <string>
#include <string_view>
#include <variant>

namespace devhost::store {

/// The kinds of values. The numbers are what a notification tells as `type`; 0 means no value.
enum class Type : int { Boolean = 1, Int32 = 2, Int64 = 3, String = 4, Object = 5 };

inline constexpr auto typeTexts = vx::enumTexts<Type>({{Type::Boolean, "bool"}, {Type::Int32, "int32"},
    {Type::Int64, "int64"}, {Type::String, "string"}, {Type::Object, "object"}});
constexpr vx::EnumTexts textsOf(Type)
{
    return {"Type", typeTexts};
}
/// Throws StoreException (InvalidParameter) for a text that is none of them.
Type parseType(std::string_view name);

/// One typed value of the store. Texts are UTF-8. An object is JSON text, kept as it was written. A plain
/// value type: copies are independent, and const use from several threads is safe.
class Value {
public:
    static Value fromBool(bool value) { return Value(value); }
    static Value fromInt32(std::int32_t value) { return Value(value); }
    static Value fromInt64(std::int64_t value) { return Value(value); }
    static Value fromString(std::string value) { return Value(std::move(value)); }
    /// Does not look into the text; the server refuses an object that is not JSON.
    static Value fromObject(std::string json) { return Value(Object{std::move(json)}); }

    /// Reads the text of a command line as a value of the type: "true", "false", "1" or "0"; a decimal
    /// number within the type's range; any text; JSON text. Throws StoreException (InvalidParameter)
    /// that names the text and what was expected.
    static Value parse(std::string_view text, Type type);
    /// Reads what toJson gave; throws StoreException (InvalidParameter) on anything else.
    static Value fromJson(const nlohmann::json& json);

    Type type() const noexcept { return static_cast<Type>(m_value.index() + 1); }

    /// Each throws StoreException (InvalidType) for a value of another type.
    bool asBool() const { return as<bool>(); }
    std::int32_t asInt32() const { return as<std::int32_t>(); }
    std::int64_t asInt64() const { return as<std::int64_t>(); }
    const std::string& asString() const { return as<std::string>(); }
    const std::string& asObject() const { return as<Object>().text; }

    /// The form that parse reads; texts and objects stand as they are, without quotes.
    std::string text() const;
    /// {"type": "int32", "value": 12}; an object's value is its text, so that nothing of it changes.
    nlohmann::json toJson() const;

    bool operator==(const Value&) const = default;

private:
    struct Object {
        std::string text;
        bool operator==(const Object&) const = default;
    };
    using Variant = std::variant<bool, std::int32_t, std::int64_t, std::string, Object>;

    explicit Value(Variant value) : m_value(std::move(value)) {}
    template <typename T>
    const T& as() const
    {
        if (!std::holds_alternative<T>(m_value))
            refuseType();
        return *std::get_if<T>(&m_value);
    }
    [[noreturn]] void refuseType() const;

    Variant m_value;
};

} // namespace devhost::store
