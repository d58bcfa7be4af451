// The host that docs/integration.md shows.

#include "rig.h"

#include "process/pipe.h"

#include <windows.h>

namespace rig {
namespace {

class MinimalHostTest : public SystemTest {
protected:
    ChildProcess load(const wchar_t* library) const
    {
        const auto path = L'"' + (programFolder() / library).native() + L'"';
        return {"minimalhost.exe", path, folder.path(), m_input.first->get()};
    }
    void endInput() { m_input.second.reset(); }

private:
    std::pair<vx::SharedHandle, vx::SharedHandle> m_input = vx::pipe::createPipe(true, false);
};

TEST_F(MinimalHostTest, runsThePlugInUntilItsInputEnds)
{
    startStoreAlone();
    put(devhost::host::keys::host.lastSuccessfulUpdateTimestamp, 1);
    const auto minimalHost = load(L"tarnhd.dll");
    waitForLog("Run processing");
    waitForAgentEnds(1);
    scan(1);
    endInput();
    EXPECT_EQ(minimalHost.wait(), 0u) << minimalHost.errors();
    EXPECT_EQ(minimalHost.output(), "tarnhd: started\r\nstop returned 0\r\ntarnhd: stopped\r\nresult 0, unloaded\r\n");
    EXPECT_EQ(logCount("***  LOGGING ENDED  ***"), 1u);
    EXPECT_EQ(logCount("] *E:"), 0u);
}

TEST_F(MinimalHostTest, passesTheProbe)
{
    const auto report = folder.path() / "report.txt";
    SetEnvironmentVariableW(L"QRL_PROBE_REPORT", report.c_str());
    const auto minimalHost = load(L"qrl-probe.dll");
    waitFor(folder.path(), "the start", [&] { return minimalHost.output().starts_with("tarnhd: started"); });
    endInput();
    EXPECT_EQ(minimalHost.wait(), 0u) << minimalHost.errors();
    EXPECT_THAT(readFile(report), testing::HasSubstr("verdict: passed"));
}

} // namespace
} // namespace rig
