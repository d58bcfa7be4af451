#pragma once

#include <string>

namespace vx::tarn::common {

/// A restore point around a change of the system. One thread.
class ISystemRestorePoint {
public:
    virtual ~ISystemRestorePoint() = default;
    /// Begins the change; isCreated tells whether the system took it. At most 255 characters of the
    /// description are used. Throws Win32Exception or BaseException when the system has no restore points.
    virtual void create(const std::wstring& description) = 0;
    /// Ends the change that create began; does nothing when it began none.
    virtual void finalize() = 0;
    virtual bool isCreated() = 0;
    /// The status that the system gave last; 0 before and after success.
    virtual unsigned long getStatus() = 0;
};

} // namespace vx::tarn::common
