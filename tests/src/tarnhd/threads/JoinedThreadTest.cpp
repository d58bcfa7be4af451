#include "tarnhd/threads/joinedthread.h"

#include "support/logcapture.h"

#include <gtest/gtest.h>

#include <windows.h>

namespace vx::tarn {
namespace {

TEST(JoinedThread, isGoneBehindItsOwner)
{
    support::LogCapture log;
    const KernelHandle go(CreateEventW(nullptr, TRUE, FALSE, nullptr));
    bool ended = false;
    {
        const JoinedThread thread([&] {
            WaitForSingleObject(go.get(), INFINITE);
            ended = true;
            throw std::runtime_error("broken body");
        });
        EXPECT_FALSE(ended);
        SetEvent(go.get());
    }
    EXPECT_TRUE(ended);
    EXPECT_TRUE(log.has(2, "broken body")) << log.text();
}

} // namespace
} // namespace vx::tarn
