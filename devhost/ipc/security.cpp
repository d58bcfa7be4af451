#include "ipc/security.h"

#include "vxtl/handle.h"
#include "vxtl/win32exception.h"

#include <vector>

#include <windows.h>

#include <sddl.h>

namespace devhost::ipc {

namespace {

std::wstring ownSid()
{
    void* token = nullptr;
    if (!OpenProcessToken(GetCurrentProcess(), TOKEN_QUERY, &token))
        VX_THROW_WIN32(GetLastError());
    const vx::KernelHandle owned(token);
    DWORD size = 0;
    GetTokenInformation(token, TokenUser, nullptr, 0, &size);
    std::vector<unsigned char> buffer(size);
    wchar_t* text = nullptr;
    if (!GetTokenInformation(token, TokenUser, buffer.data(), size, &size) ||
        !ConvertSidToStringSidW(reinterpret_cast<TOKEN_USER*>(buffer.data())->User.Sid, &text))
        VX_THROW_WIN32(GetLastError());
    const std::unique_ptr<wchar_t, decltype(&LocalFree)> owner(text, LocalFree);
    return text;
}

} // namespace

std::shared_ptr<void> ownDescriptor()
{
    const std::wstring sddl = L"D:P(A;;GA;;;BA)(A;;GA;;;" + ownSid() + L")";
    void* descriptor = nullptr;
    if (!ConvertStringSecurityDescriptorToSecurityDescriptorW(sddl.c_str(), SDDL_REVISION_1, &descriptor, nullptr))
        VX_THROW_WIN32(GetLastError());
    return {descriptor, LocalFree};
}

} // namespace devhost::ipc
