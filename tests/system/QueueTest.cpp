// The deployment queue between processes: each worker is a process of its own, on a real store server.

#include "childprocess.h"
#include "common/commonfactory.h"
#include "common/ideploymentqueue.h"
#include "store/client.h"
#include "support/childtest.h"
#include "vxtl/str.h"

#include <algorithm>
#include <nlohmann/json.hpp>
#include <optional>
#include <random>
#include <set>
#include <sstream>

namespace {

using Texts = std::vector<std::string>;
using devhost::store::Value;
using support::ChildProcess;

const std::string queueKey = "windows.tarnpatch.installation.deployment_queue";
const std::wstring instance = support::uniqueName(L"queue");

/// One change of the queue, as a worker plans it and notes it.
struct Step {
    std::string kind, text;
    std::string outcome; ///< empty when the worker did not come back from it
};

/// Three items are pushed, one of them is removed again and the oldest one popped.
Step stepOf(const std::string& worker, unsigned number)
{
    const auto text = [&](unsigned n) { return worker + '-' + std::to_string(n); };
    switch (number % 5) {
    case 2: return {"remove", text(number - 1), {}};
    case 4: return {"pop", "-", {}};
    default: return {"push", text(number), {}};
    }
}

/// In the worker's process, with the argument "name steps": notes each step before and after.
int work()
{
    std::istringstream argument(vx::str::toUtf8(support::ChildTest::argument()));
    std::string name;
    unsigned steps = 0;
    argument >> name >> steps;
    const auto queue = vx::tarn::common::CommonFactory().createDeploymentQueue();
    for (unsigned i = 0; i < steps; ++i) {
        const Step step = stepOf(name, i);
        std::printf("%s %s", step.kind.c_str(), step.text.c_str());
        std::fflush(stdout);
        bool changed = true;
        if (step.kind == "push")
            queue->pushBack(vx::str::fromUtf8(step.text));
        else if (step.kind == "pop")
            queue->pop();
        else
            changed = queue->remove(vx::str::fromUtf8(step.text));
        std::printf(changed ? " done\n" : " nothing\n");
        std::fflush(stdout);
    }
    return 0;
}

/// What a worker noted, in order.
std::vector<Step> notesOf(const ChildProcess& worker)
{
    std::vector<Step> notes;
    std::istringstream output(worker.output());
    for (Step note; output >> note.kind >> note.text; note = {}) {
        output >> note.outcome;
        notes.push_back(note);
    }
    return notes;
}

void apply(const Step& step, Texts& queue)
{
    if (step.kind == "push")
        queue.push_back(step.text);
    else if (step.kind == "remove")
        std::erase(queue, step.text);
    else if (!queue.empty())
        queue.erase(queue.begin());
}

class QueueTest : public testing::Test {
protected:
    QueueTest()
    {
        SetEnvironmentVariableW(L"TARNHD_INSTANCE", instance.c_str());
        const std::wstring file = (folder.path() / "store.json").wstring();
        store.emplace("tarnhost.exe", L"store --file \"" + file + L"\"", folder.path());
        EXPECT_TRUE(client.waitForServer(std::chrono::seconds(30)));
    }

    ChildProcess startWorker(const std::string& nameAndSteps)
    {
        SetEnvironmentVariableW(L"TARNHD_TEST_ARGUMENT", vx::str::fromUtf8(nameAndSteps).c_str());
        return {"queue-tests.exe", L"--child work", folder.path()};
    }

    Texts queue()
    {
        Texts texts;
        if (const auto value = client.get(queueKey))
            for (const auto& item : nlohmann::json::parse(value->asObject()))
                texts.push_back(item.at("update_id"));
        return texts;
    }

    support::TemporaryFolder folder;
    std::optional<ChildProcess> store;
    devhost::store::Client client{instance};
};

TEST_F(QueueTest, losesAndDoublesNothingBetweenTwoProcesses)
{
    const ChildProcess workers[] = {startWorker("a 1000"), startWorker("b 1000")};
    for (const ChildProcess& worker : workers)
        ASSERT_EQ(worker.wait(), 0u) << worker.errors();
    const Texts left = queue();
    std::size_t expected = 0;
    for (const ChildProcess& worker : workers) {
        const auto notes = notesOf(worker);
        ASSERT_EQ(notes.size(), 1000u);
        // Of its items those that are left stand in the order in which they were pushed, each once.
        Texts pushed, own;
        for (const Step& note : notes) {
            ASSERT_FALSE(note.outcome.empty());
            const bool isPush = note.kind == "push";
            if (note.outcome == "done")
                expected += isPush ? 1u : -1u;
            if (isPush && std::ranges::find(left, note.text) != left.end())
                pushed.push_back(note.text);
        }
        std::ranges::copy_if(left, std::back_inserter(own), [&](const auto& t) { return t[0] == notes[0].text[0]; });
        EXPECT_EQ(own, pushed);
    }
    EXPECT_EQ(left.size(), expected);
    std::printf("%zu items are left\n", left.size());
}

TEST_F(QueueTest, holdsWhatWasDoneWhenProcessesAreKilled)
{
    constexpr unsigned kills = 200;
    std::mt19937 random(20);
    unsigned inFlight = 0;
    // The server may carry out a dead process's last request a little later, so there may be two.
    std::set<Texts> possible{{}};
    for (unsigned round = 0; round < kills; ++round) {
        auto worker = startWorker("r" + std::to_string(round) + " 1000000");
        // It is killed somewhere in its first steps.
        const std::size_t enough = random() % 6;
        while (notesOf(worker).size() <= enough)
            ASSERT_FALSE(worker.wait(std::chrono::milliseconds(random() % 4))) << worker.errors();
        worker.kill();
        const auto notes = notesOf(worker);
        const bool cut = notes.back().outcome.empty();
        inFlight += cut;
        std::set<Texts> acknowledged, late;
        for (Texts state : possible) {
            for (const Step& note : notes)
                if (note.outcome == "done")
                    apply(note, state);
            acknowledged.insert(state);
            if (cut) {
                apply(notes.back(), state);
                late.insert(state);
            }
        }
        const Texts left = queue();
        ASSERT_TRUE(acknowledged.contains(left) || late.contains(left))
            << "round " << round << ", left " << testing::PrintToString(left) << " after\n"
            << worker.output();
        possible = {left};
        if (cut && acknowledged.contains(left)) {
            Texts state = left;
            apply(notes.back(), state);
            possible.insert(state);
        }
    }
    EXPECT_GT(inFlight, 0u) << "no process was killed within a step";
}

} // namespace

int main(int argc, char** argv)
{
    return support::mainWithChildren(argc, argv, {{"work", &work}});
}
