#pragma once

#include "flyer-api/flyerapiimpl.h"
#include "flyer-api/flyerlibrary.h"

#include <functional>

namespace vx::flyers {

/// Flyers through the host's library. Keeps nothing between calls; any thread that the library takes calls from.
class VxFlyerApi : public FlyerApiImpl {
public:
    using LoadLibrary = std::function<delayload::LoadResult(FlyerLibrary& library)>;

    /// Finds the library and binds it. Throws BaseException with the missing library's name.
    explicit VxFlyerApi(const LoadLibrary& loadLibrary = loadFlyerLibrary);
    ~VxFlyerApi() override;
    VxFlyerApi(const VxFlyerApi&) = delete;
    VxFlyerApi& operator=(const VxFlyerApi&) = delete;

    /// Blocks as long as the library does. Throws std::bad_cast for a type, of the flyer or of an action, that is none
    /// of this program's, and VxFlyerException with the code of the call that failed. That call is made once more for
    /// the text of its error, and may do then what it did not at first: a flyer that only the second call makes is left
    /// to the library. A flyer made by the first call is closed on every way out.
    void showFlyer(const FlyerDefinition& definition, std::uintptr_t argument) override;

private:
    FlyerLibrary m_library{};
};

} // namespace vx::flyers
