#pragma once

#include "settings-api/settings.h"
#include "vxtl/enumtext.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <nlohmann/json_fwd.hpp>
#include <span>
#include <string>
#include <type_traits>

namespace vx::tarn {

/// What the plug-in does with a key.
enum class KeyAccess : std::uint8_t { Watched, Read, Write, ReadWrite };

/// What the store holds under a key. Untold: a matter between others.
enum class KeyType : std::uint8_t { Untold, Bool, Int32, Int64, String, Json };
inline constexpr auto keyTypeTexts = enumTexts<KeyType>({{KeyType::Untold, "untold"}, {KeyType::Bool, "bool"},
    {KeyType::Int32, "int32"}, {KeyType::Int64, "int64"}, {KeyType::String, "string"}, {KeyType::Json, "json"}});
constexpr EnumTexts textsOf(KeyType)
{
    return {"KeyType", keyTypeTexts};
}

/// What rows of one type have in common.
struct KeyKind {
    KeyType type;
    KeyAccess access;
    const char* unit;                  ///< of the number; null where it has none
    std::span<const EnumText> choices; ///< the texts that a text may be; none: any
};

/// A row's default: a text, in ASCII, under a key of type String, a number or 0 and 1 under the others. JSON is an
/// empty array.
union KeyDefault {
    KeyDefault() : number(0) {}
    KeyDefault(std::int64_t value) : number(value) {}
    KeyDefault(const char* value) : text(value) {}

    std::int64_t number;
    const char* text;
};

/// One row as data. What it points to lives as long as the module.
struct KeyInfo {
    const wchar_t* name;
    const KeyKind* kind;
    KeyDefault fallback;
};

/// Takes down each row that is made with it.
class KeyList {
public:
    virtual ~KeyList() = default;
    virtual void add(const KeyInfo& key) = 0;
};

/// What rows are made with: the store that they read and write; or null or a list, for rows that are asked for no more
/// than their keys.
struct KeyStore {
    KeyStore(std::shared_ptr<settings::Settings> handle) : settings(std::move(handle)) {}
    KeyStore(std::nullptr_t) {}
    KeyStore(KeyList& rows) : list(&rows) {}

    std::shared_ptr<settings::Settings> settings;
    KeyList* list = nullptr; ///< borrowed while rows are made
};

/// A key of the store. Any thread; holds no value. Borrows the store from the section that it is a member of.
class KeyRow {
public:
    KeyRow(const KeyRow&) = default;
    KeyRow& operator=(const KeyRow&) = delete;

    /// The full dotted name.
    const wchar_t* key() const { return m_info.name; }

protected:
    KeyRow(const KeyStore& store, const wchar_t* name, const KeyKind& kind, KeyDefault fallback);
    ~KeyRow() = default;

    /// The default when the store throws NotFoundException, and then the log says so; whatever else it throws passes
    /// on.
    bool read(std::type_identity<bool>) const;
    std::int32_t read(std::type_identity<std::int32_t>) const;
    std::int64_t read(std::type_identity<std::int64_t>) const;
    std::wstring read(std::type_identity<std::wstring>) const;
    nlohmann::json read(std::type_identity<nlohmann::json>) const;
    void write(bool value) const;
    void write(std::int64_t value) const;
    void write(const std::wstring& value) const;
    void write(const nlohmann::json& value) const;

private:
    template <typename Get, typename Default>
    auto readOr(Get get, Default fallback) const;

    const KeyInfo m_info;
    const settings::Settings* const m_settings;
};

} // namespace vx::tarn
