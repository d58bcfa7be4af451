#pragma once

#include "common/systemrestorepoint/isystemrestorepoint.h"
#include "common/systemrestorepoint/systemrestoredriver.h"

#include <memory>

namespace vx::tarn::common {

/// A restore point for an installation; keeps what the system answered.
class SystemRestorePoint : public ISystemRestorePoint {
public:
    explicit SystemRestorePoint(std::unique_ptr<ISystemRestoreDriver> driver);

    void create(const std::wstring& description) override;
    void finalize() override;
    bool isCreated() override { return m_created; }
    unsigned long getStatus() override { return m_status.status; }

private:
    std::unique_ptr<ISystemRestoreDriver> m_driver;
    RestorePointInfo m_info;
    RestorePointStatus m_status;
    bool m_created = false;
};

} // namespace vx::tarn::common
