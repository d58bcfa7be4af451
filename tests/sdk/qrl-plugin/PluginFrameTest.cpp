#include "pluginframe.h"

#include "support/logcapture.h"
#include "support/thrown.h"
#include "vxtl/exception.h"

#include <array>
#include <bit>
#include <future>
#include <stdexcept>

using namespace vx;
using namespace vx::qrl;
using testing::ElementsAre;
using testing::Pair;

namespace {

struct FakePlugin : PluginImpl {
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
        if (stopReturns.valid())
            stopReturns.wait();
    }
    void onPowerEvent(std::uint32_t type, std::uint32_t data) override { power.emplace_back(type, data); }

    bool runFails = false;
    std::promise<void> running;
    std::promise<void> ended;
    std::future<void> stopReturns;
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

std::vector<std::string> reports;
std::promise<void> stoppedReport; ///< fulfilled with the first report of a stop

void VX_STDCALL recordReport(const char* name, std::uint32_t state)
{
    reports.push_back(std::string(name) + "=" + std::to_string(state));
    if (state == 0 && reports.size() == 2)
        stoppedReport.set_value();
}

struct PluginFrameTest : testing::Test {
    PluginFrameTest()
    {
        reports.clear();
        stoppedReport = {};
    }

    void registerPlugin()
    {
        frame.registerPluginFactory([this] { return plugin; });
    }

    support::LogCapture log;
    PluginFrame frame{marks};
    hosterAPI host{0, recordReport};
    pluginAPI record = recordOf(36);
    std::shared_ptr<FakePlugin> plugin = std::make_shared<FakePlugin>();
};

} // namespace

TEST_F(PluginFrameTest, fillsTheRecordAsFarAsItsSizeAllows)
{
    const auto old = reinterpret_cast<PluginResumeFunction>(7);
    struct {
        std::uint32_t size;
        PluginResumeFunction resume;
        bool power, session;
    } const rows[] = {
        {0, marks.onResumeFromLowPowerMode, false, false},
        {20, old, false, false},
        {24, marks.onResumeFromLowPowerMode, false, false},
        {28, old, false, false},
        {31, old, false, false},
        {32, nullptr, true, false},
        {36, nullptr, true, true},
        {100, nullptr, true, true},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.size);
        PluginFrame fresh(marks);
        pluginAPI api = recordOf(row.size);
        api.onResumeFromLowPowerMode = old;
        api.reservedCallback = this;
        ASSERT_EQ(fresh.initialize("name", &host, &api), 0u);
        EXPECT_EQ(api.pluginInitialize, marks.initialize);
        EXPECT_EQ(api.pluginMain, marks.main);
        EXPECT_EQ(api.pluginStop, marks.stop);
        EXPECT_NE(api.pluginContextData, nullptr);
        EXPECT_EQ(api.onResumeFromLowPowerMode, row.resume);
        EXPECT_EQ(api.reservedCallback, row.power ? nullptr : this);
        EXPECT_EQ(api.onPowerEvent, row.power ? marks.onPowerEvent : nullptr);
        EXPECT_EQ(api.onSessionChangeEvent, row.session ? marks.onSessionChangeEvent : nullptr);
    }
}

TEST_F(PluginFrameTest, refusesASecondFactory)
{
    registerPlugin();
    EXPECT_THAT(support::thrown<BaseException>([this] { registerPlugin(); }).wideWhat(),
        testing::HasSubstr(
            L"Reason: Plugin factory is already registered., Function: vx::qrl::registerPluginFactory,"));
}

TEST_F(PluginFrameTest, refusesABadRecordAndASecondInstance)
{
    EXPECT_EQ(frame.initialize("name", &host, nullptr), 1u);
    EXPECT_TRUE(log.has(2, "Invalid pointer to pluginAPI structure")) << log.text();
    EXPECT_EQ(frame.initialize(nullptr, &host, &record), 1u);
    ASSERT_EQ(frame.initialize("name", &host, &record), 0u);
    const auto lines = log.lines().size();
    pluginAPI second = recordOf(36);
    EXPECT_EQ(frame.initialize("name", &host, &second), 1u);
    EXPECT_EQ(second.pluginMain, nullptr);
    EXPECT_EQ(log.lines().size(), lines);
}

