#pragma once

#include "settings-api/details/settingscache.h"
#include "settings-api/settingsimpl.h"
#include "vxtl/str.h"

/// The six types of values: how the cache holds them, which operations of a provider carry them and how failures
/// are told.
namespace vx::settings::details {

/// A value that JSON holds as it is.
template <typename T>
struct PlainKind {
    using Value = T;
    static nlohmann::json toJson(const T& value) { return value; }
    static T fromJson(const nlohmann::json& value) { return value.get<T>(); }
};

struct BoolKind : PlainKind<bool> {
    static constexpr auto type = ValueType::Bool;
    static constexpr auto get = &SettingsImpl::getBoolValue;
    static constexpr auto set = &SettingsImpl::setBoolValue;
    static constexpr const char* readFailure = "Failed to read a bool value: ";
    static constexpr const char* writeFailure = "Failed to set bool value: ";
};

struct Int32Kind : PlainKind<std::int32_t> {
    static constexpr auto type = ValueType::Int32;
    static constexpr auto get = &SettingsImpl::getInt32Value;
    static constexpr auto set = &SettingsImpl::setInt32Value;
    static constexpr const char* readFailure = "Failed to read a std::int32_t value: ";
    static constexpr const char* writeFailure = "Failed to set int32 value: ";
};

struct Int64Kind : PlainKind<std::int64_t> {
    static constexpr auto type = ValueType::Int64;
    static constexpr auto get = &SettingsImpl::getInt64Value;
    static constexpr auto set = &SettingsImpl::setInt64Value;
    static constexpr const char* readFailure = "Failed to read a std::int64_t value: ";
    static constexpr const char* writeFailure = "Failed to set int64 value: ";
};

struct DoubleKind : PlainKind<double> {
    static constexpr auto type = ValueType::Double;
    static constexpr auto get = &SettingsImpl::getDoubleValue;
    static constexpr auto set = &SettingsImpl::setDoubleValue;
    static constexpr const char* readFailure = "Failed to read a double value: ";
    static constexpr const char* writeFailure = "Failed to set double value: ";
};

struct StringKind {
    using Value = std::wstring;
    // What is only kept must not fail a call that the provider answers.
    static nlohmann::json toJson(const std::wstring& value) { return str::toUtf8Lossy(value); }
    static std::wstring fromJson(const nlohmann::json& value) { return str::fromUtf8(value.get<std::string>()); }
    static constexpr auto type = ValueType::String;
    static constexpr auto get = &SettingsImpl::getStringValue;
    static constexpr auto set = &SettingsImpl::setStringValue;
    static constexpr const char* readFailure = "Failed to read a std::wstring value: ";
    static constexpr const char* writeFailure = "Failed to set name value: "; // in just these words
};

struct JsonKind {
    using Value = nlohmann::json;
    static const nlohmann::json& toJson(const nlohmann::json& value) { return value; }
    static const nlohmann::json& fromJson(const nlohmann::json& value) { return value; }
    static constexpr auto type = ValueType::Json;
    static constexpr auto get = &SettingsImpl::getJsonValue;
    static constexpr auto set = &SettingsImpl::setJsonValue;
    static constexpr const char* readFailure = "Failed to read a nlohmann::json value: ";
    static constexpr const char* writeFailure = "Failed to set json value: ";
};

} // namespace vx::settings::details
