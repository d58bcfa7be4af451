#pragma once

#include <string>

namespace vx::priveleges {

/// Grants rights for as long as it lives.
class IPrivilegesGrantScope {
public:
    /// False when the right could not be granted.
    virtual bool grant(const std::wstring& name) = 0;
    virtual ~IPrivilegesGrantScope() = default;
};

} // namespace vx::priveleges
