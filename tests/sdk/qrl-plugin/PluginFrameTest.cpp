#include "pluginframe.h"

#include "support/logcapture.h"
#include "vxtl/exception.h"

#include <future>
#include <stdexcept>
#include <thread>

namespace vx::qrl {
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
    std::shared_future<void> stopReturns;
    std::vector<std::pair<std::uint32_t, std::uint32_t>> power;
};

std::uint32_t VX_STDCALL initializeMark(const char*, hosterAPI*, pluginAPI*)
{
    return 0;
}
std::uint32_t VX_STDCALL mainMark(pluginAPI*)
{
    return 1;
}
std::uint32_t VX_STDCALL stopMark(pluginAPI*)
{
    return 2;
}
void VX_STDCALL powerMark(pluginAPI*, std::uint32_t, std::uint32_t) {}
void VX_STDCALL sessionMark(pluginAPI*, std::uint32_t type, std::uint32_t)
{
    ADD_FAILURE() << type;
}
void VX_STDCALL resumeMark(pluginAPI*) {}

pluginAPI recordOf(std::uint32_t size, void* context = nullptr)
{
    pluginAPI record{};
    record.size = size;
    record.pluginContextData = context;
    return record;
}

const Callbacks marks{initializeMark, mainMark, stopMark, powerMark, sessionMark, resumeMark};

std::vector<std::string> reports;
std::promise<void> stoppedReport; ///< fulfilled with the first report of a stop

void VX_STDCALL recordReport(const char* name, std::uint32_t state)
{
    reports.push_back(std::string(name) + "=" + std::to_string(state));
    if (state == 0 && reports.size() == 2)
        stoppedReport.set_value();
}

class PluginFrameTest : public testing::Test {
protected:
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
    const std::vector<std::string> startedAndStopped{"name=1", "name=0"};
};

TEST_F(PluginFrameTest, fillsTheRecordAsFarAsItsSizeAllows)
{
    struct Row {
        std::uint32_t size;
        bool resume, power, session;
    };
    for (const Row row :
        {Row{0, true, false, false}, {20, false, false, false}, {24, true, false, false}, {28, false, false, false},
            {31, false, false, false}, {32, false, true, false}, {36, false, true, true}, {100, false, true, true}}) {
        SCOPED_TRACE(row.size);
        PluginFrame fresh(marks);
        void* const untouched = &fresh;
        pluginAPI api = recordOf(row.size);
        api.reservedCallback = untouched;
        ASSERT_EQ(fresh.initialize("name", &host, &api), 0u);
        EXPECT_EQ(api.pluginInitialize, initializeMark);
        EXPECT_EQ(api.pluginMain, mainMark);
        EXPECT_EQ(api.pluginStop, stopMark);
        EXPECT_NE(api.pluginContextData, nullptr);
        EXPECT_EQ(api.onResumeFromLowPowerMode, row.resume ? resumeMark : nullptr);
        EXPECT_EQ(api.reservedCallback, row.power ? nullptr : untouched);
        EXPECT_EQ(api.onPowerEvent, row.power ? powerMark : nullptr);
        EXPECT_EQ(api.onSessionChangeEvent, row.session ? sessionMark : nullptr);
    }
}

TEST_F(PluginFrameTest, takesTheResumeCallbackBackFromAHostThatKnowsPowerEvents)
{
    record.onResumeFromLowPowerMode = resumeMark;
    ASSERT_EQ(frame.initialize("name", &host, &record), 0u);
    EXPECT_EQ(record.onResumeFromLowPowerMode, nullptr);
}

TEST_F(PluginFrameTest, refusesASecondFactory)
{
    registerPlugin();
    try {
        registerPlugin();
        FAIL();
    } catch (const BaseException& e) {
        EXPECT_EQ(e.reason(), L"Plugin factory is already registered.");
    }
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
    EXPECT_EQ(reports, startedAndStopped);
    EXPECT_EQ(record.pluginContextData, nullptr);
    EXPECT_EQ(plugin.use_count(), 1) << "the frame keeps the plug-in";
    const std::vector<std::pair<std::uint32_t, std::uint32_t>> events{{4, 7}, {18, 0}};
    EXPECT_EQ(plugin->power, events);

    EXPECT_EQ(frame.stop(&record), 1u);
    frame.onPowerEvent(&record, 18, 0);
    EXPECT_EQ(plugin->power.size(), 2u);
    EXPECT_EQ(log.count("There's no plugin instance"), 2u) << log.text();
}

TEST_F(PluginFrameTest, answersWrongRecordsWithCodesAndGoesOn)
{
    registerPlugin();
    pluginAPI foreign = recordOf(36, this);
    EXPECT_EQ(frame.main(nullptr), 1u);
    EXPECT_TRUE(log.has(2, "There's no plugin instance")) << "comes before the test of the pointer";
    ASSERT_EQ(frame.initialize("name", &host, &record), 0u);
    struct Row {
        pluginAPI* record;
        const char* text;
    };
    for (const Row row : {Row{nullptr, "Invalid pluginAPI value"}, {&foreign, "Invalid pluginContextData value"}}) {
        SCOPED_TRACE(row.text);
        EXPECT_EQ(frame.main(row.record), 1u);
        EXPECT_EQ(frame.stop(row.record), 1u);
        frame.onPowerEvent(row.record, 18, 0);
        frame.onSessionChangeEvent(row.record, 1, 0);
        frame.onResumeFromLowPowerMode(row.record);
        EXPECT_EQ(log.count(row.text), 5u) << log.text();
    }
    EXPECT_TRUE(reports.empty());
    EXPECT_NE(record.pluginContextData, nullptr);
}

TEST_F(PluginFrameTest, reportsTheStopOnEveryWayOutOfMain)
{
    ASSERT_EQ(frame.initialize("name", &host, &record), 0u);
    EXPECT_EQ(frame.main(&record), 2u);
    EXPECT_TRUE(log.has(2, "Plugin factory is not registered"));
    EXPECT_EQ(reports, startedAndStopped);

    reports.clear();
    stoppedReport = {};
    registerPlugin();
    plugin->runFails = true;
    ASSERT_EQ(frame.initialize("name", &host, &record), 0u);
    EXPECT_EQ(frame.main(&record), 1u);
    EXPECT_TRUE(log.has(2, "Exception occurred. run failed")) << log.text();
    EXPECT_EQ(reports, startedAndStopped);
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

TEST_F(PluginFrameTest, destroysThePluginOnTheThreadThatRanItEvenWhenAStopOutlastsTheRun)
{
    struct Probe : FakePlugin {
        explicit Probe(std::promise<std::thread::id>& target) : destroyedOn(target) {}
        ~Probe() override { destroyedOn.set_value(std::this_thread::get_id()); }
        std::promise<std::thread::id>& destroyedOn;
    };
    std::promise<std::thread::id> destroyedOn;
    std::promise<void> stopMayReturn;
    std::promise<void> isRunning;
    frame.registerPluginFactory([&] {
        const auto probe = std::make_shared<Probe>(destroyedOn);
        probe->stopReturns = stopMayReturn.get_future().share();
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
        const auto raced = std::make_shared<FakePlugin>();
        fresh.registerPluginFactory([&] { return raced; });
        ASSERT_EQ(fresh.initialize("name", &host, &record), 0u);
        std::promise<void> go;
        const auto start = go.get_future().share();
        auto result = std::async(std::launch::async, [&] {
            start.wait();
            return fresh.main(&record);
        });
        go.set_value();
        fresh.stop(&record);
        EXPECT_EQ(result.get(), 0u);
    }
}

} // namespace
} // namespace vx::qrl
