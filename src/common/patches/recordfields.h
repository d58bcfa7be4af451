#pragma once

#include "common/patches/patchrecords.h"

#include <cstdint>
#include <nlohmann/json.hpp>
#include <span>
#include <string_view>
#include <type_traits>

namespace vx::tarn::common::details {

using nlohmann::json;

/// One member of a record: its JSON key, and how it is read and written. Records share the code below through
/// tables of these, which are sorted by key as a JSON object's members are.
struct Field {
    std::string_view key;
    bool (*read)(const json& value, void* record);
    json (*write)(const void* record) = nullptr; ///< null in a record that is only read
};

// Reading throws type error 302 and std::invalid_argument. Each tells whether the value is just as `write` makes it.

bool read(const json& value, std::wstring& target);
bool read(const json& value, std::int64_t& target);
bool read(const json& value, std::vector<std::wstring>& target);
bool read(const json& value, ValueItem& target);
bool read(const json& value, InstallationResultItem& target);
bool read(const json& value, PatchSpecifier& target);
bool read(const json& value, PatchStatus& target);

json write(const std::wstring& text);
json write(std::int64_t number);
json write(const std::vector<std::wstring>& texts);
json write(ValueItem value);
json write(InstallationResultItem value);
json write(const PatchSpecifier& specifier);
json write(const PatchStatus& status);

/// Members and fields are both sorted, so one walk meets them all. Tells whether the value is just as writeMembers
/// makes it.
bool readMembers(const json& value, std::span<const Field> fields, void* record);
json writeMembers(std::span<const Field> fields, const void* record);

// `read` for a record that does not keep the value: texts are not even converted.

template <typename Value>
bool check(const json& value)
{
    Value dropped{};
    return read(value, dropped);
}

template <>
bool check<std::wstring>(const json& value);
template <>
bool check<std::vector<std::wstring>>(const json& value);
template <>
bool check<PatchSpecifier>(const json& value);

template <typename Record, auto member>
constexpr Field readOnly(std::string_view key)
{
    return {key, [](const json& value, void* record) { return read(value, static_cast<Record*>(record)->*member); }};
}

/// A number that comes back with its lowest 16 bits alone.
template <typename Record, auto member>
constexpr Field narrowed(std::string_view key)
{
    return {key, [](const json& value, void* record) {
                std::int64_t& number = static_cast<Record*>(record)->*member;
                return read(value, number) && number == static_cast<std::uint16_t>(number);
            }};
}

template <typename Record, auto member>
constexpr Field field(std::string_view key)
{
    Field both = readOnly<Record, member>(key);
    both.write = [](const void* record) { return write(static_cast<const Record*>(record)->*member); };
    return both;
}

template <typename Record, typename Value>
Record declarerOf(Value Record::*);
template <typename Record, typename Value>
Value valueOf(Value Record::*);

/// A member of the whole record that `Kept`, a part of it, does without.
template <typename Kept, auto member>
constexpr Field dropped(std::string_view key)
{
    static_assert(!std::is_base_of_v<decltype(declarerOf(member)), Kept>, "the record keeps this member");
    return {key, [](const json& value, void*) { return check<decltype(valueOf(member))>(value); }};
}

} // namespace vx::tarn::common::details
