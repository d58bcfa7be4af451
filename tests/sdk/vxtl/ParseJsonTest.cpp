#include "vxtl/parsejson.h"
#include "support/thrown.h"

#include <nlohmann/json.hpp>

using nlohmann::json;
using vx::parseJson;

namespace {

std::string nested(std::size_t levels, const std::string& open, const std::string& close)
{
    std::string text;
    for (std::size_t i = 1; i < levels; ++i)
        text += open;
    text += "[]";
    for (std::size_t i = 1; i < levels; ++i)
        text += close;
    return text;
}

} // namespace

TEST(ParseJson, readsAndRefusesAsTheLibraryDoes)
{
    for (const char* text : {"null", "[true,-1,18446744073709551615,-1.5e3,\"\\u00fc\\n\"]", " {} ", "[[],{},[{}]]",
             R"({"b":{"c":[1,{"d":null}],"e":2},"a":"x","b":{"f":[]}})"})
        EXPECT_EQ(parseJson(text), json::parse(text)) << text;
    for (const char* text : {"", "{", "[1,]", "1 2", "1e400", "\"\xFF\"", "{\"a\":1}}"}) {
        const auto ours = support::thrown<json::exception>([&] { parseJson(text); });
        const auto library = support::thrown<json::exception>([&] { json value = json::parse(text); });
        EXPECT_STREQ(ours.what(), library.what());
    }
}

TEST(ParseJson, takesAHundredLevelsAndNoMore)
{
    const std::pair<std::string, std::string> forms[] = {
        {"[", "]"}, {"{\"a\":", "}"}, {"[0,[],", ",[]]"}, {"{\"a\":{},\"b\":", ",\"c\":[]}"}};
    for (const auto& [open, close] : forms) {
        const std::string deepest = nested(vx::deepestJson - 2, open, close);
        EXPECT_EQ(parseJson("[{\"x\":" + deepest + "}]")[0]["x"], json::parse(deepest)) << open;
        for (const std::size_t levels : {vx::deepestJson + 1, std::size_t{40000}})
            EXPECT_THROW(parseJson(nested(levels, open, close)), json::parse_error) << open << levels;
    }
}
