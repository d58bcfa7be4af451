#include "pluginframe.h"

#include "support/logcapture.h"

#include <atomic>
#include <future>
#include <stdexcept>

using namespace vx::qrl;
using testing::ElementsAre;
using testing::Pair;

namespace {

struct FakePlugin : PluginImpl {
    ~FakePlugin() override { onDestruction(); }
    void run() override
    {
        running.set_value();
        if (runFails)
            throw std::runtime_error("run failed");
        ended.get_future().wait();
    }
    void stop() override
    {
        ended.set_value();
        afterStop();
    }
    void onPowerEvent(std::uint32_t type, std::uint32_t data) override { power.emplace_back(type, data); }

    bool runFails = false;
    std::promise<void> running, ended;
    std::function<void()> afterStop = [] {}, onDestruction = [] {};
    std::vector<std::pair<std::uint32_t, std::uint32_t>> power;
};

std::vector<std::string> reports;
std::promise<void> stoppedReport; ///< fulfilled with the first report of a stop

void VX_STDCALL recordReport(const char* name, std::uint32_t state)
{
    reports.push_back(std::string(name) + "=" + std::to_string(state));
    if (reports.size() == 2)
        stoppedReport.set_value();
}

struct PluginFrameTest : testing::Test {
    PluginFrameTest()
    {
        reports.clear();
        stoppedReport = {};
    }

    support::LogCapture log;
    PluginFrame frame{{}};
    hosterAPI host{0, recordReport};
    pluginAPI record{};
    std::shared_ptr<FakePlugin> plugin = std::make_shared<FakePlugin>();
};

} // namespace

TEST_F(PluginFrameTest, runsUntilStoppedAndThenKnowsNoInstance)
{
    frame.registerPluginFactory([this] { return plugin; });
    ASSERT_EQ(frame.initialize("name", &host, &record), 0u);
    auto result = std::async(std::launch::async, [&] { return frame.main(&record); });
    plugin->running.get_future().wait();
    frame.onPowerEvent(&record, 4, 7);
    frame.onResumeFromLowPowerMode(&record);
    frame.onSessionChangeEvent(&record, 5, 1);
    EXPECT_EQ(frame.stop(&record), 0u);
    EXPECT_EQ(result.get(), 0u);
    EXPECT_THAT(reports, ElementsAre("name=1", "name=0"));
    EXPECT_EQ(plugin.use_count(), 1) << "the frame keeps the plug-in";

    EXPECT_EQ(frame.stop(&record), 1u);
    frame.onPowerEvent(&record, 18, 0);
    EXPECT_THAT(plugin->power, ElementsAre(Pair(4, 7), Pair(18, 0)));
    EXPECT_EQ(log.count("There's no plugin instance"), 2u) << log.text();
}

TEST_F(PluginFrameTest, answersWrongRecordsAndASecondInstanceWithCodesAndGoesOn)
{
    pluginAPI foreign{};
    foreign.pluginContextData = this;
    EXPECT_EQ(frame.initialize("name", &host, nullptr), 1u);
    EXPECT_TRUE(log.has(2, "Invalid pointer to pluginAPI structure")) << log.text();
    EXPECT_EQ(frame.initialize(nullptr, &host, &record), 1u);
    EXPECT_EQ(frame.main(nullptr), 1u);
    EXPECT_TRUE(log.has(2, "There's no plugin instance")) << "comes before the test of the pointer";
    ASSERT_EQ(frame.initialize("name", &host, &record), 0u);
    for (pluginAPI* const wrong : {static_cast<pluginAPI*>(nullptr), &foreign}) {
        EXPECT_EQ(frame.main(wrong), 1u);
        EXPECT_EQ(frame.stop(wrong), 1u);
        frame.onPowerEvent(wrong, 18, 0);
        frame.onSessionChangeEvent(wrong, 1, 0);
        frame.onResumeFromLowPowerMode(wrong);
        EXPECT_EQ(log.count(wrong ? "Invalid pluginContextData value" : "Invalid pluginAPI value"), 5u) << log.text();
    }
    EXPECT_EQ(frame.initialize("name", &host, &foreign), 1u);
    EXPECT_EQ(foreign.pluginContextData, this);
    EXPECT_TRUE(reports.empty());
    EXPECT_NE(record.pluginContextData, nullptr);
}

TEST_F(PluginFrameTest, reportsTheStopOnEveryWayOutOfMain)
{
    ASSERT_EQ(frame.initialize("name", &host, &record), 0u);
    EXPECT_EQ(frame.main(&record), 2u);
    EXPECT_TRUE(log.has(2, "Plugin factory is not registered"));
    frame.registerPluginFactory([this] { return plugin; });
    plugin->runFails = true;
    ASSERT_EQ(frame.initialize("name", &host, &record), 0u);
    EXPECT_EQ(frame.main(&record), 1u);
    EXPECT_TRUE(log.has(2, "Exception occurred. run failed")) << log.text();
    EXPECT_THAT(reports, ElementsAre("name=1", "name=0", "name=1", "name=0"));
    EXPECT_EQ(record.pluginContextData, nullptr);
}

TEST_F(PluginFrameTest, neverRunsAgainAfterAStop)
{
    frame.registerPluginFactory([this] { return plugin; });
    plugin->runFails = true;
    ASSERT_EQ(frame.initialize("name", &host, &record), 0u);
    EXPECT_EQ(frame.stop(&record), 0u);
    EXPECT_EQ(frame.main(&record), 0u);
    ASSERT_EQ(frame.initialize("name", &host, &record), 0u);
    EXPECT_EQ(frame.main(&record), 0u);
    EXPECT_EQ(reports.size(), 4u);
}

TEST_F(PluginFrameTest, destroysThePluginOnTheThreadThatRanItEvenWhenAStopOutlastsTheRun)
{
    std::promise<std::thread::id> destroyedOn;
    std::promise<void> stopMayReturn;
    plugin->onDestruction = [&] { destroyedOn.set_value(std::this_thread::get_id()); };
    plugin->afterStop = [&] { stopMayReturn.get_future().wait(); };
    auto running = plugin->running.get_future();
    frame.registerPluginFactory([this] { return std::move(plugin); });
    ASSERT_EQ(frame.initialize("name", &host, &record), 0u);
    std::thread runner([&] { frame.main(&record); });
    const auto runnerId = runner.get_id();
    running.wait();
    std::thread stopper([&] { frame.stop(&record); });
    stoppedReport.get_future().wait();
    stopMayReturn.set_value();
    EXPECT_TRUE(destroyedOn.get_future().get() == runnerId);
    runner.join();
    stopper.join();
}

TEST_F(PluginFrameTest, endsHoweverAStopRacesWithMain)
{
    for (int round = 0; round < 50; ++round) {
        PluginFrame fresh({});
        fresh.registerPluginFactory([raced = std::make_shared<FakePlugin>()] { return raced; });
        ASSERT_EQ(fresh.initialize("name", &host, &record), 0u);
        std::atomic<bool> isStopping{false};
        std::thread stopper([&] {
            isStopping = true;
            fresh.stop(&record);
        });
        while (!isStopping)
            std::this_thread::yield();
        EXPECT_EQ(fresh.main(&record), 0u);
        stopper.join();
    }
}
