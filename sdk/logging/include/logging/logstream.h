#pragma once

#include "logging/backend.h"
#include "logging/details/messagetext.h"
#include "logging/details/textbuffer.h"
#include "logging/functionname.h"

#include <charconv>
#include <concepts>
#include <exception>
#include <optional>
#include <ostream>
#include <string>
#include <string_view>
#include <type_traits>

namespace vx::logging {

/// Levels of the program's own code. Values outside the four are written as verbose.
enum class Level : int { Debug = 0, Info = 1, Warning = 2, Error = 3 };

constexpr int backendLevel(Level level) noexcept
{
    switch (level) {
    case Level::Debug: return 5;
    case Level::Info: return 4;
    case Level::Warning: return 3;
    case Level::Error: return 2;
    }
    return 6;
}

inline bool isEnabled(Level level) noexcept
{
    return VxQrlLogging::isEnabled(backendLevel(level));
}

/// One log message: values are inserted, the text is logged at destruction. A stack object of one
/// thread. When the level is filtered nothing is built and every inserter is one test. Inserters and
/// destructor never throw, and the thread's last error survives the object's whole life.
class LogStream {
public:
    explicit LogStream(Level level) noexcept : m_level(level)
    {
        if (vx::logging::isEnabled(level)) [[unlikely]]
            start();
    }
    ~LogStream()
    {
        if (m_text) [[unlikely]]
            finish();
    }
    LogStream(const LogStream&) = delete;
    LogStream& operator=(const LogStream&) = delete;

    bool isEnabled() const noexcept { return m_text.has_value(); }

    /// Narrow text is UTF-8, wide text is UTF-16 and converted; pointers print in hexadecimal.
    template <typename T>
        requires(!std::derived_from<T, std::exception>)
    LogStream& operator<<(const T& value) noexcept
    {
        if (m_text) [[unlikely]]
            insert(value);
        return *this;
    }

private:
    template <typename T>
    void insert(const T& value) noexcept;
    void append(std::string_view text) noexcept;
    void appendWide(std::wstring_view text) noexcept;
    void start() noexcept;
    void finish() noexcept;

    Level m_level;
    std::optional<details::MessageText> m_text;
};

namespace details {
/// Integers that a stream prints as numbers: not the characters, not bool.
template <typename T>
concept PlainInteger = std::integral<T> && !std::same_as<T, bool> && sizeof(T) > 1 && !std::same_as<T, wchar_t> &&
                       !std::same_as<T, char16_t> && !std::same_as<T, char32_t>;
} // namespace details

template <typename T>
void LogStream::insert(const T& value) noexcept
{
    if constexpr (std::convertible_to<const T&, const char*>) {
        const char* text = value;
        append(text ? std::string_view(text) : std::string_view());
    } else if constexpr (std::convertible_to<const T&, std::string_view>) {
        append(value);
    } else if constexpr (std::convertible_to<const T&, const wchar_t*>) {
        const wchar_t* text = value;
        appendWide(text ? std::wstring_view(text) : std::wstring_view());
    } else if constexpr (std::convertible_to<const T&, std::wstring_view>) {
        appendWide(value);
    } else if constexpr (details::PlainInteger<T>) {
        char digits[24];
        append({digits, std::to_chars(digits, digits + sizeof digits, value).ptr});
    } else if constexpr (std::same_as<T, char>) {
        append({&value, 1});
    } else {
        try {
            std::string text;
            details::TextBuffer<char> buffer(text);
            std::ostream stream(&buffer);
            stream << value;
            append(text);
        } catch (...) {
        }
    }
}

/// Traces a function: "{ name" at construction, "} name" at destruction, and what the thread logs in
/// between stands two blanks further in. A stack object; builds nothing when debug is filtered.
class LogScope {
public:
    /// `name` must outlive the object.
    explicit LogScope(const char* name) noexcept : m_name(name)
    {
        if (isEnabled(Level::Debug)) [[unlikely]]
            enter();
    }
    ~LogScope()
    {
        if (m_entered) [[unlikely]]
            leave();
    }
    LogScope(const LogScope&) = delete;
    LogScope& operator=(const LogScope&) = delete;

private:
    void enter() noexcept;
    void leave() noexcept;
    void write(std::string_view brace, int indentChange) const noexcept;

    const char* m_name;
    bool m_entered = false;
};

namespace details {
/// Takes the next name off a stringized argument list; commas inside brackets and quotes don't cut.
std::string_view takeArgumentName(std::string_view& names) noexcept;
} // namespace details

/// Logs "name: value" pairs joined by ", " at debug level; `names` is the stringized argument list.
template <typename... Values>
void logValues(std::string_view names, const Values&... values) noexcept
{
    LogStream stream(Level::Debug);
    std::string_view separator;
    ((stream << separator << details::takeArgumentName(names) << ": " << values, separator = ", "), ...);
}

} // namespace vx::logging

/// Opens a LogScope named after the enclosing function. Reports of failures take the name from vxScopeName.
#define VX_LOG_SCOPE()                                                                                                 \
    static constexpr ::vx::logging::FunctionName vxScopeName{__PRETTY_FUNCTION__};                                     \
    const ::vx::logging::LogScope vxScope(vxScopeName.c_str())

/// Logs the expressions as "text of the expression: value"; evaluates them only when debug is on.
#define VX_LOG_VALUES(...)                                                                                             \
    do {                                                                                                               \
        if (::vx::logging::isEnabled(::vx::logging::Level::Debug))                                                     \
            ::vx::logging::logValues(#__VA_ARGS__, __VA_ARGS__);                                                       \
    } while (false)
