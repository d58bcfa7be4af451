#pragma once

#include <cstdint>
#include <string>

namespace vx::tarn::common {

/// What the system is told about a change; the numbers are its own.
struct RestorePointInfo {
    static constexpr unsigned long beginSystemChange = 100;
    static constexpr unsigned long endSystemChange = 101;
    static constexpr unsigned long applicationInstall = 0;

    unsigned long eventType = 0;
    unsigned long restorePointType = applicationInstall;
    std::int64_t sequenceNumber = 0;
    std::wstring description; ///< at most 255 characters
};

/// What the system answers.
struct RestorePointStatus {
    unsigned long status = 0;
    std::int64_t sequenceNumber = 0;
};

/// The system's restore points. One thread.
class ISystemRestoreDriver {
public:
    virtual ~ISystemRestoreDriver() = default;
    /// Finds the system's function; a second call does nothing. Throws Win32Exception, and BaseException on
    /// a system without restore points.
    virtual void load() = 0;
    /// Only after load. False when the system refuses; `status` is filled in either case. Throws
    /// BaseException for a description that is too long.
    virtual bool setRestorePoint(const RestorePointInfo& info, RestorePointStatus& status) = 0;
};

/// The function out of the system's library, which is loaded as long as this lives.
class SystemRestoreDriver : public ISystemRestoreDriver {
public:
    SystemRestoreDriver() = default;
    ~SystemRestoreDriver() override;
    SystemRestoreDriver(const SystemRestoreDriver&) = delete;
    SystemRestoreDriver& operator=(const SystemRestoreDriver&) = delete;

    void load() override;
    bool setRestorePoint(const RestorePointInfo& info, RestorePointStatus& status) override;

private:
    void* m_module = nullptr;
    void* m_setRestorePoint = nullptr;
};

} // namespace vx::tarn::common
