#include "pluginframe.h"

#include "support/logcapture.h"
#include "support/record.h"
#include "vxtl/exception.h"

#include <array>
#include <bit>
#include <functional>
#include <future>
#include <optional>
#include <stdexcept>

using namespace vx;
using namespace vx::qrl;
using testing::ElementsAre;
using testing::Pair;

namespace {

/// Runs until it is stopped, unless told otherwise.
struct FakePlugin : PluginImpl {
    ~FakePlugin() override { onEnd(); }
    void run() override { onRun(); }
    void stop() override
    {
        ended.set_value();
        afterStop();
    }
    void onPowerEvent(std::uint32_t type, std::uint32_t data) override { power.emplace_back(type, data); }

    std::promise<void> running, ended;
    std::function<void()> onRun = [this] {
        running.set_value();
        ended.get_future().wait();
    };
    std::function<void()> afterStop = [] {}, onEnd = [] {};
    std::vector<std::pair<std::uint32_t, std::uint32_t>> power;
};

/// Six addresses to be found again, never called.
const auto marks = std::bit_cast<Callbacks>(std::array<std::uintptr_t, 6>{1, 2, 3, 4, 5, 6});

pluginAPI recordOf(std::uint32_t size, void* context = nullptr)
{
    pluginAPI record{};
    record.size = size;
    record.pluginContextData = context;
    return record;
}

std::optional<support::Record> reports;

void VX_STDCALL recordReport(const char* name, std::uint32_t state)
{
    reports->add(std::string(name) + "=" + std::to_string(state));
}

struct PluginFrameTest : testing::Test {
    PluginFrameTest()
    {
        reports.emplace();
        isKept = false;
    }
    void registerPlugin()
    {
        frame.registerPluginFactory([this] { return plugin; });
    }
    std::uint32_t initialize() { return frame.initialize("name", &host, &record); }

    static inline bool isKept; ///< what the module is
    support::LogCapture log;
    PluginFrame frame{marks, []() noexcept { return isKept; }};
    hosterAPI host{0, recordReport};
    pluginAPI record = recordOf(36);
    std::shared_ptr<FakePlugin> plugin = std::make_shared<FakePlugin>();
};

} // namespace

TEST_F(PluginFrameTest, fillsTheRecordAsFarAsItsSizeAllows)
{
    // What stands in the record: the marks 1 to 6, 7 and 8 where it was left as it came.
    const std::pair<std::uint32_t, const char*> rows[] = {{0, "123 68 00"}, {24, "123 68 00"}, {28, "123 78 00"},
        {31, "123 78 00"}, {32, "123 00 40"}, {36, "123 00 45"}, {100, "123 00 45"}};
    const auto digit = [](auto callback) { return std::to_string(std::bit_cast<std::uintptr_t>(callback)); };
    for (const auto& [size, expected] : rows) {
        PluginFrame fresh(marks);
        pluginAPI api = recordOf(size);
        api.onResumeFromLowPowerMode = std::bit_cast<PluginResumeFunction>(std::uintptr_t{7});
        api.reservedCallback = std::bit_cast<void*>(std::uintptr_t{8});
        ASSERT_EQ(fresh.initialize("name", &host, &api), 0u);
        EXPECT_NE(api.pluginContextData, nullptr);
        EXPECT_EQ(digit(api.pluginInitialize) + digit(api.pluginMain) + digit(api.pluginStop) + ' ' +
                      digit(api.onResumeFromLowPowerMode) + digit(api.reservedCallback) + ' ' +
                      digit(api.onPowerEvent) + digit(api.onSessionChangeEvent),
            expected)
            << size;
    }
}

TEST_F(PluginFrameTest, refusesASecondFactoryABadRecordAndASecondInstance)
{
    registerPlugin();
    EXPECT_THROW(registerPlugin(), BaseException);
    EXPECT_EQ(frame.initialize("name", &host, nullptr), 1u);
    EXPECT_EQ(frame.initialize(nullptr, &host, &record), 1u);
    ASSERT_EQ(initialize(), 0u);
    const auto lines = log.lines().size();
    pluginAPI second = recordOf(36);
    EXPECT_EQ(frame.initialize("name", &host, &second), 1u);
    EXPECT_EQ(second.pluginMain, nullptr);
    EXPECT_EQ(log.lines().size(), lines);
}

TEST_F(PluginFrameTest, runsUntilStoppedAndThenKnowsNoInstance)
{
    registerPlugin();
    ASSERT_EQ(initialize(), 0u);
    auto result = std::async(std::launch::async, [&] { return frame.main(&record); });
    plugin->running.get_future().wait();
    frame.onPowerEvent(&record, 4, 7);
    frame.onResumeFromLowPowerMode(&record);
    frame.onSessionChangeEvent(&record, 5, 1);
    EXPECT_EQ(frame.stop(&record), 0u);
    EXPECT_EQ(result.get(), 0u);
    EXPECT_THAT(reports->waitFor(2), ElementsAre("name=1", "name=0"));
    EXPECT_EQ(record.pluginContextData, nullptr);
    EXPECT_EQ(plugin.use_count(), 1) << "the frame keeps the plug-in";
    EXPECT_THAT(plugin->power, ElementsAre(Pair(4, 7), Pair(18, 0)));

    EXPECT_EQ(frame.stop(&record), 1u);
    frame.onPowerEvent(&record, 18, 0);
    EXPECT_EQ(plugin->power.size(), 2u);
    EXPECT_EQ(log.count("There's no plugin instance"), 2u) << log.text();
}

