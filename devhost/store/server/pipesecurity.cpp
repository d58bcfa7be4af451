#include "store/server/pipesecurity.h"

#include "store/server/systemfailure.h"
#include "vxtl/handle.h"

#include <vector>

#include <windows.h>

#include <sddl.h>

namespace devhost::store {

namespace {

std::wstring ownUserSid()
{
    void* token = nullptr;
    if (!OpenProcessToken(GetCurrentProcess(), TOKEN_QUERY, &token))
        throwSystemFailure(GetLastError(), L"process token");
    const vx::KernelHandle owned(token);
    DWORD size = 0;
    GetTokenInformation(token, TokenUser, nullptr, 0, &size);
    std::vector<unsigned char> buffer(size);
    wchar_t* text = nullptr;
    if (!GetTokenInformation(token, TokenUser, buffer.data(), size, &size) ||
        !ConvertSidToStringSidW(reinterpret_cast<TOKEN_USER*>(buffer.data())->User.Sid, &text))
        throwSystemFailure(GetLastError(), L"process user");
    std::wstring sid = text;
    LocalFree(text);
    return sid;
}

} // namespace

struct PipeSecurity::Attributes : SECURITY_ATTRIBUTES {};

PipeSecurity::PipeSecurity() : m_attributes(std::make_unique<Attributes>())
{
    m_attributes->nLength = sizeof(SECURITY_ATTRIBUTES);
    const std::wstring sddl = L"D:P(A;;GA;;;BA)(A;;GA;;;" + ownUserSid() + L")";
    if (!ConvertStringSecurityDescriptorToSecurityDescriptorW(
            sddl.c_str(), SDDL_REVISION_1, &m_attributes->lpSecurityDescriptor, nullptr))
        throwSystemFailure(GetLastError(), L"access list of the pipe");
}

PipeSecurity::~PipeSecurity()
{
    LocalFree(m_attributes->lpSecurityDescriptor);
}

void* PipeSecurity::attributes() const noexcept
{
    return m_attributes.get();
}

} // namespace devhost::store
