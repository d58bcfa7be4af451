#include "vxtl/comexception.h"
#include "support/thrown.h"
#include "vxtl/comutils.h"

#include <windows.h>

#include <objbase.h>

#include <thread>

using namespace vx;

TEST(ComException, reportsMessageAndResult)
{
    EXPECT_STREQ(ComException(E_ACCESSDENIED, L"reason", L"function", L"file", 7).wideWhat(),
        L"Type: vx::ComException, Reason: reason, Function: function, File: file, Line: 7, COM Error: Access denied., "
        L"HRESULT: -2147024891, COM Source: ");
}

TEST(ComApartment, isMultithreadedAndRefusesAThreadOfAnother)
{
    std::thread([] {
        ASSERT_EQ(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED), S_OK);
        const auto failure = support::thrown<ComException>([] { comutils::ComApartment(); });
        EXPECT_EQ(failure.result(), RPC_E_CHANGED_MODE);
        EXPECT_EQ(failure.reason(), L"CoInitializeEx failed");
        CoUninitialize();
    }).join();
}
