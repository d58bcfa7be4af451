#include "fakeipc.h"
#include "support/misaligned.h"

using vx::tarn::common::IpcTest;

TEST_F(IpcTest, messagesRestoreTheAlignmentThatCodeReliesOn)
{
    server->start([](std::uint32_t type, const nlohmann::json& data) {
        support::expectAlignedStack();
        return static_cast<std::int32_t>(type) + data.get<int>();
    });
    for (const std::uint32_t misalignment : {0u, 4u, 8u, 12u})
        EXPECT_EQ(support::callMisaligned(callback, misalignment, 40u, "2!", 1u, nullptr, context), 42u);
}
