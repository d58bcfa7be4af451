#include "faultplan.h"

#include <nlohmann/json.hpp>

using namespace devhost::store;

TEST(FaultPlan, usesUpTheEarliestFaultThatMatches)
{
    FaultPlan plan;
    plan.add({Operation::Get, ErrorCode::AccessDenied, 1, "a"});
    plan.add({Operation::All, ErrorCode::SizeLimit, 2, ""});
    plan.add({Operation::Set, ErrorCode::NotAllowed, 0, ""});

    EXPECT_EQ(plan.take(Operation::Get, "b"), ErrorCode::SizeLimit);
    EXPECT_EQ(plan.take(Operation::Get, "a"), ErrorCode::AccessDenied);
    EXPECT_EQ(plan.take(Operation::Get, "a"), ErrorCode::SizeLimit);
    EXPECT_EQ(plan.take(Operation::Get, "a"), std::nullopt);
    EXPECT_EQ(plan.take(Operation::Set, "a"), std::nullopt);
}

TEST(FaultPlan, keepsItsStateAsJson)
{
    const FaultState state{{{Operation::Unsubscribe, static_cast<ErrorCode>(99), 3, "x.y"}}, true, 250};
    EXPECT_EQ(faultStateFromJson(toJson(state)), state);
    EXPECT_EQ(faultStateFromJson(nlohmann::json::object()), FaultState{});
    EXPECT_THROW(faultStateFromJson({{"faults", {{{"operation", "write"}}}}}), StoreException);
    EXPECT_THROW(faultStateFromJson({{"faults", {{{"operation", "set"}, {"code", 0}}}}}), StoreException);
    EXPECT_THROW(faultStateFromJson({{"delayMs", "long"}}), StoreException);
}
