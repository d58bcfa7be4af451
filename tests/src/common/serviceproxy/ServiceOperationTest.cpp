#include "common/serviceoperation.h"

#include <gmock/gmock.h>

#include <stdexcept>

namespace vx::tarn::common {
namespace {

void expectNothingToWaitOn(ServiceOperation& operation)
{
    EXPECT_THAT(
        [&] { operation.wait(); }, testing::ThrowsMessage<std::logic_error>(testing::StrEq("Subsequent call to wait")));
}

TEST(ServiceOperation, waitsOnceOnly)
{
    ServiceOperation empty;
    expectNothingToWaitOn(empty);
    for (const bool answer : {true, false}) {
        ServiceOperation operation([=](const IWaitable*) { return answer; });
        EXPECT_EQ(operation.wait(), answer);
        expectNothingToWaitOn(operation);
    }
}

TEST(ServiceOperation, leavesNothingBehindWhenMoved)
{
    ServiceOperation source([](const IWaitable*) { return true; });
    ServiceOperation target(std::move(source));
    expectNothingToWaitOn(source);
    source = std::move(target);
    expectNothingToWaitOn(target);
    EXPECT_TRUE(source.wait());
}

} // namespace
} // namespace vx::tarn::common
