#include "flyer-api/vxflyerapi.h"
#include "flyer-api/flyerdefinition.h"
#include "support/thrown.h"

#include <map>

using namespace vx::flyers;
using testing::ElementsAre;
using vx::delayload::LoadResult;
using vx::delayload::LoadStatus;

namespace {

std::string numbers;                              // the library's, of flyers and their actions
std::vector<std::wstring> calls;                  // "wrong" for one of another flyer
std::map<std::wstring, std::vector<int>> planned; // what the next calls of a function answer, the last one first

FlyerHandle handle()
{
    return reinterpret_cast<FlyerHandle>(7);
}

VxFlyerError_enum note(const std::wstring& function, FlyerHandle flyer)
{
    calls.push_back(flyer == handle() ? function : L"wrong");
    auto& codes = planned[function];
    const int code = codes.empty() ? 0 : codes.back();
    codes.resize(codes.empty() ? 0 : codes.size() - 1);
    return static_cast<VxFlyerError_enum>(code);
}

LoadResult load(FlyerLibrary& library)
{
    library = {[](auto, auto, auto, auto type, auto* flyer) {
                   numbers += std::to_string(type);
                   return note(L"create", *flyer = handle());
               },
        [](auto flyer, auto) { return note(L"details", flyer); },
        [](auto flyer, auto, auto* action, auto) { return note(action ? L"item" : L"item without", flyer); },
        [](auto flyer, auto, auto* action, auto) { return note(action ? L"button" : L"button without", flyer); },
        [](auto flyer, auto* action) {
            numbers += std::to_string(action->type) + ' ';
            return note(L"action", flyer);
        },
        [](auto flyer, auto, auto) { return note(L"show", flyer); }, [](auto flyer) { note(L"close", flyer); }};
    return {};
}

struct VxFlyerApiTest : testing::Test {
    VxFlyerApiTest() { calls.clear(), planned.clear(); }

    VxFlyerApi api{load};
    FlyerDefinition flyer{0, L"H", L"M", {L"one", L"two"}, {{true, L"i", actions::DropDownAction(1)}, {}},
        {{L"b", actions::ButtonAction(1)}, {}}, actions::ButtonAction(1)};
};

} // namespace

TEST_F(VxFlyerApiTest, tellsTheLibraryWhatThereIsInOrderAndClosesTheFlyer)
{
    api.showFlyer(flyer, 42);
    EXPECT_THAT(calls, ElementsAre(L"create", L"details", L"item", L"item without", L"button", L"button without",
                           L"action", L"show", L"close"));
    calls.clear();
    api.showFlyer({}, 0);
    EXPECT_THAT(calls, ElementsAre(L"create", L"show", L"close"));
    api.showFlyer({0, L"", L"", {L""}, {}, {}, {}}, 0);
    EXPECT_EQ(calls[4], L"details") << "an empty line is one";
    numbers.clear();
    for (int type = 0; type < 4; ++type)
        api.showFlyer({type, L"", L"", {}, {}, {}, actions::ButtonAction(type + 1)}, 0);
    EXPECT_EQ(numbers, "21 32 10 03 ");
}

TEST_F(VxFlyerApiTest, failsEachStepWithItsFirstCodeAndTheTextOfTheSecondCall)
{
    const std::tuple<std::wstring, int, int, std::wstring> rows[] = {{L"create", 4, 0, L"Success"},
        {L"create", 5, 5, L"Service unavailable"}, {L"details", 5, 1, L"Generic failure"},
        {L"item", 1, 2, L"Invalid paremeter"}, {L"button", 1, 3, L"Access denied"},
        {L"action", 1, 4, L"Reached maximun number of items"}, {L"show", 1, 6, L"Unknown error code"}};
    for (const auto& [function, first, second, reason] : rows) {
        SCOPED_TRACE(testing::Message() << function << ' ' << second);
        calls.clear();
        planned = {{function, {second, first}}};
        const auto failure = support::thrown<vx::VxFlyerException>([&] { api.showFlyer(flyer, 0); });
        EXPECT_EQ(static_cast<int>(failure.code()), first);
        const std::wstring report =
            L"Type: VxFlyerException, Reason: " + reason + L", Function: vx::flyers::VxFlyerApi::showFlyer, ";
        EXPECT_THAT(failure.wideWhat(), testing::StartsWith(report));
        // A flyer that only the second call may have made is not closed.
        if (function != L"create") {
            EXPECT_EQ(calls.back(), L"close");
            calls.pop_back();
        }
        EXPECT_EQ(std::vector(calls.end() - 2, calls.end()), std::vector(2, function));
    }
}

TEST_F(VxFlyerApiTest, refusesTypesWithoutANumberAndALibraryThatIsMissing)
{
    flyer.buttons[1].action = actions::ButtonAction(5);
    EXPECT_THROW(api.showFlyer(flyer, 0), std::bad_cast);
    EXPECT_EQ(calls.back(), L"close");
    calls.clear();
    flyer.type = 4;
    EXPECT_THROW(api.showFlyer(flyer, 0), std::bad_cast);
    EXPECT_THAT(calls, ElementsAre());
    const auto missing = [](auto&) { return LoadResult{LoadStatus::FunctionNotFound, "x.dll", "f"}; };
    EXPECT_EQ(support::thrown<vx::BaseException>([&] { VxFlyerApi{missing}; }).reason(),
        L"Failed to load 'x.dll'. Error code: 2");
}
