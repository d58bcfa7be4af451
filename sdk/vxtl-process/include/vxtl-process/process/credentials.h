#pragma once

#include <string>

namespace vx::process {

/// Whom a child runs as. An empty user means: as the caller. The password is never to be logged.
struct Credentials {
    std::wstring domain;
    std::wstring user;
    std::wstring password;
};

} // namespace vx::process
