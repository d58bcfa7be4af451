#include "process/effectiveadminrights.h"

#include "process/launchfailure.h"

#include <windows.h>

#include <algorithm>
#include <memory>
#include <span>

namespace vx::process::detail {

namespace {

struct SidDeleter {
    void operator()(void* sid) const noexcept { FreeSid(sid); }
};
using OwnedSid = std::unique_ptr<void, SidDeleter>;

OwnedSid administratorsSid()
{
    SID_IDENTIFIER_AUTHORITY authority = {SECURITY_NT_AUTHORITY};
    PSID sid = nullptr;
    if (!AllocateAndInitializeSid(
            &authority, 2, SECURITY_BUILTIN_DOMAIN_RID, DOMAIN_ALIAS_RID_ADMINS, 0, 0, 0, 0, 0, 0, &sid))
        VX_THROW_LAUNCH(L"AllocateAndInitializeSid failed");
    return OwnedSid(sid);
}

} // namespace

bool hasEffectiveAdminRights(void* token)
{
    alignas(TOKEN_GROUPS) unsigned char buffer[4096];
    DWORD size = 0;
    if (!GetTokenInformation(token, TokenGroups, buffer, sizeof(buffer), &size))
        VX_THROW_LAUNCH(L"GetTokenInformation failed");
    const auto* list = reinterpret_cast<const TOKEN_GROUPS*>(buffer);
    const OwnedSid administrators = administratorsSid();
    // Attributes aren't looked at: the filtered token of an administrator carries the group as deny-only,
    // and its owner still counts as one.
    return std::ranges::any_of(std::span(list->Groups, list->GroupCount),
        [&](const SID_AND_ATTRIBUTES& group) { return EqualSid(group.Sid, administrators.get()) != FALSE; });
}

} // namespace vx::process::detail
