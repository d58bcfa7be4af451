#include "common/serviceoperation.h"

#include <gtest/gtest.h>

#include <stdexcept>

namespace vx::tarn::common {
namespace {

void expectNothingToWaitOn(ServiceOperation& operation)
{
    try {
        operation.wait();
        ADD_FAILURE();
    } catch (const std::logic_error& e) {
        EXPECT_STREQ(e.what(), "Subsequent call to wait");
    }
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
