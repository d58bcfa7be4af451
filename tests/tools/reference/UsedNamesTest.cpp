#include "reference/usednames.h"

#include <gmock/gmock.h>

using testing::ElementsAre;
using testing::IsEmpty;

TEST(UsedNames, tellWhatNoTableHas)
{
    struct Case {
        const char* path;
        const char* text;
        const char* name; ///< null for none
    };
    constexpr Case cases[] = {
        {"src/a/a/a.cpp", R"(CreateMutexW(nullptr, FALSE, L"Mine");)", "Mine"},
        {"src/a/a/a.cpp", R"(constexpr wchar_t mine[] = L"Mine"; factory->createEvent(true, false, mine, false);)",
            "Mine"},
        {"src/a/a/a.cpp", R"(std::make_shared<sync::GlobalMutex>(L"Mine", true);)", "Mine"},
        {"src/a/a/a.cpp", R"(key->getStringValue(places::inHeader);)", "Header's"},
        {"src/a/a/a.cpp", R"(open(L"HKEY_LOCAL_MACHINE\\Mine");)", "HKEY_LOCAL_MACHINE\\Mine"},
        {"src/a/a/a.cpp", R"(f(L"Global\\Mine");)", "Global\\Mine"},
        {"src/a/a/someplaces.h", R"(constexpr auto mine = L"Mine";)", "Mine"},
        {"src/a/a/a.cpp", R"(CreateEventW(nullptr, TRUE, FALSE, nullptr); createEvent(true, false, L"", false);)",
            nullptr},
        {"src/a/a/a.cpp", R"(CreateMutexW(nullptr, FALSE, L"Known"); openKey(name); f(L"Mine", L"HKEY_USERS");)",
            nullptr},
    };
    for (const auto& one : cases) {
        SCOPED_TRACE(one.text);
        const auto found = tools::unknownNames(
            {{one.path, one.text}, {"src/b/b/b.h", R"(inline constexpr auto inHeader = L"Header's";)"}}, {"Known"});
        if (one.name)
            EXPECT_THAT(found, ElementsAre(std::string(one.path) + ": " + one.name));
        else
            EXPECT_THAT(found, IsEmpty());
    }
}
