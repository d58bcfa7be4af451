#include "common/exitstatus.h"

#include <gtest/gtest.h>

using namespace vx::tarn::common;

TEST(ExitStatusTest, equalityIsThatOfTheCodes)
{
    EXPECT_EQ(exitstatus::rebootNeeded, ExitStatus(22, L"another text"));
    EXPECT_FALSE(ExitStatus(10, L"") == exitstatus::resourceAlreadyExists);
}

TEST(ExitStatusTest, oddTextsStand)
{
    EXPECT_EQ(L"Internal error; Resource not ready for download. Try later", exitstatus::resourceNotReady.message());
    EXPECT_EQ(
        L"Packager error; Failed get download information.", exitstatus::failedToGetDownloadInformation.message());
}
