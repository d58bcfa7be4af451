#include "rig.h"

#include "host/pluginsession.h"
#include "support/footprint.h"
#include "support/machine.h"

#include <array>
#include <cstring>
#include <windows.h>
#include <winternl.h>

namespace rig {
namespace {

std::int64_t ahead = 0;

std::int64_t realTime()
{
    LARGE_INTEGER time{};
    NtQuerySystemTime(&time);
    return time.QuadPart;
}

void WINAPI readClock(FILETIME* result)
{
    const std::int64_t time = realTime() + ahead;
    std::memcpy(result, &time, sizeof time);
}

/// Sets the wall clock of this process for the object's life, under whatever reads it. One at a time, and only while
/// no other thread reads the clock: the system's functions are overwritten with a jump.
class ClockAhead {
public:
    /// Seconds since the Unix epoch; the clock goes on from there.
    explicit ClockAhead(std::int64_t now)
    {
        ahead = (now + 11'644'473'600) * 10'000'000 - realTime();
        for (const char* name : {"GetSystemTimeAsFileTime", "GetSystemTimePreciseAsFileTime"})
            if (const auto function = GetProcAddress(GetModuleHandleW(L"kernel32.dll"), name))
                divert(reinterpret_cast<unsigned char*>(function));
    }
    ~ClockAhead()
    {
        for (const auto& [at, code] : m_originals)
            overwrite(at, code);
    }
    ClockAhead(const ClockAhead&) = delete;
    ClockAhead& operator=(const ClockAhead&) = delete;

private:
    using Code = std::array<unsigned char, 5>;

    void divert(unsigned char* at)
    {
        std::memcpy(m_originals[at].data(), at, sizeof(Code));
        const auto distance = reinterpret_cast<std::uintptr_t>(&readClock) - reinterpret_cast<std::uintptr_t>(at) - 5;
        Code jump{0xE9};
        std::memcpy(&jump[1], &distance, 4);
        overwrite(at, jump);
    }
    static void overwrite(unsigned char* at, const Code& code)
    {
        DWORD protection = 0;
        VirtualProtect(at, code.size(), PAGE_EXECUTE_READWRITE, &protection);
        std::memcpy(at, code.data(), code.size());
        VirtualProtect(at, code.size(), protection, &protection);
        FlushInstructionCache(GetCurrentProcess(), at, code.size());
    }

    std::map<unsigned char*, Code> m_originals;
};

/// The test itself is the host: what it does to its process meets the plug-in.
class InProcessTest : public SystemTest {
protected:
    void SetUp() override
    {
        startStoreAlone();
        put(devhost::host::keys::host.lastSuccessfulUpdateTimestamp, 1);
        put(settings.enabled, true);
    }
    /// One life: loaded, run until the agent has ended and `meanwhile` has returned, stopped, unloaded.
    void run(const std::function<void()>& meanwhile = [] {})
    {
        const std::size_t lives = logCount("Run processing") + 1;
        const std::size_t ends = logCount(agentEnd) + 1;
        const auto library = programFolder() / "tarnhd.dll";
        {
            devhost::host::PluginSession session(
                library, "tarnhd", 36, {[](const std::string&, std::uint32_t) {}, [](std::uint32_t) {}});
            session.start();
            waitForLog("Run processing", lives);
            waitForAgentEnds(ends);
            meanwhile();
            session.stop();
            ASSERT_TRUE(session.waitForEnd(deadline));
        }
        EXPECT_FALSE(devhost::host::PluginLoader::isLoaded(library));
    }
};

TEST_F(InProcessTest, leavesNeitherHandlesNorThreadSlotsBehind)
{
    constexpr int lives = 10;
    std::size_t changes = 0;
    const auto changeTask = [&] {
        put(settings.installation.automatic.hour, ++changes);
        waitForLog("The task has been created successfully.", 2 * changes);
    };
    put(settings.installation.automatic.mode, "install_all");
    for (int i = 0; i < 2; ++i)
        run(changeTask);
    const Footprint before = footprint();
    for (int i = 0; i < lives; ++i)
        run(changeTask);
    const Footprint left = footprint() - before;
    EXPECT_LT(left.handles, lives / 2);
    EXPECT_EQ(left.threadSlots, 0);
    EXPECT_TRUE(Machine::isUnused());
}

TEST_F(InProcessTest, worksBehindTheEndOfATimeOf32Bits)
{
    constexpr std::int64_t end = 0x7FFFFFFF;
    for (const std::int64_t year : {2040, 2100, 2110}) {
        SCOPED_TRACE(year);
        const ClockAhead clock((year - 1970) * 31'556'952);
        // The first scan comes out of the scheduler.
        run([&] { scan(year); });
        EXPECT_GT(get(lastScan), end);
    }
}

} // namespace
} // namespace rig
