#pragma once

namespace vx::users {
class UserAccount;
}

namespace vx::process {

class LaunchDriver;

/// Logs what stands against a launch under the account. Advisory: never throws std::exception, since the
/// launch itself fails when the account can't be used.
void checkAccount(const users::UserAccount& account, LaunchDriver& driver);

} // namespace vx::process
