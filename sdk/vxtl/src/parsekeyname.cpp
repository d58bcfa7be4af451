#include "parsekeyname.h"

#include "vxtl/exception.h"

#include <string_view>

namespace vx::registry::details {

namespace {

struct Root {
    std::wstring_view name;
    std::uint32_t handle;
};

constexpr Root roots[] = {
    {L"HKEY_LOCAL_MACHINE", 0x80000002},
    {L"HKEY_CLASSES_ROOT", 0x80000000},
    {L"HKEY_CURRENT_USER", 0x80000001},
    {L"HKEY_USERS", 0x80000003},
    {L"HKEY_PERFORMANCE_DATA", 0x80000004},
    {L"HKEY_PERFORMANCE_TEXT", 0x80000050},
    {L"HKEY_PERFORMANCE_NLSTEXT", 0x80000060},
    {L"HKEY_CURRENT_CONFIG", 0x80000005},
    {L"HKEY_DYN_DATA", 0x80000006},
    {L"HKEY_CURRENT_USER_LOCAL_SETTINGS", 0x80000007},
};

} // namespace

KeyName parseKeyName(const std::wstring& fullName)
{
    const auto separator = fullName.find(L'\\');
    const auto rootName = std::wstring_view(fullName).substr(0, separator);
    for (const Root& root : roots)
        if (root.name == rootName)
            return {root.handle, separator == std::wstring::npos ? L"" : fullName.substr(separator + 1)};
    VX_THROW(BaseException, L"Root registry prefix is not found in the full registry key name.");
}

} // namespace vx::registry::details
