// The deployment queue between processes: each worker is a process of its own, on a real store server.

#include "childprocess.h"
#include "common/commonfactory.h"
#include "common/ideploymentqueue.h"
#include "store/client.h"
#include "support/childtest.h"
#include "vxtl/str.h"

#include <algorithm>
#include <nlohmann/json.hpp>
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
    std::string kind;
    std::string text;
};

/// Three items are pushed, one of them is removed again and the oldest one popped.
Step stepOf(const std::string& worker, unsigned number)
{
    const auto text = [&](unsigned n) { return worker + '-' + std::to_string(n); };
    switch (number % 5) {
    case 2: return {"remove", text(number - 1)};
    case 4: return {"pop", "-"};
    default: return {"push", text(number)};
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

/// What a worker noted, in order; the outcome of a step that it did not come back from is empty.
struct Note {
    Step step;
    std::string outcome;
};

std::vector<Note> notesOf(const ChildProcess& worker)
{
    std::vector<Note> notes;
    std::istringstream output(worker.output());
    for (std::string line; std::getline(output, line);) {
        std::istringstream words(line);
        Note note;
        if (words >> note.step.kind >> note.step.text) {
            words >> note.outcome;
            notes.push_back(note);
        }
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
        const std::wstring program = (support::programFolder() / "tarnhost.exe").wstring();
        const std::wstring file = (folder.path() / "store.json").wstring();
        store = std::make_unique<ChildProcess>(L"\"" + program + L"\" store --file \"" + file + L"\"", folder.path());
        EXPECT_TRUE(client.waitForServer(std::chrono::seconds(30)));
    }

    std::unique_ptr<ChildProcess> startWorker(const std::string& name, unsigned steps)
    {
        SetEnvironmentVariableW(L"TARNHD_TEST_ARGUMENT", vx::str::fromUtf8(name + ' ' + std::to_string(steps)).c_str());
        const std::wstring program = (support::programFolder() / "queue-tests.exe").wstring();
        return std::make_unique<ChildProcess>(L"\"" + program + L"\" --child work", folder.path());
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
    std::unique_ptr<ChildProcess> store;
    devhost::store::Client client{instance};
};

TEST_F(QueueTest, losesAndDoublesNothingBetweenTwoProcesses)
{
    constexpr unsigned steps = 1000;
    const std::unique_ptr<ChildProcess> workers[] = {startWorker("a", steps), startWorker("b", steps)};
    std::ptrdiff_t expected = 0;
    Texts pushed;
    for (const auto& worker : workers) {
        ASSERT_EQ(worker->wait(), 0u) << worker->errors();
        const auto notes = notesOf(*worker);
        ASSERT_EQ(notes.size(), steps);
        for (const Note& note : notes) {
            ASSERT_FALSE(note.outcome.empty());
            expected += note.outcome == "nothing" ? 0 : note.step.kind == "push" ? 1 : -1;
            if (note.step.kind == "push")
                pushed.push_back(note.step.text);
        }
    }
    const Texts left = queue();
    EXPECT_EQ(static_cast<std::ptrdiff_t>(left.size()), expected);
    // Of each worker's items those that are left stand in the order in which they were pushed, each once.
    for (const char worker : {'a', 'b'}) {
        Texts own, ownPushed;
        const auto isOwn = [&](const std::string& text) { return text[0] == worker; };
        std::copy_if(left.begin(), left.end(), std::back_inserter(own), isOwn);
        std::copy_if(pushed.begin(), pushed.end(), std::back_inserter(ownPushed), isOwn);
        EXPECT_TRUE(std::ranges::adjacent_find(own) == own.end());
        auto place = ownPushed.begin();
        for (const std::string& text : own) {
            place = std::find(place, ownPushed.end(), text);
            ASSERT_TRUE(place != ownPushed.end()) << text;
        }
    }
    std::printf("%zu of %zu items are left\n", left.size(), pushed.size());
}

TEST_F(QueueTest, holdsWhatWasDoneWhenProcessesAreKilled)
{
    constexpr unsigned kills = 200;
    std::mt19937 random(20);
    unsigned steps = 0, inFlight = 0;
    // The server may carry out a dead process's last request a little later, so there may be two.
    std::set<Texts> possible{{}};
    for (unsigned round = 0; round < kills; ++round) {
        const auto worker = startWorker("r" + std::to_string(round), 1'000'000);
        // It is killed somewhere in its first steps.
        const std::size_t enough = random() % 6;
        while (notesOf(*worker).size() <= enough)
            ASSERT_FALSE(worker->wait(std::chrono::milliseconds(random() % 4))) << worker->errors();
        worker->kill();
        const auto notes = notesOf(*worker);
        steps += static_cast<unsigned>(notes.size());
        const bool cut = notes.back().outcome.empty();
        inFlight += cut;
        std::set<Texts> acknowledged, late;
        for (Texts state : possible) {
            for (const Note& note : notes)
                if (note.outcome == "done")
                    apply(note.step, state);
            acknowledged.insert(state);
            if (cut) {
                apply(notes.back().step, state);
                late.insert(state);
            }
        }
        const Texts left = queue();
        ASSERT_TRUE(acknowledged.contains(left) || late.contains(left))
            << "round " << round << ", left " << testing::PrintToString(left) << " after\n"
            << worker->output();
        possible = {left};
        if (cut && acknowledged.contains(left)) {
            Texts state = left;
            apply(notes.back().step, state);
            possible.insert(state);
        }
    }
    std::printf("%u kills, %u steps, %u of them not acknowledged\n", kills, steps, inFlight);
    EXPECT_GT(inFlight, 0u) << "no process was killed within a step";
}

} // namespace

int main(int argc, char** argv)
{
    return support::mainWithChildren(argc, argv, {{"work", &work}});
}
