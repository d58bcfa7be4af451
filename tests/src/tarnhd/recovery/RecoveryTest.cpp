#include "tarnhd/recovery/recovery.h"

#include "settings-api/cachedsettings.h"
#include "support/fakesettings.h"
#include "support/logcapture.h"
#include "support/record.h"
#include "tarnhd/recovery/recoverydriver.h"
#include "tarnhd/subscriptions/subscriptions.h"

#include <future>
#include <optional>

namespace vx::tarn {
namespace {

using namespace std::chrono_literals;
using Entries = std::vector<std::string>;

const TarnpatchSettings keys{nullptr};
const auto& scanKeys = keys.remoteOperations.scanForUpdates;
const auto& installKeys = keys.remoteOperations.installUpdates;
constexpr auto scan = AgentStartReason::RemoteScan;

/// Counts how often it is asked for anything.
struct CountingStore : support::FakeSettings {
    bool getBoolValue(Name name) override
    {
        ++reads;
        return FakeSettings::getBoolValue(name);
    }
    void goAway()
    {
        fail({}, [] { VX_THROW(settings::ServerUnreachableException, L""); });
    }
    void comeBack() { repair(); }
    std::atomic<int> reads = 0;
};

struct FakeDriver : RecoveryDriver {
    FakeDriver(support::Record& d, settings::Settings& s) : done(d), settings(s) {}
    void publish() override { done.add("publish"); }
    void startAgent() override { done.add("start"); }
    bool isAgentStartTaken() const override { return true; }
    void writeKeptValues() override { settings.getBoolValue(keys.enabled.key()); }
    support::Record& done;
    settings::Settings& settings;
};

/// A recovery over a store in memory; the answers to changes say their names.
struct Recovering {
    explicit Recovering(RecoveryPauses p = {1ms, 2ms}) : pauses(p) { store->set(keys.enabled, true); }
    ~Recovering() { end(); }
    void end()
    {
        recovery.stop();
        if (ended.valid()) {
            EXPECT_EQ(ended.wait_for(support::deadline), std::future_status::ready);
        }
    }
    void subscribe(const KeyRow& key, const std::string& name, AgentStartReason request = AgentStartReason::None)
    {
        const auto answer = [this](const std::string& entry) {
            done.add(entry);
            whileAnswering();
        };
        recovery.subscribe(
            subscriptions, {key.key(), std::bind(answer, name), std::bind(answer, "missed " + name), request});
    }
    /// One call that finds it away.
    void meetOutage()
    {
        store->goAway();
        watch->isReachable();
        store->comeBack();
    }
    void begin()
    {
        ended = std::async(std::launch::async, [this] { recovery.run(subscriptions); });
    }

