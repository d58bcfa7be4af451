#pragma once

#include "common/utils/guid.h"

#include <cstdint>

namespace vx::tarn::common {

/// The half of a policy object that a change is in.
enum class PolicySection { User, Machine };

/// Whether the extension has settings in the policy object from now on, or has none any more.
enum class PolicyChange { Remove, Add };

/// The extension that carries policies in the registry.
inline constexpr utils::Guid registryExtension{
    0x35378EAC, 0x683F, 0x11D2, {0xA8, 0x9A, 0x00, 0xC0, 0x4F, 0xBB, 0xCF, 0xA2}};
/// The snap-in that changes are made as. Not the editor's own class, which headers of the system give the same name.
inline constexpr utils::Guid policySnapIn{0x0F6B957E, 0x509E, 0x11D1, {0xA7, 0xCC, 0x00, 0x00, 0xF8, 0x75, 0x71, 0xE3}};

/// The group policy of this computer. One thread at a time, which is in a single-threaded apartment: Windows has its
/// policy object there alone, and no way to it from the multithreaded one.
class IGroupPolicy {
public:
    virtual ~IGroupPolicy() = default;
    /// Commits what was written into the registry of the section. Gives the system's HRESULT, negative for a failure,
    /// which is in the log too.
    virtual std::int32_t save(
        PolicySection section, PolicyChange change, const utils::Guid& extension, const utils::Guid& snapIn) = 0;
};

} // namespace vx::tarn::common
