#pragma once

#include "store/protocol/value.h"

#include <cstdint>
#include <map>
#include <optional>
#include <string>

namespace devhost::store {

/// All values of a store in memory, with the text form of its file. Each change gets the next revision, a
/// number that also survives restarts. No locks: one thread at a time.
class ValueStore {
public:
    /// A value and its age.
    struct Entry {
        Value value;
        std::int64_t revision; ///< of the value's last change
    };
    using Entries = std::map<std::string, Entry, std::less<>>;

    /// Reads what serialize gave; throws StoreException (SchemaViolation) that says what is wrong.
    static ValueStore parse(const std::string& text);
    std::string serialize() const;

    const Entry* find(const std::string& name) const;
    const Entries& entries() const noexcept { return m_entries; }
    /// Of the last change of any value; 0 for a store that never held one.
    std::int64_t revision() const noexcept { return m_revision; }

    /// Gives what stood there before. No value removes the name.
    std::optional<Entry> put(const std::string& name, std::optional<Value> value);
    /// Takes the last put back.
    void restore(const std::string& name, std::optional<Entry> previous);

private:
    Entries m_entries;
    std::int64_t m_revision = 0;
};

} // namespace devhost::store
