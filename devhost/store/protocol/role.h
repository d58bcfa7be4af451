#pragma once

namespace devhost::store {

/// Who a connection is made for: programs that use the store through the client library, which fault
/// plans apply to, or tools that inspect and drive it, which always get through.
enum class Role { Application, Tool };

} // namespace devhost::store
