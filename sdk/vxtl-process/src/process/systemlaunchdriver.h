#pragma once

#include "vxtl-process/process/launchdriver.h"

namespace vx::process {

/// Windows itself.
class SystemLaunchDriver : public LaunchDriver {
public:
    LaunchedProcess create(const LaunchRequest& request) override;
    LaunchedProcess createAsUser(void* token, const LaunchRequest& request) override;
    LaunchedProcess createWithLogon(const Credentials& credentials, const LaunchRequest& request) override;
    SharedHandle logon(const Credentials& credentials) override;
    SharedHandle duplicatePrimary(void* token) override;
    std::shared_ptr<void> createEnvironment(void* token) override;
    bool hasEffectiveAdminRights(void* token) override;
    std::shared_ptr<users::UserAccountProperties> accountProperties(const users::UserAccount& account) override;
    std::shared_ptr<priveleges::IPrivelegesHolder> privelegesHolder(const std::wstring& qualifiedName) override;
};

} // namespace vx::process
