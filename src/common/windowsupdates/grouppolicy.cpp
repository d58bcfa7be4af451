#include "common/windowsupdates/grouppolicy.h"

#include "common/windowsupdates/grouppolicydriver.h"
#include "logging/logstream.h"

namespace vx::tarn::common {

using logging::Level;
using logging::LogStream;

namespace {

constexpr auto unspecifiedFailure = static_cast<std::int32_t>(0x80004005);

} // namespace

bool getPolicyObject(IGroupPolicyDriver& driver, std::unique_ptr<IPolicyObject>& object)
{
    // Before the new one is made: two open objects would each keep a view of the policy of its own.
    object.reset();
    if (const std::int32_t result = driver.create(object); result < 0) {
        LogStream(Level::Error) << "Can't create group policy updates instance. HRESULT = " << result;
        return false;
    }
    if (const std::int32_t result = object->openLocalMachine(); result < 0) {
        LogStream(Level::Error) << "Can't open local machine GPO. HRESULT = " << result;
        return false;
    }
    LogStream(Level::Debug) << "Local machine GPO has been opened.";
    return true;
}

GroupPolicy::GroupPolicy(std::shared_ptr<IGroupPolicyDriver> driver) : m_driver(std::move(driver)) {}

std::int32_t GroupPolicy::save(
    PolicySection section, PolicyChange change, const utils::Guid& extension, const utils::Guid& snapIn)
{
    VX_LOG_SCOPE();
    std::unique_ptr<IPolicyObject> object;
    if (!getPolicyObject(*m_driver, object)) {
        LogStream(Level::Error) << "Failed to get policy object.";
        return unspecifiedFailure;
    }
    const std::int32_t result = object->save(section, change, extension, snapIn);
    if (result < 0)
        LogStream(Level::Error) << "Failed to save the group policy. HRESULT = " << result;
    else
        LogStream(Level::Debug) << "The group policy saved successfully.";
    return result;
}

} // namespace vx::tarn::common
