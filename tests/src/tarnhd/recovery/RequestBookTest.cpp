#include "tarnhd/recovery/requestbook.h"

#include "support/fakesettings.h"
#include "support/logcapture.h"

namespace vx::tarn {
namespace {

constexpr auto scan = AgentStartReason::RemoteScan;
constexpr auto installation = AgentStartReason::RemoteDeployment;
const RemoteOperationsSettings remote{nullptr};
const auto& scanKeys = remote.scanForUpdates;
const auto& installKeys = remote.installUpdates;

struct RequestBookTest : testing::Test {
    RequestBookTest()
    {
        store->set(scanKeys.start, 1);
        store->set(installKeys.start, 11);
    }
    nlohmann::json acks() const { return {store->get(scanKeys.ack), store->get(installKeys.ack)}; }

    support::LogCapture log;
    std::shared_ptr<support::FakeSettings> store = std::make_shared<support::FakeSettings>();
    std::shared_ptr<RequestBook> book =
        std::make_shared<RequestBook>(TarnpatchSettings(support::FakeSettings::handle(store)));
};

TEST_F(RequestBookTest, aRoundAcknowledgesWhatWasSetBeforeItAndNothingElse)
{
    struct {
        const char* trace;
        std::vector<AgentStartReason> set, setMeanwhile, withdrawn;
        AgentStartReason reason;
        nlohmann::json acks;
    } const rows[] = {
        {"none", {}, {}, {}, AgentStartReason::None, {nullptr, nullptr}},
        {"one", {installation}, {}, {}, installation, {nullptr, 11}},
        {"both", {installation, scan}, {}, {}, scan, {1, 11}},
        {"one comes later", {scan}, {installation}, {}, scan, {1, nullptr}},
        {"one anew", {scan}, {scan}, {}, scan, {1, nullptr}},
        {"one withdrawn", {scan, installation}, {}, {installation}, installation, {1, nullptr}},
        {"withdrawn and anew", {scan}, {scan}, {scan}, scan, {nullptr, nullptr}},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.trace);
        store->set(scanKeys.start, 1);
        store->set(scanKeys.ack, nullptr);
        store->set(installKeys.ack, nullptr);
        for (const auto reason : row.set)
            book->set(reason);
        store->set(scanKeys.start, 2);
        {
            const auto round = book->take();
            EXPECT_EQ(round->reason(), row.reason);
            for (const auto reason : row.withdrawn)
                book->withdraw(reason);
            for (const auto reason : row.setMeanwhile)
                book->set(reason);
            EXPECT_TRUE(book->isAnyAtWork());
            round->close();
            EXPECT_EQ(acks(), row.acks);
        }
        for (const auto reason : remoteRequests)
            EXPECT_EQ(book->isAttended(reason), std::ranges::count(row.setMeanwhile, reason) > 0) << nameOf(reason);
        EXPECT_FALSE(book->isAnyAtWork());
        book->take();
    }
    EXPECT_EQ(log.count("Recovery: this run answers both requests"), 2u) << log.text();
}

TEST_F(RequestBookTest, givesUpAfterThreeRunsOrThreeAttemptsUntilTheValueChanges)
{
    using enum RequestBook::Verdict;
    const auto serve = [this] { return book->judge(scan, store->get(scanKeys.start)).verdict; };
    const auto run = [this] {
        book->set(scan);
        book->take();
    };
    for (const int value : {1, 2, 1}) {
        SCOPED_TRACE(value);
        store->set(scanKeys.start, value);
        const bool isRun = value == 2;
        for (int i = 0; i < 3; ++i) {
            EXPECT_EQ(serve(), Serve);
            if (isRun)
                run();
        }
        EXPECT_EQ(serve(), LeaveFromNowOn);
        EXPECT_EQ(serve(), Leave);
    }
    store->set(scanKeys.start, 3);
    for (int i = 0; i < 3; ++i)
        run();
    EXPECT_EQ(serve(), LeaveFromNowOn) << "three runs before the first look";
    EXPECT_EQ(book->judge(installation, 11).verdict, Serve) << "each request for itself";
}

TEST_F(RequestBookTest, countsAnAttemptThatAnOutageEndsOnlyOnceItHasAskedForAStart)
{
    for (const bool asks : {false, true}) {
        SCOPED_TRACE(asks);
        for (int i = 0; i < 4; ++i) {
            const auto expected = asks && i == 3 ? RequestBook::Verdict::LeaveFromNowOn : RequestBook::Verdict::Serve;
            EXPECT_EQ(book->judge(scan, asks).verdict, expected);
            if (asks)
                book->set(scan);
            book->withdraw(scan);
        }
    }
}

} // namespace
} // namespace vx::tarn
