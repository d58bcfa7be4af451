#include "libraries/systemobjects/registration.h"

#include "libraries/systemobjects/answer.h"
#include "libraries/systemobjects/definitionparts.h"
#include "machine/taskpaths.h"
#include "vxtl/str.h"
#include "vxtl/wow64.h"

#include <filesystem>

namespace devhost::systemobjects {

namespace {

using machine::MachineState;

/// Nothing for a variant that holds no text.
std::optional<std::string> textOf(const VARIANT& variant)
{
    switch (V_VT(&variant)) {
    case VT_EMPTY:
    case VT_NULL: return std::string();
    case VT_BSTR: return toText(V_BSTR(&variant));
    default: return std::nullopt;
    }
}

/// Whether a directory stands where the scheduler would make the one of this folder.
bool isBlocked(const std::string& folder)
{
    wchar_t system[MAX_PATH];
    GetSystemDirectoryW(system, MAX_PATH);
    // The scheduler is no 32-bit program.
    const vx::wow64::DisabledFsRedirection redirection;
    std::error_code ignored;
    return std::filesystem::exists(std::wstring(system) + L"\\Tasks" + vx::str::fromUtf8(folder), ignored);
}

bool isValidName(const std::string& name)
{
    return !name.empty() && name.find_first_of("<>:\"/|?*") == name.npos;
}

HRESULT checkAccount(const Registration& registration)
{
    const auto user = textOf(registration.user), password = textOf(registration.password);
    if (!user || !password || !textOf(registration.securityDescriptor))
        return E_INVALIDARG;
    const bool needsBoth = registration.logonType == TASK_LOGON_PASSWORD;
    return needsBoth && (user->empty() || password->empty()) ? E_INVALIDARG : S_OK;
}

constexpr LONG knownFlags = TASK_VALIDATE_ONLY | TASK_CREATE_OR_UPDATE | TASK_DISABLE | TASK_DONT_ADD_PRINCIPAL_ACE |
                            TASK_IGNORE_REGISTRATION_TRIGGERS;

HRESULT checkPlace(MachineState& state, const Registration& registration)
{
    if (!isValidName(machine::nameOf(registration.path)))
        return HRESULT_FROM_WIN32(ERROR_INVALID_NAME);
    if (!hasFolder(state, machine::parentPath(registration.path)))
        return HRESULT_FROM_WIN32(ERROR_PATH_NOT_FOUND);
    const bool exists = findTask(state, registration.path) != nullptr;
    switch (registration.flags & TASK_CREATE_OR_UPDATE) {
    case TASK_CREATE: return exists ? HRESULT_FROM_WIN32(ERROR_ALREADY_EXISTS) : S_OK;
    case TASK_UPDATE: return exists ? S_OK : HRESULT_FROM_WIN32(ERROR_FILE_NOT_FOUND);
    case TASK_CREATE_OR_UPDATE: return S_OK;
    default: return registration.flags & TASK_VALIDATE_ONLY ? S_OK : E_INVALIDARG;
    }
}

HRESULT check(MachineState& state, const Registration& registration)
{
    if (registration.flags & ~knownFlags)
        return E_INVALIDARG;
    if (const auto account = checkAccount(registration); FAILED(account))
        return account;
    const auto place = checkPlace(state, registration);
    return FAILED(place) ? place : checkDefinition(registration.definition);
}

} // namespace

HRESULT addFolder(MachineState& state, const std::string& path, const VARIANT& sddl)
{
    const auto descriptor = textOf(sddl);
    if (!descriptor)
        return E_INVALIDARG;
    if (hasFolder(state, path))
        return HRESULT_FROM_WIN32(ERROR_ALREADY_EXISTS);
    std::vector<machine::TaskFolder> added;
    for (auto folder = path; !hasFolder(state, folder); folder = machine::parentPath(folder)) {
        if (isBlocked(folder))
            return HRESULT_FROM_WIN32(ERROR_ALREADY_EXISTS);
        added.push_back({folder, *descriptor});
    }
    state.folders.insert(state.folders.end(), added.rbegin(), added.rend());
    return S_OK;
}

HRESULT registerTask(MachineState& state, const Registration& registration)
{
    const auto result = check(state, registration);
    if (FAILED(result) || registration.flags & TASK_VALIDATE_ONLY)
        return result;
    auto* task = findTask(state, registration.path);
    if (!task) {
        task = &state.tasks.emplace_back();
        task->path = registration.path;
    }
    task->definition = registration.definition;
    if (registration.flags & TASK_DISABLE)
        task->definition["Settings"]["Enabled"] = false;
    task->user = *textOf(registration.user);
    task->logonType = registration.logonType;
    task->registrationFlags = registration.flags;
    task->securityDescriptor = *textOf(registration.securityDescriptor);
    return S_OK;
}

} // namespace devhost::systemobjects
