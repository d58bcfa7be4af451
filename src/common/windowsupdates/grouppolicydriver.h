#pragma once

#include "common/windowsupdates/igrouppolicy.h"

#include <memory>

namespace vx::tarn::common {

/// A group policy object of the system, which is given back at the end. Results are the system's, negative for a
/// failure.
class IPolicyObject {
public:
    virtual ~IPolicyObject() = default;
    /// This computer's policy, with its settings in the registry loaded.
    virtual std::int32_t openLocalMachine() = 0;
    /// Only after openLocalMachine.
    virtual std::int32_t save(
        PolicySection section, PolicyChange change, const utils::Guid& extension, const utils::Guid& snapIn) = 0;
};

/// Makes group policy objects.
class IGroupPolicyDriver {
public:
    virtual ~IGroupPolicyDriver() = default;
    /// Gives the system's result, negative for a failure. `object` is empty after a failure and never after a success.
    virtual std::int32_t create(std::unique_ptr<IPolicyObject>& object) = 0;
};

/// The system's objects. Throws Win32Exception on a computer without COM's libraries.
class GroupPolicyDriver : public IGroupPolicyDriver {
public:
    std::int32_t create(std::unique_ptr<IPolicyObject>& object) override;
};

} // namespace vx::tarn::common
