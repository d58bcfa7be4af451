#include "tarnhd/wusstopper/rebootrequest.h"

#include <gtest/gtest.h>
#include <limits>

namespace vx::tarn {
namespace {

constexpr Ticks most = std::numeric_limits<Ticks>::max();

TEST(RebootRequest, isDueStrictlyBehindItsDeadline)
{
    constexpr Ticks created = 1'700'000'000 * ticksPerSecond;
    constexpr Ticks aDayLater = 1'700'086'400 * ticksPerSecond;
    const struct {
        const char* trace;
        Ticks initiated;
        std::int64_t forceSeconds;
        Ticks deadline;
    } rows[] = {
        {"the default", created, 86'400, aDayLater},
        {"at once", created, 0, created},
        {"a deadline before its begin", created, -2, created - 2 * ticksPerSecond},
        {"the latest deadline", created, (most - created) / ticksPerSecond, most - (most - created) % ticksPerSecond},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.trace);
        const RebootRequest request{row.initiated, std::chrono::seconds(row.forceSeconds)};
        EXPECT_EQ(request.deadline(), row.deadline);
        EXPECT_FALSE(request.isDue(row.deadline));
        EXPECT_TRUE(request.isDue(row.deadline + 1));
    }
}

TEST(RebootRequest, isNeverDueWithoutABeginOrBehindTheEndOfTime)
{
    EXPECT_FALSE((RebootRequest{0, std::chrono::seconds(0)}.isDue(most)));
    EXPECT_FALSE((RebootRequest{1, std::chrono::seconds(most)}.isDue(most)));
    EXPECT_TRUE((RebootRequest{1, std::chrono::seconds(-most)}.isDue(0)));
}

} // namespace
} // namespace vx::tarn
