#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace tools {

/// A piece of a C++ source. Comments and the preprocessor's lines are none.
struct Token {
    enum class Kind { Word, Text, Character, Sign };

    Kind kind;
    std::string_view raw; ///< as it stands in the source, which is borrowed
    std::string value;    ///< of texts and characters, in UTF-8; texts side by side are one
    bool isWide = false;

    bool isWord() const { return kind == Kind::Word; }
    bool isText() const { return kind == Kind::Text; }
    bool is(std::string_view sign) const { return kind == Kind::Sign && raw == sign; }
};

using Tokens = std::span<const Token>;

/// Throws std::runtime_error where a text or a comment has no end.
std::vector<Token> tokensOf(std::string_view source);

/// Where the bracket at `open` is closed; the end where it never is.
std::size_t closing(Tokens tokens, std::size_t open);
/// Cuts at the sign, but not inside of brackets; no pieces of nothing.
std::vector<Tokens> split(Tokens tokens, std::string_view sign);
/// The expression as the source has it, blanks and ends of lines as one blank each.
std::string rawText(Tokens tokens);

/// Something that is called, or has its parameters told.
struct Call {
    std::string_view name;
    Tokens templateArguments;
    std::vector<Tokens> arguments;
    Tokens rest; ///< everything behind it
    bool isThrown = false;
};
std::vector<Call> callsOf(Tokens tokens);

} // namespace tools