    const RecoveryPauses pauses;
    support::LogCapture log;
    support::Record done;
    std::function<void()> whileAnswering = [] {};
    std::atomic<bool> isFirst = true;
    std::shared_ptr<CountingStore> store = std::make_shared<CountingStore>();
    std::shared_ptr<StoreWatch> watch = std::make_shared<StoreWatch>();
    std::shared_ptr<settings::Settings> settings =
        std::make_shared<settings::Settings>(std::make_shared<settings::CachedSettings>(watch->watch(store)));
    std::shared_ptr<RequestBook> book = std::make_shared<RequestBook>(TarnpatchSettings(settings));
    Recovery recovery{watch, book, TarnpatchSettings(settings), std::make_unique<FakeDriver>(done, *settings), pauses};
    Subscriptions subscriptions{settings.get()};
    std::future<void> ended;
};

struct RecoveryTest : testing::Test, Recovering {};

TEST_F(RecoveryTest, makesUpForAnOutageWithoutBeingAskedTo)
{
    const auto& queue = keys.installation.deploymentQueue;
    subscribe(queue, "queue");
    subscribe(keys.enabled, "enabled");
    whileAnswering = [this] {
        if (isFirst.exchange(false)) {
            store->goAway();
            settings->setBoolValue(keys.installation.inProgress.key(), true);
        }
    };
    begin();
    store->notify(queue.key());
    EXPECT_EQ(done.waitFor(1), Entries{"queue"});
    ASSERT_TRUE(log.waitFor("Recovery: the store is away")) << log.text();
    store->notify(keys.enabled.key());
    EXPECT_EQ(done.size(), 1u) << "what it would read is of before the outage";
    store->comeBack();
    EXPECT_EQ(done.waitFor(4), (Entries{"queue", "publish", "queue", "enabled"}));
    EXPECT_EQ(store->get(keys.installation.inProgress), true);
    EXPECT_TRUE(log.has(4, "Recovery: the values that were kept meanwhile are written.")) << log.text();
    EXPECT_EQ(log.count("Recovery: the store is away"), 1u);
}

TEST_F(RecoveryTest, answersAgainWhatMetAnOutageThatIsMadeUpForMeanwhile)
{
    store->set(installKeys.start, 1);
    subscribe(keys.installation.deploymentQueue, "queue");
    subscribe(installKeys.start, "installation", AgentStartReason::RemoteDeployment);
    whileAnswering = [this] {
        if (!isFirst.exchange(false))
            return;
        meetOutage();
        begin();
        done.waitFor(3); // the last that the round does
    };
    store->notify(keys.installation.deploymentQueue.key());
    EXPECT_EQ(done.waitFor(6), (Entries{"queue", "publish", "installation", "publish", "queue", "installation"}));
}

TEST(Recovery, restsBetweenOutages)
{
    Recovering r({24h, 24h, 24h});
    r.meetOutage();
    r.begin();
    EXPECT_EQ(r.done.waitFor(1), Entries{"publish"});
    r.meetOutage();
    EXPECT_EQ(r.ended.wait_for(support::moment), std::future_status::timeout);
    EXPECT_EQ(r.done.size(), 1u);
}

TEST_F(RecoveryTest, doesNotServeARequestTwiceThatItHearsOfLate)
{
    store->set(scanKeys.start, 1);
    subscribe(scanKeys.start, "scan", scan);
    whileAnswering = [this] { book->set(scan); };
    begin();
    EXPECT_EQ(done.waitFor(1), Entries{"scan"});
    store->notify(scanKeys.start.key());
    const auto round = book->take();
    store->notify(scanKeys.start.key());
    EXPECT_EQ(done.size(), 1u);
    store->set(scanKeys.start, 2);
    EXPECT_EQ(done.size(), 2u) << "a new number";
}

TEST_F(RecoveryTest, triesSubscriptionsThatFailedUntilTheyAreMade)
{
    for (const KeyRow* key : std::initializer_list<const KeyRow*>{&keys.enabled, &scanKeys.start})
        store->breakDown(key->key());
    subscribe(keys.enabled, "enabled");
    subscribe(scanKeys.start, "scan", scan);
    whileAnswering = [this] {
        if (isFirst.exchange(false))
            meetOutage();
    };
    begin();
    EXPECT_TRUE(log.waitFor("Failed to subscribe to a property", 6)) << log.text();
    store->repair(keys.enabled.key());
    EXPECT_EQ(done.waitFor(3), (Entries{"missed enabled", "missed enabled", "publish"}));
    // The round that has published looks for requests, too.
    EXPECT_TRUE(log.waitFor("Failed to subscribe to a property", log.count("Failed to subscribe to a property") + 2));
    store->set(scanKeys.ack, 1);
    store->repair(scanKeys.start.key());
    EXPECT_EQ(done.waitFor(4).back(), "scan") << "asked for while nobody heard of it";
    EXPECT_EQ(store->subscriptions(), 2u);
    store->notify(keys.enabled.key());
    EXPECT_EQ(done.waitFor(5).back(), "enabled");
}

TEST(Recovery, servesARequestThatIsOpenWhileNobodyIsAtWorkOnIt)
{
    using Round = std::unique_ptr<StartReasons::Round>;
    const auto installation = "installation";
    struct {
        const char* trace;
        std::function<Round(Recovering&)> before;
        Entries done;
    } const rows[] = {
        {"closed", [](Recovering& r) { return r.store->set(scanKeys.ack, 1), Round(); }, {installation}},
        {"at work", [](Recovering& r) { return r.book->set(scan), r.book->take(); }, {installation}},
        {"died at work", [](Recovering& r) { return r.book->set(scan), r.book->take(), Round(); },
            {"scan", installation}},
        {"its start is gone", [](Recovering& r) { return r.book->set(scan), Round(); }, {"start", installation}},
        {"both starts are gone",
            [](Recovering& r) { return r.book->set(scan), r.book->set(AgentStartReason::RemoteDeployment), Round(); },
            {"start"}},
        {"a deployment is waited for",
            [](Recovering& r) { return r.store->set(keys.installation.completion.wait, true), Round(); }, {"scan"}},
        {"waits for another run",
            [](Recovering& r) {
                auto other = r.book->take();
                r.book->set(scan);
                return other;
            },
            {installation}},
        {"from before", [](Recovering&) { return Round(); }, {"scan", installation}},
        {"left by now",
            [](Recovering& r) {
                for (int i = 0; i < 3; ++i)
                    r.book->judge(scan, 1);
                return Round();
            },
            {installation}},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.trace);
        Recovering r;
        r.store->set(scanKeys.start, 1);
        r.store->set(installKeys.start, 1);
        r.subscribe(scanKeys.start, "scan", scan);
        r.subscribe(installKeys.start, installation, AgentStartReason::RemoteDeployment);
        const auto round = row.before(r);
        r.begin();
        EXPECT_EQ(r.done.waitFor(row.done.size()), row.done) << r.log.text();
        r.end();
        EXPECT_EQ(r.done.size(), row.done.size()) << r.log.text();
    }
}

TEST_F(RecoveryTest, sleepsWhileThereIsNothingToRecover)
{
    subscribe(scanKeys.start, "scan", scan);
    store->set(installKeys.start, 1);
    subscribe(installKeys.start, "installation", AgentStartReason::RemoteDeployment);
    begin();
    done.waitFor(1);
    store->set(installKeys.ack, 1);
    const int reads = store->reads;
    EXPECT_EQ(ended.wait_for(support::moment), std::future_status::timeout);
    EXPECT_EQ(store->reads, reads);
    recovery.checkRequests();
    EXPECT_EQ(done.size(), 1u);
    store->set(scanKeys.start, 2);
    EXPECT_EQ(done.waitFor(2).back(), "scan");
    recovery.checkRequests();
    EXPECT_EQ(done.waitFor(3).back(), "scan") << "the answer has set no reason";
}

TEST_F(RecoveryTest, tellsWhoseCallsHaveMetAnOutage)
{
    store->goAway();
    const StoreWatch::Span mine(*watch);
    std::async(std::launch::async, [this] {
        const StoreWatch::Span theirs(*watch);
        settings->setBoolValue(keys.enabled.key(), false);
        EXPECT_TRUE(theirs.hasMetOutage());
    }).get();
    EXPECT_FALSE(mine.hasMetOutage());
    EXPECT_TRUE(watch->takeFailedWrites());
}

TEST_F(RecoveryTest, readsItsSwitchPastTheCache)
{
    struct {
        nlohmann::json value;
        std::optional<bool> answer;
        std::size_t lines;
    } const rows[] = {{nullptr, false, 0}, {true, true, 0}, {false, false, 0}, {"true", false, 1}};
    const auto& key = keys.recovery.enabled;
    for (const auto& [value, answer, lines] : rows) {
        SCOPED_TRACE(value);
        if (!value.is_null())
            store->set(key, value);
        const std::size_t before = log.lines().size();
        EXPECT_EQ(watch->readSwitch(key.key()), answer);
        EXPECT_EQ(log.lines().size() - before, lines) << log.text();
    }
    store->goAway();
    EXPECT_EQ(watch->readSwitch(key.key()), std::nullopt);
}

} // namespace
} // namespace vx::tarn
