#pragma once

#include "vxtl-process/process/credentials.h"
#include "vxtl/handle.h"

#include <memory>
#include <optional>
#include <string>

namespace vx::users {
class UserAccount;
class UserAccountProperties;
} // namespace vx::users
namespace vx::priveleges {
class IPrivelegesHolder;
}

namespace vx::process {

/// The child's ends of the standard streams; INVALID_HANDLE_VALUE for one that isn't redirected.
struct StandardHandles {
    void* input;
    void* output;
    void* error;
};

/// What a child is started with.
struct LaunchRequest {
    std::wstring application; ///< empty: the first word of the command line
    std::wstring commandLine;
    std::wstring workingDirectory; ///< empty: the caller's
    unsigned long flags = 0;       ///< the system's creation flags
    std::wstring desktop;          ///< empty: the caller's
    std::optional<unsigned short> showWindow;
    std::optional<StandardHandles> standardHandles; ///< borrowed
    void* environment = nullptr;                    ///< borrowed; null: the caller's
};

/// A child that runs; the handles are the caller's.
struct LaunchedProcess {
    SharedHandle process;
    SharedHandle thread;
};

/// What a launch needs of the system. Tokens given are borrowed, tokens handed out are owned by the caller.
/// Each operation is one system call and throws Win32Exception with that call's reason.
class LaunchDriver {
public:
    virtual ~LaunchDriver() = default;

    /// As the caller does; handles are inherited.
    virtual LaunchedProcess create(const LaunchRequest& request) = 0;
    /// Under a primary token; handles are inherited.
    virtual LaunchedProcess createAsUser(void* token, const LaunchRequest& request) = 0;
    /// By the system's logon service, with the user's profile; no handles are inherited.
    virtual LaunchedProcess createWithLogon(const Credentials& credentials, const LaunchRequest& request) = 0;

    /// A network logon.
    virtual SharedHandle logon(const Credentials& credentials) = 0;
    virtual SharedHandle duplicatePrimary(void* token) = 0;
    /// The user's environment on top of the caller's, as UTF-16 text.
    virtual std::shared_ptr<void> createEnvironment(void* token) = 0;
    virtual bool hasEffectiveAdminRights(void* token) = 0;

    virtual std::shared_ptr<users::UserAccountProperties> accountProperties(const users::UserAccount& account) = 0;
    virtual std::shared_ptr<priveleges::IPrivelegesHolder> privelegesHolder(const std::wstring& qualifiedName) = 0;
};

/// The real one; any thread.
LaunchDriver& systemLaunchDriver();

} // namespace vx::process