TEST_F(PluginFrameTest, answersWrongRecordsWithCodesAndGoesOn)
{
    registerPlugin();
    const std::string getPlugin = ", Function: vx::qrl::`anonymous-namespace'::QrlHosterPlugin::getPlugin,";
    pluginAPI foreign = recordOf(36, this);
    EXPECT_EQ(frame.main(nullptr), 1u);
    EXPECT_TRUE(log.has(2, "There's no plugin instance")) << "comes before the test of the pointer";
    ASSERT_EQ(initialize(), 0u);
    for (pluginAPI* const wrong : {static_cast<pluginAPI*>(nullptr), &foreign}) {
        EXPECT_EQ(frame.main(wrong), 1u);
        EXPECT_EQ(frame.stop(wrong), 1u);
        frame.onPowerEvent(wrong, 18, 0);
        frame.onSessionChangeEvent(wrong, 1, 0);
        frame.onResumeFromLowPowerMode(wrong);
        EXPECT_EQ(log.count((wrong ? "Invalid pluginContextData value" : "Invalid pluginAPI value") + getPlugin), 5u)
            << log.text();
    }
    EXPECT_EQ(reports->size(), 0u);
    EXPECT_NE(record.pluginContextData, nullptr);
}

TEST_F(PluginFrameTest, reportsTheStopOnEveryWayOutOfMain)
{
    ASSERT_EQ(initialize(), 0u);
    EXPECT_EQ(frame.main(&record), 2u);
    EXPECT_TRUE(log.has(2, "Plugin factory is not registered"));
    registerPlugin();
    plugin->onRun = [] { throw std::runtime_error("run failed"); };
    ASSERT_EQ(initialize(), 0u);
    EXPECT_EQ(frame.main(&record), 1u);
    EXPECT_TRUE(log.has(2, "Exception occurred. run failed")) << log.text();
    EXPECT_THAT(reports->waitFor(4), ElementsAre("name=1", "name=0", "name=1", "name=0"));
    EXPECT_EQ(record.pluginContextData, nullptr);
}

TEST_F(PluginFrameTest, runsAfterAStopOnlyInAModuleThatIsKept)
{
    int runs = 0;
    plugin->onRun = [&] { ++runs; };
    registerPlugin();
    pluginAPI old = recordOf(36);
    const auto live = [&](bool kept, std::vector<pluginAPI*> stopsBefore, std::vector<pluginAPI*> stopsBetween) {
        for (pluginAPI* const stopped : stopsBefore)
            frame.stop(stopped);
        isKept = kept;
        EXPECT_EQ(initialize(), 0u);
        for (pluginAPI* const stopped : stopsBetween)
            frame.stop(stopped);
        runs = 0;
        EXPECT_EQ(frame.main(&record), 0u);
        return runs;
    };
    EXPECT_EQ(live(false, {}, {}), 1);
    EXPECT_EQ(live(false, {}, {&old}), 0);
    EXPECT_EQ(live(false, {}, {}), 0) << "nothing keeps the module";
    EXPECT_EQ(live(true, {&old}, {}), 1);
    EXPECT_EQ(live(true, {}, {&old, nullptr}), 1) << "a stop that is late for an earlier instance";
    EXPECT_EQ(live(true, {}, {&record}), 0) << "a stop ahead of main";
    EXPECT_EQ(live(true, {}, {&old, &record, &old}), 0);
    EXPECT_EQ(live(true, {&record}, {}), 1);
}

TEST_F(PluginFrameTest, destroysThePluginOnTheThreadThatRanItEvenWhenAStopOutlastsTheRun)
{
    std::promise<std::thread::id> destroyedOn;
    std::promise<void> stopMayReturn;
    plugin->afterStop = [&] { stopMayReturn.get_future().wait(); };
    plugin->onEnd = [&] { destroyedOn.set_value(std::this_thread::get_id()); };
    auto ran = plugin->running.get_future();
    frame.registerPluginFactory([this] { return std::move(plugin); });
    ASSERT_EQ(initialize(), 0u);
    std::thread runner([&] { frame.main(&record); });
    const auto runnerId = runner.get_id();
    ran.wait();
    std::thread stopper([&] { frame.stop(&record); });
    reports->waitFor(2);
    stopMayReturn.set_value();
    EXPECT_TRUE(destroyedOn.get_future().get() == runnerId);
    runner.join();
    stopper.join();
}

TEST_F(PluginFrameTest, endsHoweverAStopRacesWithMain)
{
    for (int round = 0; round < 50; ++round) {
        PluginFrame fresh(marks);
        fresh.registerPluginFactory([raced = std::make_shared<FakePlugin>()] { return raced; });
        ASSERT_EQ(fresh.initialize("name", &host, &record), 0u);
        std::promise<void> go;
        auto result = std::async(std::launch::async, [&, start = go.get_future()] {
            start.wait();
            return fresh.main(&record);
        });
        go.set_value();
        fresh.stop(&record);
        EXPECT_EQ(result.get(), 0u);
    }
}