TEST_F(PluginFrameTest, runsUntilStoppedAndThenKnowsNoInstance)
{
    registerPlugin();
    ASSERT_EQ(frame.initialize("name", &host, &record), 0u);
    auto result = std::async(std::launch::async, [&] { return frame.main(&record); });
    plugin->running.get_future().wait();
    frame.onPowerEvent(&record, 4, 7);
    frame.onResumeFromLowPowerMode(&record);
    frame.onSessionChangeEvent(&record, 5, 1);
    EXPECT_EQ(frame.stop(&record), 0u);
    EXPECT_EQ(result.get(), 0u);
    EXPECT_THAT(reports, ElementsAre("name=1", "name=0"));
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
    ASSERT_EQ(frame.initialize("name", &host, &record), 0u);
    for (pluginAPI* const wrong : {static_cast<pluginAPI*>(nullptr), &foreign}) {
        EXPECT_EQ(frame.main(wrong), 1u);
        EXPECT_EQ(frame.stop(wrong), 1u);
        frame.onPowerEvent(wrong, 18, 0);
        frame.onSessionChangeEvent(wrong, 1, 0);
        frame.onResumeFromLowPowerMode(wrong);
        EXPECT_EQ(log.count((wrong ? "Invalid pluginContextData value" : "Invalid pluginAPI value") + getPlugin), 5u)
            << log.text();
    }
    EXPECT_TRUE(reports.empty());
    EXPECT_NE(record.pluginContextData, nullptr);
}

TEST_F(PluginFrameTest, reportsTheStopOnEveryWayOutOfMain)
{
    ASSERT_EQ(frame.initialize("name", &host, &record), 0u);
    EXPECT_EQ(frame.main(&record), 2u);
    EXPECT_TRUE(log.has(2, "Plugin factory is not registered"));
    EXPECT_THAT(reports, ElementsAre("name=1", "name=0"));

    reports.clear();
    stoppedReport = {};
    registerPlugin();
    plugin->runFails = true;
    ASSERT_EQ(frame.initialize("name", &host, &record), 0u);
    EXPECT_EQ(frame.main(&record), 1u);
    EXPECT_TRUE(log.has(2, "Exception occurred. run failed")) << log.text();
    EXPECT_THAT(reports, ElementsAre("name=1", "name=0"));
    EXPECT_EQ(record.pluginContextData, nullptr);
}

TEST_F(PluginFrameTest, neverRunsAgainAfterAStop)
{
    int built = 0;
    frame.registerPluginFactory([&] {
        ++built;
        plugin->runFails = true;
        return plugin;
    });
    ASSERT_EQ(frame.initialize("name", &host, &record), 0u);
    EXPECT_EQ(frame.stop(&record), 0u);
    EXPECT_EQ(frame.main(&record), 0u);
    ASSERT_EQ(frame.initialize("name", &host, &record), 0u);
    EXPECT_EQ(frame.main(&record), 0u);
    EXPECT_EQ(built, 2);
    EXPECT_EQ(reports.size(), 4u);
}

TEST_F(PluginFrameTest, runsAnewInAModuleThatIsKept)
{
    static bool kept; ///< what the module is
    kept = false;
    PluginFrame keptFrame(marks, []() noexcept { return kept; });
    int runs = 0;
    struct Probe : FakePlugin {
        void run() override { ++*runs; }
        int* runs = nullptr;
    };
    keptFrame.registerPluginFactory([&] {
        const auto probe = std::make_shared<Probe>();
        probe->runs = &runs;
        return probe;
    });
    pluginAPI old = recordOf(36);
    const auto live = [&](bool isKept, std::vector<pluginAPI*> stopsBefore, std::vector<pluginAPI*> stopsBetween) {
        for (pluginAPI* const stopped : stopsBefore)
            keptFrame.stop(stopped);
        kept = isKept;
        EXPECT_EQ(keptFrame.initialize("name", &host, &record), 0u);
        for (pluginAPI* const stopped : stopsBetween)
            keptFrame.stop(stopped);
        runs = 0;
        EXPECT_EQ(keptFrame.main(&record), 0u);
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
    struct Probe : FakePlugin {
        ~Probe() override { destroyedOn->set_value(std::this_thread::get_id()); }
        std::promise<std::thread::id>* destroyedOn = nullptr;
    };
    std::promise<std::thread::id> destroyedOn;
    std::promise<void> stopMayReturn, isRunning;
    frame.registerPluginFactory([&] {
        const auto probe = std::make_shared<Probe>();
        probe->destroyedOn = &destroyedOn;
        probe->stopReturns = stopMayReturn.get_future();
        probe->running.swap(isRunning);
        return probe;
    });
    auto ran = isRunning.get_future();
    ASSERT_EQ(frame.initialize("name", &host, &record), 0u);
    std::thread runner([&] { frame.main(&record); });
    const auto runnerId = runner.get_id();
    ran.wait();
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
