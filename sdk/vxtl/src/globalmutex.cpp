#include "vxtl/globalmutex.h"

#include "vxtl/str.h"
#include "vxtl/win32exception.h"

#include <windows.h>

#include <memory>

namespace vx::sync {

namespace {

struct LocalFreeDeleter {
    void operator()(void* memory) const noexcept { LocalFree(memory); }
};
struct SidDeleter {
    void operator()(void* sid) const noexcept { FreeSid(sid); }
};
using Acl = std::unique_ptr<ACL, LocalFreeDeleter>;
using Sid = std::unique_ptr<void, SidDeleter>;

Sid makeEveryone()
{
    SID_IDENTIFIER_AUTHORITY world = {SECURITY_WORLD_SID_AUTHORITY};
    void* everyone = nullptr;
    if (!AllocateAndInitializeSid(&world, 1, SECURITY_WORLD_RID, 0, 0, 0, 0, 0, 0, 0, &everyone))
        VX_THROW_WIN32(GetLastError(), L"AllocateAndInitializeSid failed");
    Sid sid(everyone);
    if (!IsValidSid(everyone))
        VX_THROW_WIN32(GetLastError(), L"IsValidSid failed");
    return sid;
}

Acl makeAcl(PSID everyone)
{
    const DWORD size = 32 + 2 * GetLengthSid(everyone);
    Acl acl(static_cast<PACL>(LocalAlloc(LPTR, size)));
    if (!acl)
        VX_THROW_WIN32(GetLastError(), L"LocalAlloc failed");
    if (!InitializeAcl(acl.get(), size, ACL_REVISION))
        VX_THROW_WIN32(GetLastError(), L"InitializeAcl failed");
    // The system takes the first entry that fits, so the deny has to stand first.
    if (!AddAccessDeniedAce(acl.get(), ACL_REVISION, WRITE_DAC | WRITE_OWNER, everyone))
        VX_THROW_WIN32(GetLastError(), L"AddAccessDeniedAce failed");
    if (!AddAccessAllowedAce(acl.get(), ACL_REVISION, GENERIC_ALL, everyone))
        VX_THROW_WIN32(GetLastError(), L"AddAccessAllowedAce failed");
    return acl;
}

class AccessibleDescriptor {
public:
    AccessibleDescriptor() : m_acl(makeAcl(makeEveryone().get()))
    {
        if (!InitializeSecurityDescriptor(&m_descriptor, SECURITY_DESCRIPTOR_REVISION))
            VX_THROW_WIN32(GetLastError(), L"InitializeSecurityDescriptor failed");
        if (!SetSecurityDescriptorDacl(&m_descriptor, TRUE, m_acl.get(), FALSE))
            VX_THROW_WIN32(GetLastError(), L"SetSecurityDescriptorDacl failed");
        logging::LogStream(logging::Level::Debug) << "Used global security descriptior: " << get();
    }

    void* get() noexcept { return &m_descriptor; }

private:
    Acl m_acl;
    SECURITY_DESCRIPTOR m_descriptor;
};

} // namespace

void* accessibleSecurityDescriptor()
{
    static AccessibleDescriptor descriptor;
    return descriptor.get();
}

SharedHandle createAccessibleMutex(const std::wstring& name, bool openExisting)
{
    SECURITY_ATTRIBUTES attributes = {sizeof(attributes), accessibleSecurityDescriptor(), FALSE};
    void* handle = CreateMutexW(&attributes, FALSE, name.c_str());
    const DWORD error = GetLastError();
    const SharedHandle created = std::make_shared<KernelHandle>(handle);
    logging::LogStream(logging::Level::Info) << "CreateMutex faile. LastError = " << error << ", hanlde = " << handle;
    if (!openExisting) {
        if (!created->isValid())
            VX_THROW_WIN32(error, L"CreateMutex failed and openExisting is false");
        if (error == ERROR_ALREADY_EXISTS)
            VX_THROW_WIN32(error, L"CreateMutex succeeded but mutex already exists and openExisting is false");
        return created;
    }
    if (created->isValid())
        return created;
    // Creating asks for rights that the descriptor denies; waiting needs none of them.
    handle = OpenMutexW(SYNCHRONIZE, FALSE, name.c_str());
    const DWORD openError = GetLastError();
    const SharedHandle opened = std::make_shared<KernelHandle>(handle);
    logging::LogStream(logging::Level::Info) << "OpenMutex handle = " << handle;
    if (!opened->isValid())
        VX_THROW_WIN32(openError, L"OpenMutex failed");
    return opened;
}

GlobalMutex::GlobalMutex(const std::wstring& name, bool openExisting, std::shared_ptr<const IWaitable> stopEvent)
    : m_name(name), m_stopEvent(std::move(stopEvent))
{
    VX_LOG_SCOPE();
    VX_LOG_VALUES(name, openExisting);
    m_handle = createAccessibleMutex(name, openExisting);
}

PreviousOwner GlobalMutex::lock()
{
    // The mutex comes first: one that is free is taken even during a stop.
    void* const handles[] = {getHandle(), m_stopEvent ? m_stopEvent->getHandle() : nullptr};
    // For whoever reads the log it is a wait for the mutex.
    const details::Fired fired = details::waitForMultipleObjects(
        std::span(handles, m_stopEvent ? 2 : 1), L"vx::sync::details::waitForSingleObject");
    if (fired.index != 0)
        throw StoppedException("Stopped while waiting for the mutex " + str::toUtf8(m_name));
    return fired.isAbandoned ? PreviousOwner::Died : PreviousOwner::Released;
}

bool GlobalMutex::isStopped() const
{
    return m_stopEvent && waitForSingleObject(*m_stopEvent, 0);
}

bool GlobalMutex::tryLock(unsigned long timeoutMs)
{
    return waitForSingleObject(*this, timeoutMs);
}

void GlobalMutex::unlock() noexcept
{
    ReleaseMutex(getHandle());
}

} // namespace vx::sync
