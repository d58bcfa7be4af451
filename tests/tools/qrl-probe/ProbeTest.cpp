#include "host/exitcode.h"
#include "host/pluginsession.h"
#include "stage.h"
#include "support/footprint.h"

#include <sstream>
#include <windows.h>

namespace {

using namespace devhost::host;
using namespace support;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::UnorderedElementsAreArray;

class ProbeTest : public StageTest {
protected:
    ProbeTest() { SetEnvironmentVariableW(L"QRL_PROBE_REPORT", report.c_str()); }
    ~ProbeTest() override { SetEnvironmentVariableW(L"QRL_PROBE_REPORT", nullptr); }

    /// One load, from the beginning to the end; this process is the host.
    void live(const Conduct& conduct, std::uint32_t size = 36)
    {
        // In no code page of the probe's choice, as that is how a host finds out whose report it is.
        const std::string name = "s\xE4mple";
        const devhost::ipc::Signal started;
        const PluginSession::Listener listener{[&](const std::string& plugin, std::uint32_t state) {
                                                   EXPECT_EQ(
                                                       plugin, std::string_view(conduct.kind) == "name" ? "" : name);
                                                   if (state == 1)
                                                       started.set();
                                               },
            [](std::uint32_t) {}};
        PluginSession session(library, name, size, listener, conduct);
        session.start();
        ASSERT_TRUE(started.wait(60'000));
        if (&conduct == &goodConduct && size != 28)
            session.resume();
        session.stop();
        EXPECT_EQ(session.waitForEnd(deadline), 0u);
        EXPECT_TRUE(session.isRecordIntact());
    }

    Texts lines() const
    {
        Texts result;
        std::istringstream text(readFile(report));
        for (std::string line; std::getline(text, line);)
            result.push_back(line.substr(0, line.find('\r')));
        return result;
    }
    /// The names of the checks that came out so.
    Texts checks(const std::string& outcome) const
    {
        Texts names;
        for (const auto& line : lines())
            if (line.starts_with(outcome))
                names.push_back(line.substr(10, line.find(' ', 10) - 10));
        return names;
    }

    const std::filesystem::path library = programFolder() / "qrl-probe.dll";
    const std::filesystem::path report = folder.path() / L"r\u00e4port \u0416.txt";
};

} // namespace

TEST_F(ProbeTest, passesAGoodHostWithARecordOfAnySize)
{
    const auto kinds = misconductKinds();
    for (const auto size : PluginRecord::knownSizes) {
        SCOPED_TRACE(size);
        live(goodConduct, size);
        EXPECT_EQ(lines().back(), "verdict: passed") << readFile(report);
        EXPECT_THAT(checks("ok"), UnorderedElementsAreArray(kinds)) << "a misconduct for each check";
    }
}

TEST_F(ProbeTest, failsTheCheckThatTheMisconductNamesAndNoOther)
{
    for (const auto& kind : misconductKinds()) {
        SCOPED_TRACE(kind);
        if (kind == "stop")
            continue; // it takes the process along
        if (kind == "record")
            EXPECT_THROW(live(misconduct(kind)), CommandError);
        else
            live(misconduct(kind));
        EXPECT_THAT(checks("FAILED"), ElementsAre(kind)) << readFile(report);
        EXPECT_EQ(lines().back(), "verdict: FAILED: " + kind);
        EXPECT_FALSE(PluginLoader::isLoaded(library));
    }
}

TEST_F(ProbeTest, reportsAsTheHostGoesOnAndThatItEndsWithoutAStop)
{
    const auto host =
        tarnhost("run --misbehave stop --plugin \"" + library.string() + "\" --store \"" + storeFile.string() + "\"");
    waitFor(folder.path(), "the start", [&] { return host.output().find("reports: started") != std::string::npos; });
    EXPECT_EQ(tarnhost("status --wait 60").wait(), 0u);
    EXPECT_THAT(readFile(report), HasSubstr("verdict: no fault so far; not seen: "));
    for (int i = 0; i < 2; ++i)
        EXPECT_EQ(tarnhost("resume-event").wait(), 0u);
    EXPECT_THAT(lines(), Contains(HasSubstr("power event on thread")).Times(2));
    EXPECT_EQ(tarnhost("stop").wait(), 0u);
    EXPECT_EQ(host.wait(), 0u);
    EXPECT_THAT(checks("FAILED"), ElementsAre("stop")) << readFile(report);
}

TEST_F(ProbeTest, leavesNothingInTheProcess)
{
    // Enough for the heap's own blocks for what is small, which count as taken, to matter no more.
    constexpr int lives = 100;
    // On this thread alone, as threads of the host leave something themselves.
    const auto liveHere = [this] {
        const PluginLoader loader(library);
        PluginRecord record(36);
        HostCallbacks callbacks([](const std::string&, std::uint32_t) {});
        EXPECT_EQ(loader.initialize("sample", callbacks.record(), record.get()), 0u);
        EXPECT_EQ(record.get()->pluginStop(record.get()), 0u);
        EXPECT_EQ(record.get()->pluginMain(record.get()), 0u);
    };
    liveHere();
    const auto before = footprint();
    for (int i = 0; i < lives; ++i)
        liveHere();
    const auto left = footprint() - before;
    EXPECT_LT(left.handles, lives / 2);
    EXPECT_EQ(left.threadSlots, 0);
    EXPECT_LT(left.heapBytes, lives * 512);
}
