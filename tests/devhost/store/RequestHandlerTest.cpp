#include "store/server/requesthandler.h"

#include <nlohmann/json.hpp>
#include <stdexcept>
#include <thread>

using namespace devhost::store;
using nlohmann::json;

namespace {

struct RequestHandlerTest : testing::Test {
    json call(const json& request, Role role = Role::Application)
    {
        return json::parse(handler.handle(request.dump(), role));
    }
    int set(const std::string& name, int value)
    {
        return call({{"op", "set"}, {"name", name}, {"type", "int32"}, {"value", value}}).at("code");
    }
    std::shared_ptr<Subscriber> attach(const json& known)
    {
        return handler.attach({{"session", "s"}, {"known", known}}, [] {});
    }

    std::string saved;
    bool diskFull = false;
    RequestHandler handler{{}, [this](const std::string& text) {
                               if (diskFull)
                                   throw StoreException(ErrorCode::Unknown, "file");
                               saved = text;
                           }};
};

json seen(std::int64_t revision, bool present)
{
    return {{"revision", revision}, {"present", present}};
}

} // namespace

TEST_F(RequestHandlerTest, refusesWhatIsNotARequest)
{
    const std::string deep =
        R"({"op":"get","name":"missing","x":)" + std::string(100, '[') + std::string(100, ']') + "}";
    const struct {
        std::string request;
        ErrorCode code;
        Role role = Role::Application;
    } rows[] = {
        {"", ErrorCode::InvalidParameter},
        {deep, ErrorCode::InvalidParameter},
        {"[]", ErrorCode::InvalidParameter},
        {R"({"op":"get","name":7})", ErrorCode::InvalidParameter},
        {R"({"op":"set","name":"a*","type":"bool","value":true})", ErrorCode::InvalidParameter},
        {R"({"op":"set","name":"a","type":"bool","value":1})", ErrorCode::InvalidParameter},
        {R"({"op":"set","name":"a","type":"int32","value":1.5})", ErrorCode::InvalidParameter},
        {R"({"op":"set","name":"a","type":"object","value":{}})", ErrorCode::InvalidParameter},
        {R"({"op":"set","name":"a","type":"object","value":"{"})", ErrorCode::InvalidParameter},
        {R"({"op":"jump"})", ErrorCode::NotAllowed},
        {R"({"op":"plan","refuse":true})", ErrorCode::NotAllowed},
        {R"({"op":"plan","faults":[{"operation":"write"}]})", ErrorCode::InvalidParameter, Role::Tool},
        {R"({"op":"plan","faults":[{"operation":"set","code":0}]})", ErrorCode::InvalidParameter, Role::Tool},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.request);
        const json reply = json::parse(handler.handle(row.request, row.role));
        EXPECT_EQ(reply.at("code"), static_cast<int>(row.code));
    }
    EXPECT_EQ(saved, "");
}

TEST_F(RequestHandlerTest, keepsTheOldValueWhenTheFileCannotBeWritten)
{
    set("a", 1);
    const auto subscriber = attach({{"a", seen(1, true)}, {"b", seen(1, false)}});
    diskFull = true;
    EXPECT_EQ(set("a", 2), 1);
    EXPECT_EQ(set("b", 2), 1);
    EXPECT_EQ(call({{"op", "get"}, {"name", "a"}}).at("value"), 1);
    EXPECT_EQ(call({{"op", "get"}, {"name", "b"}}).at("code"), 10);
    EXPECT_TRUE(subscriber->take().empty());
}

TEST_F(RequestHandlerTest, catchesUpWhatChangedWhileASubscriberWasAway)
{
    set("same", 1);    // revision 1
    set("changed", 1); // revision 2
    set("changed", 2); // revision 3
    const struct {
        const char* name;
        json known;
        bool told;
    } rows[] = {
        {"same", seen(1, true), false},
        {"same", seen(3, true), false},
        {"changed", seen(2, true), true},
        {"appeared", seen(3, false), false},
        {"changed", seen(3, false), true},
        {"removed", seen(3, true), true},
        {"same", seen(9, true), true}, // the client saw another, longer store
        {"*", seen(0, false), false},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name + row.known.dump());
        EXPECT_EQ(attach({{row.name, row.known}})->take().size(), row.told ? 1U : 0U);
    }
}

TEST_F(RequestHandlerTest, servesManyThreadsAtOnce)
{
    const auto subscriber = attach({{"*", seen(0, false)}});
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i)
        threads.emplace_back([this, i] {
            for (int value = 1; value <= 50; ++value) {
                set("k" + std::to_string(i), value);
                call({{"op", "plan"}, {"delayMs", value}}, Role::Tool);
            }
        });
    for (auto& thread : threads)
        thread.join();
    EXPECT_EQ(subscriber->take().size(), 200U);
}
