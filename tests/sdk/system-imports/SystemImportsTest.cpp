#include "support/thrown.h"
#include "vxtl/win32exception.h"

#include <windows.h>

using support::thrown;
using vx::Win32Exception;

extern "C" {
__declspec(dllimport) int WINAPI nowhere(int, int);
__declspec(dllimport) int WINAPI nosuchfunction(int, int);
}

TEST(SystemImports, whatIsMissingFailsEachCallWithAnExceptionThatNamesIt)
{
    for (int call = 0; call < 2; ++call) {
        const auto library = thrown<Win32Exception>([] { nowhere(1, 2); });
        EXPECT_EQ(library.code(), static_cast<unsigned long>(ERROR_MOD_NOT_FOUND));
        EXPECT_EQ(library.reason(), L"Can't import nowhere from nosuchlibrary.dll");
        const auto function = thrown<Win32Exception>([] { nosuchfunction(1, 2); });
        EXPECT_EQ(function.code(), static_cast<unsigned long>(ERROR_PROC_NOT_FOUND));
        EXPECT_EQ(function.reason(), L"Can't import nosuchfunction from version.dll");
    }
}
