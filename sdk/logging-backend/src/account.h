#pragma once

#include <string>

/// Questions about who runs this process. A failed system call answers no.
namespace VxQrlLogging::account {

/// Of the current thread's token.
bool isAdministrator();
bool hasLowIntegrity();
/// The process user's SID as text; empty on failure.
std::wstring userSid();

} // namespace VxQrlLogging::account
