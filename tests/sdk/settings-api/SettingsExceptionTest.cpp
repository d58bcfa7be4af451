#include "settings-api/exceptions.h"

#include <gtest/gtest.h>

using namespace vx::settings;

TEST(SettingsExceptionTest, reportsTheSettingBetweenTypeAndReason)
{
    const NotFoundException exception(L"a.b", L"function", L"file.cpp", 7);
    EXPECT_STREQ(L"Type: vx::settings::NotFoundException, Setting: a.b, Reason: Setting in not found, "
                 L"Function: function, File: file.cpp, Line: 7",
        exception.wideWhat());
}

TEST(SettingsExceptionTest, missingNameReportsAsEmptyText)
{
    const wchar_t* none = nullptr;
    const SettingsException& exception = AccessDeniedException(none, L"f", L"g", 1);
    EXPECT_STREQ(L"Type: vx::settings::AccessDeniedException, Setting: , Reason: Access to the setting is denied, "
                 L"Function: f, File: g, Line: 1",
        exception.wideWhat());
}
