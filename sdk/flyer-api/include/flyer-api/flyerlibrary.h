#pragma once

#include "delay-load/bootstrap.h"
#include "delay-load/callingconvention.h"
#include "flyer-api/vxflyererror.h"

#include <cstddef>
#include <cstdint>

namespace vx::flyers {

/// A flyer of the library that is being made.
using FlyerHandle = void*;

/// An action as the library takes it; the numbers of the types are the library's. The texts end with a zero and are
/// borrowed for the call.
struct ActionRecord {
    std::int32_t type;
    const char* firstArgument;  ///< null when unset
    const char* secondArgument; ///< null when unset
};
static_assert(offsetof(ActionRecord, firstArgument) == sizeof(void*));
static_assert(sizeof(ActionRecord) == 3 * sizeof(void*));

/// The functions of vx_flyer_api_32.dll, VxFlyer_ and the member's name with a capital. Texts end with a zero; they and
/// records are borrowed for the call. The library's own rules say on which threads, and for how long a call blocks.
struct FlyerLibrary {
    using Error = VxFlyerError_enum;

    /// Writes the handle when it succeeds; closeFlyer ends it. The first argument is always 0.
    Error(VX_CDECL* createFlyer)(
        std::uint32_t reserved, const wchar_t* heading, const wchar_t* message, std::int32_t type, FlyerHandle* flyer);
    Error(VX_CDECL* addDetails)(FlyerHandle flyer, const wchar_t* text);
    Error(VX_CDECL* addDropdownMenuItem)(
        FlyerHandle flyer, const wchar_t* text, const ActionRecord* actionOrNull, std::uint8_t selected);
    /// The last argument is always 0, in showFlyer too.
    Error(VX_CDECL* addButton)(
        FlyerHandle flyer, const wchar_t* text, const ActionRecord* actionOrNull, std::uint32_t reserved);
    Error(VX_CDECL* setAction)(FlyerHandle flyer, const ActionRecord* action);
    Error(VX_CDECL* showFlyer)(FlyerHandle flyer, std::uintptr_t argument, std::uint32_t reserved);
    void(VX_CDECL* closeFlyer)(FlyerHandle flyer);
};

/// Initialises the flyer library and fills the table from it.
void bindFlyerLibrary(delayload::LateBinder& binder, FlyerLibrary& library);

/// Bootstraps the flyer library into the table, which is complete on success only.
delayload::LoadResult loadFlyerLibrary(FlyerLibrary& library);

} // namespace vx::flyers
