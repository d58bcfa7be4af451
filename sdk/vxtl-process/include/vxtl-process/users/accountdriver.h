#pragma once

#include <memory>
#include <string>

namespace vx::users {

/// The account database's answer: a status, 0 for success, and data that frees itself.
struct AccountAnswer {
    unsigned long status = 0;
    std::shared_ptr<const void> data;
};

/// The system's account database. Calls may block on the network. Nothing throws but for lack of memory or of the
/// system's own library.
class AccountDriver {
public:
    virtual ~AccountDriver() = default;
    /// Empty when the system doesn't tell.
    virtual std::wstring computerName() = 0;
    /// The data is the name of the domain's controller as wide text.
    virtual AccountAnswer domainController(const std::wstring& domain) = 0;
    /// The data is the system's USER_INFO record of the level. A null server means this computer.
    virtual AccountAnswer userInfo(const wchar_t* server, const std::wstring& user, unsigned long level) = 0;
};

/// The real one; any thread.
AccountDriver& systemAccountDriver();

} // namespace vx::users
