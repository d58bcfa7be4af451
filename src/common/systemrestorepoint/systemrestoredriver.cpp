#include "common/systemrestorepoint/systemrestoredriver.h"

#include "vxtl/win32exception.h"

#include <windows.h>

#include <srrestoreptapi.h>

#include <algorithm>
#include <iterator>

namespace vx::tarn::common {

namespace {

using SetRestorePoint = BOOL WINAPI(RESTOREPOINTINFOW*, STATEMGRSTATUS*);

/// Server systems have the library and no system restore.
bool hasSystemRestore()
{
    OSVERSIONINFOEXW version = {};
    version.dwOSVersionInfoSize = sizeof(version);
    version.wProductType = VER_NT_WORKSTATION;
    return VerifyVersionInfoW(&version, VER_PRODUCT_TYPE, VerSetConditionMask(0, VER_PRODUCT_TYPE, VER_EQUAL)) ||
           GetLastError() != ERROR_OLD_WIN_VERSION;
}

} // namespace

SystemRestoreDriver::~SystemRestoreDriver()
{
    if (m_module)
        FreeLibrary(static_cast<HMODULE>(m_module));
}

void SystemRestoreDriver::load()
{
    if (m_setRestorePoint)
        return;
    if (!m_module)
        m_module = LoadLibraryW(L"srclient.dll");
    if (!m_module)
        VX_THROW_WIN32(GetLastError(), L"Can't load srclient.dll");
    if (!hasSystemRestore())
        VX_THROW(BaseException, L"Restore points are not supported by the OS");
    m_setRestorePoint = reinterpret_cast<void*>(GetProcAddress(static_cast<HMODULE>(m_module), "SRSetRestorePointW"));
    if (!m_setRestorePoint)
        VX_THROW_WIN32(GetLastError(), L"Failed to find SRSetRestorePointW");
}

bool SystemRestoreDriver::setRestorePoint(const RestorePointInfo& info, RestorePointStatus& status)
{
    RESTOREPOINTINFOW native = {};
    native.dwEventType = info.eventType;
    native.dwRestorePtType = info.restorePointType;
    native.llSequenceNumber = info.sequenceNumber;
    if (info.description.size() >= std::size(native.szDescription))
        VX_THROW(BaseException, L"Restore point description error");
    std::copy(info.description.begin(), info.description.end(), native.szDescription);
    STATEMGRSTATUS answer = {};
    const BOOL result = reinterpret_cast<SetRestorePoint*>(m_setRestorePoint)(&native, &answer);
    status = {answer.nStatus, answer.llSequenceNumber};
    return result == TRUE;
}

} // namespace vx::tarn::common
