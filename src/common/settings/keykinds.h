#pragma once

#include "common/settings/keyrow.h"
#include "vxtl/str.h"

#include <chrono>
#include <type_traits>

namespace vx::tarn {

/// A row of the table of keys: name, type, unit and default at once. `row()` reads, `row.set(value)` writes; what
/// the access does not allow does not compile. A read answers the default for a missing key only: other failures of
/// the store pass on, and a text that no enumerator has throws std::invalid_argument.
template <typename Kind, KeyAccess access>
class Key : public KeyRow {
    static constexpr bool reads = access == KeyAccess::Read || access == KeyAccess::ReadWrite;
    static constexpr bool writes = access == KeyAccess::Write || access == KeyAccess::ReadWrite;
    static constexpr bool hasDefault = reads && !std::is_void_v<typename Kind::Default>;
    static constexpr KeyKind kind{Kind::type, access, Kind::unit, Kind::choices};
    /// No void, which would not do as a parameter, even of a constructor that is left out.
    using Default = std::conditional_t<hasDefault, typename Kind::Default, std::nullptr_t>;

public:
    using Value = typename Kind::Value;

    Key(const KeyStore& store, const wchar_t* name, Default fallback) requires(hasDefault)
        : KeyRow(store, name, kind, fallback)
    {}
    Key(const KeyStore& store, const wchar_t* name) requires(!hasDefault) : KeyRow(store, name, kind, {}) {}

    Value operator()() const requires(reads)
    {
        return Kind::fromStore(read(std::type_identity<typename Kind::Stored>()));
    }
    void set(const Value& value) const requires(writes) { write(Kind::toStore(value)); }
};

/// The vocabulary of rows, for the sections to inherit: `Read<Minutes> delay{m_store, L"a.delay", 1};`
class KeyKinds {
protected:
    /// A value that stands in the store as it is used.
    template <KeyType keyType, typename StoredValue, typename DefaultValue = StoredValue>
    struct Plain {
        using Value = StoredValue;
        using Stored = StoredValue;
        using Default = DefaultValue; ///< void: always the same
        static constexpr KeyType type = keyType;
        static constexpr const char* unit = nullptr;
        static constexpr std::span<const EnumText> choices{};
        static Stored fromStore(Stored stored) { return stored; }
        static const Value& toStore(const Value& value) { return value; }
    };
    struct Bool : Plain<KeyType::Bool, bool> {};
    struct Int32 : Plain<KeyType::Int32, std::int32_t> {};
    struct Int64 : Plain<KeyType::Int64, std::int64_t> {};
    struct Text : Plain<KeyType::String, std::wstring, const char*> {};
    /// A JSON array, by default an empty one.
    struct List : Plain<KeyType::Json, nlohmann::json, void> {};
    /// 0 to 23.
    struct HourOfDay : Int32 {
        static constexpr const char* unit = "hour of the day";
    };
    /// A moment.
    struct Timestamp : Int64 {
        static constexpr const char* unit = "seconds since 1970";
    };

    /// A length of time; a default is a number of its units.
    template <typename Duration, typename Number>
    struct Length : Number {
        using Value = Duration;
        static Value fromStore(typename Number::Stored stored) { return Value(stored); }
    };
    struct Hours : Length<std::chrono::hours, Int32> {
        static constexpr const char* unit = "hours";
    };
    struct Minutes : Length<std::chrono::minutes, Int32> {
        static constexpr const char* unit = "minutes";
    };
    struct Seconds : Length<std::chrono::seconds, Int64> {
        static constexpr const char* unit = "seconds";
    };

    /// An enumerator, in the store by its text.
    template <typename Enum>
    struct Choice : Text {
        using Value = Enum;
        struct Default {
            /// An enumerator without a text does not compile.
            consteval Default(Enum value) : text(textsOf(value).find(static_cast<std::int32_t>(value))->text) {}
            operator KeyDefault() const { return text; }
            const char* text;
        };
        static constexpr std::span<const EnumText> choices = textsOf(Enum()).rows;
        static Value fromStore(const std::wstring& stored) { return fromText<Enum>(stored); }
        static std::wstring toStore(Value value) { return str::fromUtf8(toText(value)); }
    };

    template <typename Kind>
    using Read = Key<Kind, KeyAccess::Read>;
    template <typename Kind>
    using ReadWrite = Key<Kind, KeyAccess::ReadWrite>;
    template <typename Kind>
    using Write = Key<Kind, KeyAccess::Write>;
    /// Others read and write it; the plug-in is told of changes.
    class Watched : public KeyRow {
        static constexpr KeyKind kind{KeyType::Untold, KeyAccess::Watched, nullptr, {}};

    public:
        Watched(const KeyStore& store, const wchar_t* name) : KeyRow(store, name, kind, {}) {}
    };
};

/// One level of the tree of keys: holds a share of the store's handle and no values.
class SettingsSection : protected KeyKinds {
public:
    explicit SettingsSection(KeyStore store) : m_store(std::move(store)) {}

protected:
    ~SettingsSection() = default;
    SettingsSection(const SettingsSection&) = default;

    const KeyStore m_store;
};

} // namespace vx::tarn
