#include "reference/loglines.h"
#include "reference/loglinespage.h"

#include <gmock/gmock.h>

using namespace tools;
using testing::HasSubstr;

namespace {

/// "level: text" of each.
std::string linesOf(std::string_view source)
{
    const auto tokens = tokensOf(source);
    Constants constants;
    constants.add(tokens);
    LogHelpers helpers;
    findHelpers(tokens, helpers);
    std::string all;
    for (const auto& line : logLinesOf(tokens, constants, helpers))
        all += line.level + ": " + line.text + "\n";
    return all;
}

struct Case {
    const char* label;
    const char* source;
    const char* lines;
};

} // namespace

TEST(LogLines, areFoundInEachFormOfAStatement)
{
    constexpr Case cases[] = {
        {"pieces", R"(LogStream(Level::Info) << "The \"file\" " L"is" << '"' << m_job.name << "\".";)",
            "info: The \"file\" is\"<name>\".\n"},
        {"names", R"(vx::LogStream(vx::Level::Error) << "a " << toText(*time) << m_driver->lastError() << p.c_str()
                << static_cast<int>(m_kind) << o.value_or(-1) << list[0] << i + 1 << What(e);)",
            "error: a <time><lastError><p><kind><o><list><i + 1><exception>\n"},
        {"choice", R"(LogStream(Level::Info) << "it " << (on ? "is" : other);)", "info: it (is|<other>)\n"},
        {"constant", R"(constexpr auto what = "was it"; const int most = 3'600; constexpr int few = 7;
                auto now = "no"; LogStream(Level::Debug) << what << most << few << now;)",
            "debug: was it<most>7<now>\n"},
        {"several constants", R"(struct A { static constexpr const char* t = "an a"; };
                struct B { static constexpr const char* t = "a b"; }; LogStream(Level::Info) << Kind::t << '.';)",
            "info: an a.\ninfo: a b.\n"},
        {"inside of brackets", R"(f([&] { LogStream(Level::Info) << "in " << g(1, 2); }, "out");)", "info: in <1>\n"},
        {"guarded", R"(guarded("Bad: ", [] {}); guardedAgainst<std::exception>(Level::Warning, L"Odd " + name, [] {});
                guarded([] { f("x"); });)",
            "error: Bad: <exception>\nwarning: Odd <name><exception>\n"},
        {"values", R"(VX_LOG_VALUES(name, static_cast<int>(
                kind)); logValues("url, file", a, b);)",
            "debug: name: <name>, static_cast<int>( kind): <kind>\ndebug: url: <url>, file: <file>\n"},
        {"formats", R"(constexpr int bad = 2; log(bad, L"was %08X of %s\n", code, text.c_str());)",
            "error: was <code> of <text>\n"},
        {"exceptions",
            R"(VX_THROW(E, L"one " + a); VX_THROW_WIN32(GetLastError(), L"two"); throw x::E(std::string("three ") + a);
                VX_THROW_AS(E, L"f", 1, L"four");)",
            "exception: one <a>\nexception: two\nexception: three <a>\nexception: four\n"},
        {"helpers", R"(bool ok(long r, std::string_view m) noexcept { LogStream(Level::Error) << m << r; }
                bool put(int p, std::string_view failure) { return ok(p, failure); } void f() { put(1, "no put "); })",
            "error: no put <result>\n"},
        {"no statements", R"(LogStream(Level::Info) << a << ' ' << b; // LogStream(Level::Info) << "no";
                #define X LogStream(Level::Info) << "no";
                /* "no " */ static_assert(true, "is no line");)",
            ""},
        {"parts", R"x(return "was it " + name + "x y" + R"(said "no" then)";)x",
            "part: was it \npart: said \"no\" then\n"},
        {"said twice", R"(LogStream(Level::Info) << "a"; LogStream(Level::Info) << "a";)", "info: a\n"},
    };
    for (const auto& one : cases) {
        SCOPED_TRACE(one.label);
        EXPECT_EQ(linesOf(one.source), one.lines);
    }
}

TEST(LogLines, standBelowTheirUnitWithTheConstantsOfItsHeaders)
{
    const auto page = logLinesPage({{"sdk/a/include/a/h.h", "inline constexpr auto t = \"of a|b\";"},
        {"sdk/a/src/s.cpp", "void f() { LogStream(Level::Info) << t; }"},
        {"src/common/b/s.cpp", "void f() { LogStream(Level::Info) << \"t \" << t; }"}});
    EXPECT_THAT(page, HasSubstr("## sdk/a\n\n| Level | Text | Source |\n|---|---|---|\n"
                                "| info | `of a\\|b` | src/s.cpp |\n\n## src/common/b\n"));
    EXPECT_THAT(page, HasSubstr("| info | `t <t>` | s.cpp |\n"));
}
