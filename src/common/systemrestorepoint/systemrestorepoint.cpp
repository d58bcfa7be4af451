#include "common/systemrestorepoint/systemrestorepoint.h"

#include "logging/logstream.h"

#include <utility>

namespace vx::tarn::common {

namespace {

constexpr std::size_t longestDescription = 255;

} // namespace

SystemRestorePoint::SystemRestorePoint(std::unique_ptr<ISystemRestoreDriver> driver) : m_driver(std::move(driver)) {}

void SystemRestorePoint::create(const std::wstring& description)
{
    VX_LOG_SCOPE();
    VX_LOG_VALUES(description);
    m_created = false;
    m_driver->load();
    m_info = {RestorePointInfo::beginSystemChange, RestorePointInfo::applicationInstall, 0,
        description.substr(0, longestDescription)};
    m_created = m_driver->setRestorePoint(m_info, m_status);
    logging::LogStream(logging::Level::Info)
        << "Restore point (" << description << ") creation status : " << m_status.status;
}

void SystemRestorePoint::finalize()
{
    VX_LOG_SCOPE();
    if (!m_created)
        return;
    m_info.eventType = RestorePointInfo::endSystemChange;
    m_info.sequenceNumber = m_status.sequenceNumber;
    m_driver->setRestorePoint(m_info, m_status);
    logging::LogStream(logging::Level::Info)
        << "Restore point (" << m_info.description << ") finalization status: " << m_status.status;
}

} // namespace vx::tarn::common
