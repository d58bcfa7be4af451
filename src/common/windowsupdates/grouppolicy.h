#pragma once

#include "common/windowsupdates/igrouppolicy.h"

#include <memory>

namespace vx::tarn::common {

class IGroupPolicyDriver;
class IPolicyObject;

/// Opens the local machine's policy object in place of what `object` holds. A failure is logged: false, and `object`
/// is not to be used.
bool getPolicyObject(IGroupPolicyDriver& driver, std::unique_ptr<IPolicyObject>& object);

/// Opens the policy object anew for each call.
class GroupPolicy : public IGroupPolicy {
public:
    explicit GroupPolicy(std::shared_ptr<IGroupPolicyDriver> driver);

    std::int32_t save(
        PolicySection section, PolicyChange change, const utils::Guid& extension, const utils::Guid& snapIn) override;

private:
    std::shared_ptr<IGroupPolicyDriver> m_driver;
};

} // namespace vx::tarn::common
