#pragma once

#include "vxtl/handle.h"

#include <string>

// An instance is a set of processes that know each other by its name; the parts in it have names of their own.
namespace devhost::ipc {

/// The instance that the environment variable TARNHD_INSTANCE names; "default" without it.
std::wstring instanceFromEnvironment();
/// Lets the store's client library, in this process and its children, work with the instance.
void exportInstance(const std::wstring& instance);

std::wstring pipeName(const std::wstring& instance, const wchar_t* part);
/// For a system object that is no pipe.
std::wstring objectName(const std::wstring& instance, const wchar_t* part);

/// Makes this process the only one that plays the part, until the handle is closed; null when another process
/// does. Throws Win32Exception.
vx::SharedHandle lockPart(const std::wstring& instance, const wchar_t* part);

} // namespace devhost::ipc
