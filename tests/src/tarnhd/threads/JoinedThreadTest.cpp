#include "tarnhd/threads/joinedthread.h"

#include "support/gate.h"
#include "support/logcapture.h"

TEST(JoinedThread, isGoneBehindItsOwner)
{
    support::LogCapture log;
    support::Gate gate;
    bool ended = false;
    {
        const vx::tarn::JoinedThread thread([&] {
            gate.pass();
            ended = true;
            throw std::runtime_error("broken body");
        });
        EXPECT_FALSE(ended);
        gate.open();
    }
    EXPECT_TRUE(ended);
    EXPECT_TRUE(log.has(2, "broken body")) << log.text();
}
