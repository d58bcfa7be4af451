#pragma once

#include <cstdint>

namespace vx::flyers {

struct FlyerDefinition;

/// Shows flyers to the user.
class FlyerApiImpl {
public:
    /// Returns when the flyer was handed over. `argument` goes to the flyer library as it is, which gives it its
    /// meaning.
    virtual void showFlyer(const FlyerDefinition& definition, std::uintptr_t argument) = 0;
    virtual ~FlyerApiImpl() = default;
};

} // namespace vx::flyers
