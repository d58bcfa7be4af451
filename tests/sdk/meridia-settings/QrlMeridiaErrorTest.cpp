#include "meridia-settings/qrlmeridiaapi.h"

#include <gtest/gtest.h>

using namespace vx;
using meridia::QrlMeridiaError_enum;

TEST(QrlMeridiaErrorTest, numbersOutsideTheTableAreUnknown)
{
    for (const int code : {-1, 4, 6, 7, 8, 9, 15, 16, 17, 18, 19, 21, 1000})
        EXPECT_STREQ(L"Unknown error code", meridia::errorText(static_cast<QrlMeridiaError_enum>(code))) << code;
    for (const int code : {0, 1, 2, 3, 5, 10, 11, 12, 13, 14, 20})
        EXPECT_STRNE(L"Unknown error code", meridia::errorText(static_cast<QrlMeridiaError_enum>(code))) << code;
}

TEST(QrlMeridiaErrorTest, reportEndsWithTheCode)
{
    const QrlMeridiaException exception(static_cast<QrlMeridiaError_enum>(20), std::wstring(), L"f", L"g", 3);
    EXPECT_STREQ(L"Type: QrlMeridiaException, Reason: UAC was cancelled by the user, Function: f, File: g, Line: 3, "
                 L"Error Code : 20",
        exception.wideWhat());
}

TEST(QrlMeridiaApiTest, libraryThatLacksAFunctionIsNamedWithIt)
{
    struct Loader : delayload::ILoader {
        delayload::Module load(const std::wstring&) override { return this; }
        void* findFunction(delayload::Module, const char* name) override
        {
            const std::string wanted = name;
            static void (*const nothing)() = [] {};
            const bool isThere = wanted.starts_with("QrlMeridia_") && wanted != "QrlMeridia_Unsubscribe";
            return isThere ? reinterpret_cast<void*>(nothing) : nullptr;
        }
        std::wstring executablePath() override { return L"C:\\host.exe"; }
        std::wstring systemDirectory() override { return {}; }
        std::optional<std::wstring> readRegistryText(const std::wstring&, const std::wstring&) override { return {}; }
    };
    delayload::Bootstrap bootstrap(std::make_shared<Loader>());
    meridia::QrlMeridiaApi api{};
    delayload::LoadResult result;
    bootstrap.initialize(
        {}, [&](delayload::LateBinder& binder) { bindQrlMeridiaApi(binder, api); }, result);
    EXPECT_EQ(delayload::LoadStatus::FunctionNotFound, result.status);
    EXPECT_EQ("vx_qrl_meridia_32.dll", result.libraryName());
    EXPECT_EQ("QrlMeridia_Unsubscribe", result.functionName());
    EXPECT_NE(nullptr, api.subscribe);
}
