// The deployment queue between processes: each worker is a process of its own, on a real store server.

#include "common/deploymentqueue/ideploymentqueue.h"
#include "common/event/event.h"
#include "common/factory/commonfactory.h"
#include "ipc/instance.h"
#include "meridia-settings/meridiasettingsapi.h"
#include "settings-api/cachedsettings.h"
#include "settings-api/settings.h"
#include "stage.h"
#include "support/childtest.h"

#include <algorithm>
#include <random>
#include <sstream>
#include <thread>

namespace {

using support::ChildProcess;
using support::Texts;
using vx::tarn::common::CommonFactory;
using vx::tarn::common::Event;

/// One change of the queue, as a worker plans it and notes it.
struct Step {
    std::string kind, text;
    std::string outcome; ///< empty when the worker did not come back from it
};

/// Two items are pushed and removed again, so each worker finds what it alone has left.
Step stepOf(const std::string& worker, unsigned number)
{
    const bool isPush = number % 4 < 2;
    return {isPush ? "push" : "remove", worker + '-' + std::to_string(isPush ? number : number - 2), {}};
}

/// A worker's access to the store. Death in a write is what can harm others: it may be carried out afterwards.
class MortalSettings : public vx::settings::CachedSettings {
public:
    MortalSettings() : CachedSettings(std::make_shared<vx::meridia::SettingsApi>(L"safe", L"S-1-5-18", L"worker")) {}

    /// Ends the process so long after the next write has begun.
    void dieInWrite(std::chrono::microseconds life) { m_life = life; }

    void setJsonValue(const std::wstring& name, const nlohmann::json& value) override
    {
        if (m_life)
            std::thread([end = std::chrono::steady_clock::now() + *m_life] {
                while (std::chrono::steady_clock::now() < end)
                    ;
                TerminateProcess(GetCurrentProcess(), 1);
            }).detach();
        CachedSettings::setJsonValue(name, value);
    }

private:
    std::optional<std::chrono::microseconds> m_life;
};

/// Ends all workers when it is set.
std::shared_ptr<Event> makeEndEvent()
{
    return Event::createManualResetEvent(devhost::ipc::instanceFromEnvironment() + L"-end", false);
}

void carryOut(Step& step, vx::tarn::common::IDeploymentQueue& queue)
{
    step.outcome = "done";
    if (step.kind == "push")
        queue.pushBack(vx::str::fromUtf8(step.text));
    else if (!queue.remove(vx::str::fromUtf8(step.text)))
        step.outcome = "nothing";
}

/// In the worker's process, with the argument "name steps microseconds": notes each step before and after. With
/// microseconds it dies in the write of its last step.
int work()
{
    std::istringstream argument(vx::str::toUtf8(support::ChildTest::argument()));
    std::string name;
    unsigned steps = 0, life = 0;
    argument >> name >> steps >> life;
    const auto end = makeEndEvent();
    const auto store = std::make_shared<MortalSettings>();
    const auto queue = CommonFactory().createDeploymentQueue(std::make_shared<vx::settings::Settings>(store));
    for (unsigned i = 0; i < steps && !vx::sync::waitForSingleObject(*end, 0); ++i) {
        Step step = stepOf(name, i);
        std::printf("%s %s", step.kind.c_str(), step.text.c_str());
        std::fflush(stdout);
        if (life > 0 && i + 1 == steps)
            store->dieInWrite(std::chrono::microseconds(life));
        carryOut(step, *queue);
        std::printf(" %s\n", step.outcome.c_str());
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

/// What a worker has left by the steps that it came back from. Those that did not find what they
/// wanted to remove are added to `lost`.
Texts leftBy(const std::vector<Step>& notes, std::size_t& lost)
{
    Texts left;
    for (const Step& note : notes) {
        lost += note.outcome == "nothing";
        if (note.outcome == "done" && note.kind == "push")
            left.push_back(note.text);
        else if (!note.outcome.empty())
            std::erase(left, note.text);
    }
    return left;
}

class QueueTest : public support::StageTest {
protected:
    QueueTest() { EXPECT_TRUE(client.waitForServer(support::deadline)); }

    ChildProcess startWorker(const std::string& argument) const
    {
        SetEnvironmentVariableW(L"TARNHD_TEST_ARGUMENT", vx::str::fromUtf8(argument).c_str());
        return {"queue-tests.exe", L"--child work", folder.path()};
    }

    const ChildProcess store = tarnhost("store --file \"" + storeFile.string() + '"');
};

TEST_F(QueueTest, holdsWhatSurvivorsDidWhenOthersDieInTheirWrites)
{
    const auto end = makeEndEvent();
    const auto queueOfThisProcess = CommonFactory().createDeploymentQueue();
    const auto remove = [&](const std::string& text) { return queueOfThisProcess->remove(vx::str::fromUtf8(text)); };
    const ChildProcess survivors[] = {startWorker("a 100000000"), startWorker("b 100000000")};
    std::mt19937 random(20);
    constexpr int deaths = 20;
    std::size_t inFlight = 0, lost = 0;
    for (int round = 0; round < deaths; ++round) {
        const auto victim = startWorker("r" + std::to_string(round) + ' ' + std::to_string(1 + random() % 6) + ' ' +
                                        std::to_string(1 + random() % 1500));
        ASSERT_TRUE(victim.wait()) << victim.errors();
        const auto notes = notesOf(victim);
        // Its last step may have had its effect, or none.
        const std::string doubtful = notes.back().outcome.empty() ? notes.back().text : "";
        inFlight += !doubtful.empty();
        for (const std::string& text : leftBy(notes, lost))
            lost += !remove(text) && text != doubtful;
        if (!doubtful.empty())
            remove(doubtful);
    }
    end->set();
    Texts expected, strays;
    for (const ChildProcess& survivor : survivors) {
        ASSERT_EQ(survivor.wait(), 0u) << survivor.errors();
        std::ranges::copy(leftBy(notesOf(survivor), lost), std::back_inserter(expected));
    }
    Texts left = queue();
    std::ranges::sort(left);
    std::ranges::sort(expected);
    std::ranges::set_symmetric_difference(left, expected, std::back_inserter(strays));
    std::printf("%d deaths, %zu within a step; %zu items lost, %zu come back\n", deaths, inFlight, lost, strays.size());
    EXPECT_EQ(lost + strays.size(), 0u) << testing::PrintToString(strays);
    EXPECT_GT(inFlight, 0u) << "no process died within a step";
}

} // namespace

int main(int argc, char** argv)
{
    return support::mainWithChildren(argc, argv, {{"work", &work}});
}
