#include "reference/tokens.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <optional>
#include <stdexcept>

namespace tools {

namespace {

bool isWordLetter(char letter)
{
    return std::isalnum(static_cast<unsigned char>(letter)) || letter == '_';
}

class Reader {
public:
    explicit Reader(std::string_view source) : m_source(source) {}

    std::vector<Token> read()
    {
        while (skip(), m_at < m_source.size())
            add(next());
        return std::move(m_tokens);
    }

private:
    bool startsWith(std::string_view text) const { return m_source.substr(m_at).starts_with(text); }

    void skipTo(std::string_view end)
    {
        const auto found = m_source.find(end, m_at);
        if (found == std::string_view::npos)
            throw std::runtime_error("a source ends inside of a comment or a text");
        m_at = found + end.size();
    }

    void skipLine()
    {
        do
            m_at = std::min(m_source.find('\n', m_at), m_source.size() - 1) + 1;
        while (m_at > 1 && m_source[m_at - 2] == '\\' && m_at < m_source.size());
    }

    /// Blanks, comments, the preprocessor's lines.
    void skip()
    {
        while (m_at < m_source.size())
            if (std::isspace(static_cast<unsigned char>(m_source[m_at])))
                ++m_at;
            else if (startsWith("//") || startsWith("#"))
                skipLine();
            else if (startsWith("/*"))
                skipTo("*/");
            else
                return;
    }

    Token next()
    {
        const auto begin = m_at;
        // The ticks inside of numbers open no characters: 10'000.
        const bool isNumber = std::isdigit(static_cast<unsigned char>(m_source[m_at]));
        while (m_at < m_source.size() && (isWordLetter(m_source[m_at]) || (isNumber && m_source[m_at] == '\'')))
            ++m_at;
        const auto word = m_source.substr(begin, m_at - begin);
        const bool isWide = word.starts_with('L');
        if (startsWith("\"") && word.ends_with('R'))
            return finish(Token::Kind::Text, begin, rawLiteral(), isWide);
        if (startsWith("\""))
            return finish(Token::Kind::Text, begin, quoted('"'), isWide);
        if (startsWith("'"))
            return finish(Token::Kind::Character, begin, quoted('\''), isWide);
        if (!word.empty())
            return finish(Token::Kind::Word, begin, {}, false);
        static constexpr std::array<std::string_view, 5> longSigns = {"::", "->", "<<", "&&", "||"};
        const auto sign = std::find_if(longSigns.begin(), longSigns.end(), [&](auto one) { return startsWith(one); });
        m_at += sign == longSigns.end() ? 1 : sign->size();
        return finish(Token::Kind::Sign, begin, {}, false);
    }

    Token finish(Token::Kind kind, std::size_t begin, std::string value, bool isWide) const
    {
        return {kind, m_source.substr(begin, m_at - begin), std::move(value), isWide};
    }

    std::string rawLiteral()
    {
        const auto open = m_source.find('(', m_at);
        const std::string end = ")" + std::string(m_source.substr(m_at + 1, open - m_at - 1)) + "\"";
        m_at = open + 1;
        skipTo(end);
        return std::string(m_source.substr(open + 1, m_at - end.size() - open - 1));
    }

    std::string quoted(char quote)
    {
        std::string value;
        for (++m_at; m_at < m_source.size() && m_source[m_at] != quote; ++m_at)
            value += m_source[m_at] == '\\' && ++m_at < m_source.size() ? meantBy(m_source[m_at]) : m_source[m_at];
        skipTo({&quote, 1});
        return value;
    }

    static char meantBy(char escaped)
    {
        switch (escaped) {
        case 'n': return '\n';
        case 't': return '\t';
        case 'r': return '\r';
        case '0': return '\0';
        default: return escaped;
        }
    }

    void add(Token token)
    {
        if (!token.isText() || m_tokens.empty() || !m_tokens.back().isText())
            return m_tokens.push_back(std::move(token));
        Token& earlier = m_tokens.back();
        earlier.value += token.value;
        earlier.raw = {earlier.raw.data(), token.raw.data() + token.raw.size()};
    }

    std::string_view m_source;
    std::size_t m_at = 0;
    std::vector<Token> m_tokens;
};

/// Where the arguments of a template that begin at `open` end; nothing where the sign compares.
std::optional<std::size_t> closingAngle(Tokens tokens, std::size_t open)
{
    int depth = 0;
    for (std::size_t at = open; at < tokens.size(); ++at) {
        if (tokens[at].is("<"))
            ++depth;
        else if (tokens[at].is(">") && --depth == 0)
            return at;
        else if (!tokens[at].isWord() && !tokens[at].is("::") && !tokens[at].is(",") && !tokens[at].is("*") &&
                 !tokens[at].is("&") && !tokens[at].is(">"))
            return std::nullopt;
    }
    return std::nullopt;
}

/// Whether `throw` stands before a word and the names of its scopes.
bool isThrown(Tokens before)
{
    while (before.size() > 1 && before.back().is("::"))
        before = before.first(before.size() - 2);
    return !before.empty() && before.back().raw == "throw";
}

} // namespace

std::vector<Token> tokensOf(std::string_view source)
{
    return Reader(source).read();
}

std::size_t closing(Tokens tokens, std::size_t open)
{
    int depth = 0;
    for (std::size_t at = open; at < tokens.size(); ++at) {
        const Token& token = tokens[at];
        if (token.is("(") || token.is("[") || token.is("{"))
            ++depth;
        else if ((token.is(")") || token.is("]") || token.is("}")) && --depth == 0)
            return at;
    }
    return tokens.size();
}

std::vector<Tokens> split(Tokens tokens, std::string_view sign)
{
    std::vector<Tokens> pieces;
    std::size_t begin = 0;
    const auto cut = [&](std::size_t end) {
        if (end > begin)
            pieces.push_back(tokens.subspan(begin, end - begin));
    };
    for (std::size_t at = 0; at < tokens.size(); ++at) {
        if (tokens[at].is(sign)) {
            cut(at);
            begin = at + 1;
        } else if (tokens[at].is("(") || tokens[at].is("[") || tokens[at].is("{")) {
            at = closing(tokens, at);
        }
    }
    cut(tokens.size());
    return pieces;
}

std::string rawText(Tokens tokens)
{
    if (tokens.empty())
        return {};
    std::string text;
    for (const char* at = tokens.front().raw.data(); at != tokens.back().raw.data() + tokens.back().raw.size(); ++at)
        if (!std::isspace(static_cast<unsigned char>(*at)))
            text += *at;
        else if (!text.ends_with(' '))
            text += ' ';
    return text;
}

std::vector<Call> callsOf(Tokens tokens)
{
    std::vector<Call> calls;
    for (std::size_t at = 0; at + 1 < tokens.size(); ++at) {
        if (!tokens[at].isWord())
            continue;
        Call call{tokens[at].raw, {}, {}, {}, isThrown(tokens.first(at))};
        std::size_t open = at + 1;
        if (const auto angle = tokens[open].is("<") ? closingAngle(tokens, open) : std::nullopt) {
            call.templateArguments = tokens.subspan(open + 1, *angle - open - 1);
            open = *angle + 1;
        }
        if (open >= tokens.size() || !tokens[open].is("("))
            continue;
        const auto end = closing(tokens, open);
        if (end == tokens.size())
            continue;
        call.arguments = split(tokens.subspan(open + 1, end - open - 1), ",");
        call.rest = tokens.subspan(end + 1);
        calls.push_back(std::move(call));
    }
    return calls;
}

} // namespace tools
