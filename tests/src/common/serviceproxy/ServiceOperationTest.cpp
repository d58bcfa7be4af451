#include "common/serviceproxy/serviceoperation.h"
#include "support/thrown.h"

#include <gtest/gtest.h>

using vx::tarn::common::ServiceOperation;

TEST(ServiceOperation, waitsOnceOnlyAndLeavesNothingBehindWhenMoved)
{
    const auto failure = [](ServiceOperation& operation) -> std::string {
        return support::thrown<std::logic_error>([&] { operation.wait(); }).what();
    };
    ServiceOperation empty;
    EXPECT_EQ(failure(empty), "Subsequent call to wait");
    for (const bool answer : {true, false}) {
        ServiceOperation source([=](const vx::IWaitable*) { return answer; });
        ServiceOperation target(std::move(source));
        EXPECT_EQ(failure(source), "Subsequent call to wait");
        source = std::move(target);
        EXPECT_EQ(failure(target), "Subsequent call to wait");
        EXPECT_EQ(source.wait(), answer);
        EXPECT_EQ(failure(source), "Subsequent call to wait");
    }
}
