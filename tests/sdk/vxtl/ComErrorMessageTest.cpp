#include "vxtl/comerror.h"

#include <gtest/gtest.h>

#include <cstdint>

namespace vx {
namespace {

TEST(ComErrorMessage, isMadeOfTheNumberWhereTheSystemHasNone)
{
    struct {
        std::uint32_t result;
        const wchar_t* message;
    } const rows[] = {
        {0x80040205, L"IDispatch error #5"},
        {0x80040200, L"Unknown error 0x80040200"},
        {0x800401FF, L"Unknown error 0x800401FF"},
        {0x80040201, L"IDispatch error #1"},
        {0x8004FFFF, L"IDispatch error #65023"},
        {0x80050000, L"Unknown error 0x80050000"},
        {0, L"Unknown error 0x0"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(details::unknownComErrorMessage(static_cast<std::int32_t>(row.result)), row.message) << row.result;
}

} // namespace
} // namespace vx
