#include "common/deploymentqueue/deploymentqueue.h"

#include "support/childtest.h"
#include "support/fakesettings.h"
#include "support/logcapture.h"
#include "vxtl/globalmutex.h"

#include <thread>

namespace vx::tarn::common {
namespace {

using nlohmann::json;
using testing::ElementsAre;
using Texts = std::vector<std::string>;

const TarnpatchSettings keys{nullptr};
const auto& row = keys.installation.deploymentQueue;

/// Carries out a write that is still on its way just before the list is read for that many times more.
struct LateStore : support::FakeSettings {
    json getJsonValue(Name name) override
    {
        if (readsBefore > 0 && --readsBefore == 0)
            setJsonValue(name, late());
        return FakeSettings::getJsonValue(name);
    }
    std::function<json()> late;
    int readsBefore = 0;
};

json items(const Texts& texts)
{
    json list = json::array();
    for (const std::string& text : texts)
        list.push_back({{"operation_id", "1"}, {"update_id", text}});
    return list;
}

struct DeploymentQueueTest : testing::Test {
    std::shared_ptr<LateStore> store = std::make_shared<LateStore>();
    std::shared_ptr<sync::GlobalMutex> mutex =
        std::make_shared<sync::GlobalMutex>(support::uniqueName(L"DeploymentQueueTest"));
    DeploymentQueue queue{support::FakeSettings::handle(store), mutex};
    support::LogCapture log{4};

    Texts texts() const
    {
        Texts result;
        for (const json& item : store->get(row))
            result.push_back(item["update_id"]);
        return result;
    }
    /// Leaves the mutex as a process does that dies in an operation.
    void dieWithin()
    {
        std::thread([this] { mutex->lock(); }).join();
    }
};

TEST_F(DeploymentQueueTest, keepsTheOrderAndRefusesDuplicates)
{
    EXPECT_TRUE(queue.isEmpty());
    EXPECT_EQ(queue.getFront(), L"");
    queue.pop();
    EXPECT_FALSE(queue.remove(L"ALL"));
    EXPECT_TRUE(store->writes().empty());
    for (const wchar_t* text : {L"ALL", L"CRITICAL", L"ALL", L"all"})
        queue.pushBack(text);
    EXPECT_THAT(texts(), ElementsAre("ALL", "CRITICAL", "all"));
    EXPECT_TRUE(queue.remove(L"CRITICAL"));
    EXPECT_FALSE(queue.remove(L"CRITICAL"));
    EXPECT_EQ(queue.getFront(), L"ALL");
    queue.pop();
    EXPECT_EQ(queue.getFront(), L"all");
    EXPECT_FALSE(queue.isEmpty());
    const std::string id = store->get(row)[0]["operation_id"];
    EXPECT_EQ(id.size(), 13u) << id;
}

TEST_F(DeploymentQueueTest, writesForeignItemsInItsOwnFormAtAPush)
{
    const json other{{"operation_id", "1"}, {"update_id", "ALL"}};
    store->set(row, {{{"unknown", 1}, {"update_id", "CRITICAL"}}, other});
    queue.pushBack(L"IMPORTANT");
    const json list = store->get(row);
    EXPECT_EQ(list[0], json({{"operation_id", ""}, {"update_id", "CRITICAL"}}));
    EXPECT_EQ(list[1], other);
    EXPECT_EQ(list[2]["update_id"], "IMPORTANT");
}

TEST_F(DeploymentQueueTest, reportsAMalformedListAndAStoreThatFailsAndRepairsNothing)
{
    store->set(row, "garbage");
    EXPECT_TRUE(queue.isEmpty());
    EXPECT_EQ(queue.getFront(), L"");
    EXPECT_FALSE(queue.remove(L"ALL"));
    EXPECT_THROW(queue.pushBack(L"ALL"), json::type_error);
    EXPECT_EQ(store->get(row), "garbage");
    EXPECT_TRUE(log.has(3, "type must be array, but is string")) << log.text();
    EXPECT_TRUE(log.has(2, "type must be array, but is string")) << log.text();
    store->fail(row.key(), [] { VX_THROW(settings::ServerUnreachableException, row.key()); });
    EXPECT_NO_THROW(queue.pushBack(L"ALL")) << "it is lost";
    EXPECT_TRUE(log.has(2, "Settings server is unreachable")) << log.text();
    // The mutex was given back each time, or another thread would wait for ever.
    std::thread([&] {
        EXPECT_TRUE(mutex->tryLock(0));
        mutex->unlock();
    }).join();
}

TEST_F(DeploymentQueueTest, keepsItsChangeWhenADeadProcessesWriteComesLate)
{
    const struct {
        const char* label;
        void (*operate)(DeploymentQueue&);
        Texts late; ///< made of a and b
        Texts left;
    } rows[] = {
        {"push", [](auto& q) { q.pushBack(L"x"); }, {"a", "b", "w"}, {"a", "b", "w", "x"}},
        {"push of the same", [](auto& q) { q.pushBack(L"w"); }, {"a", "b", "w"}, {"a", "b", "w"}},
        {"push of what goes", [](auto& q) { q.pushBack(L"a"); }, {"b"}, {"b", "a"}},
        {"pop", [](auto& q) { q.pop(); }, {"a", "b", "w"}, {"b", "w"}},
        {"pop of what goes", [](auto& q) { q.pop(); }, {"b", "w"}, {"b", "w"}},
        {"remove", [](auto& q) { EXPECT_TRUE(q.remove(L"b")); }, {"a", "b", "w"}, {"a", "w"}},
        {"remove of what goes", [](auto& q) { EXPECT_TRUE(q.remove(L"a")); }, {"b"}, {"b"}},
        {"remove of what comes", [](auto& q) { EXPECT_TRUE(q.remove(L"w")); }, {"a", "b", "w"}, {"a", "b"}},
        {"look at the front", [](auto& q) { EXPECT_EQ(q.getFront(), L"b"); }, {"b"}, {"b"}},
        {"look for any", [](auto& q) { EXPECT_TRUE(q.isEmpty()); }, {}, {}},
    };
    for (const auto& [label, operate, late, left] : rows)
        for (const int readsBefore : {2, 12, 21}) {
            SCOPED_TRACE(label + (" before read " + std::to_string(readsBefore)));
            store->set(row, items({"a", "b"}));
            store->late = [&] { return items(late); };
            store->readsBefore = readsBefore;
            dieWithin();
            operate(queue);
            EXPECT_EQ(store->readsBefore, 0);
            EXPECT_EQ(texts(), left);
        }
}

TEST_F(DeploymentQueueTest, comesToAnEndOnAListThatNeverSettles)
{
    store->late = [this, n = 0]() mutable {
        store->readsBefore = 1;
        return items({std::to_string(++n)});
    };
    store->readsBefore = 1;
    dieWithin();
    queue.pushBack(L"x");
    store->readsBefore = 0;
    EXPECT_EQ(texts().back(), "x");
}

} // namespace
} // namespace vx::tarn::common
