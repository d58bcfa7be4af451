#include "host/pluginsession.h"

#include "host/exitcode.h"
#include "stage.h"

#include <windows.h>

namespace devhost::host {

namespace {

using namespace std::chrono_literals;

class PluginSessionTest : public testing::Test {
protected:
    PluginSession makeSession(const char* name = "sample", std::uint32_t size = 36)
    {
        const auto onState = [this](const std::string&, std::uint32_t state) {
            if (state == 1)
                started.set();
        };
        return PluginSession(library, name, size, {onState, [](std::uint32_t) {}});
    }

    static std::string calls()
    {
        void* function =
            reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"host-test-plugin.dll"), "testPluginCalls"));
        return reinterpret_cast<const char* (*)()>(function)();
    }

    const std::filesystem::path library = support::programFolder() / "host-test-plugin.dll";
    ipc::Signal started;
};

std::string failureOf(const std::function<void()>& action)
{
    try {
        action();
    } catch (const CommandError& error) {
        return error.what();
    }
    return "no failure";
}

} // namespace

TEST_F(PluginSessionTest, callsWhatEachSizeOfRecordKnows)
{
    const struct {
        std::uint32_t size;
        std::string expected;
    } rows[] = {
        {0, "initialize 0;resume;"},
        {28, "initialize 28;"},
        {32, "initialize 32;power 18 0;"},
        {36, "initialize 36;power 18 0;session 5 2;"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.size);
        auto session = makeSession("sample", row.size);
        const auto resume = failureOf([&] { session.resume(); });
        const auto change = failureOf([&] { session.sessionEvent(5, 2); });
        EXPECT_EQ(calls(), row.expected);
        EXPECT_EQ(resume == "no failure", row.size != 28);
        EXPECT_EQ(change == "no failure", row.size == 36);
        EXPECT_TRUE(session.isRecordIntact());
    }
}

TEST_F(PluginSessionTest, seesAnOverrunAndLetsGoOfAPluginThatRefuses)
{
    EXPECT_FALSE(makeSession("overrun", 32).isRecordIntact());
    EXPECT_THAT(failureOf([&] { makeSession("refuse"); }), testing::HasSubstr("refused to initialise: result 1"));
    EXPECT_FALSE(PluginLoader::isLoaded(library));
}

// The last one: it leaves the library in memory.
TEST_F(PluginSessionTest, keepsADeafPluginInMemory)
{
    {
        auto session = makeSession("deaf");
        session.start();
        ASSERT_TRUE(started.wait(60'000));
        session.stop();
        EXPECT_FALSE(session.waitForEnd(1ms));
    }
    // Its thread waits on until the process ends.
    EXPECT_TRUE(PluginLoader::isLoaded(library));
}

} // namespace devhost::host
