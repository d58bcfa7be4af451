#pragma once

#include "delay-load/bootstrap.h"
#include "delay-load/callingconvention.h"
#include "meridia-settings/qrlmeridiaerror.h"

#include <cstdint>

namespace vx::meridia {

/// A store handle of the client library; 0 is none.
using QrlMeridiaHandle = std::uint32_t;
using QrlMeridiaNotification = void VX_CDECL(
    const wchar_t* settingName, std::int32_t type, const void* value, void* userData);

/// The functions of the store's client library, QrlMeridia_ and the member's name with a capital. Texts end with a
/// zero. Functions with an error argument write it only when they fail, so it goes in as Success. Texts that they
/// return are the library's, to be given back with freeString. Any thread.
struct QrlMeridiaApi {
    using Handle = QrlMeridiaHandle;
    using Error = QrlMeridiaError_enum;

    Handle(VX_CDECL* openHandle)(const wchar_t* profile, const wchar_t* sid, const wchar_t* client, Error* error);
    void(VX_CDECL* closeHandle)(Handle handle);
    std::uint8_t(VX_CDECL* getBool)(Handle handle, const wchar_t* name, std::int32_t defaultValue, Error* error);
    std::int32_t(VX_CDECL* getInt32)(Handle handle, const wchar_t* name, std::int32_t defaultValue, Error* error);
    std::int64_t(VX_CDECL* getInt64)(Handle handle, const wchar_t* name, std::int64_t defaultValue, Error* error);
    wchar_t*(VX_CDECL* getString)(Handle handle, const wchar_t* name, const wchar_t* defaultValue, Error* error);
    char*(VX_CDECL* getObjectAsStringUtf8)(Handle handle, const wchar_t* name, Error* error);
    void(VX_CDECL* freeString)(void* text);
    Error(VX_CDECL* setBool)(Handle handle, const wchar_t* name, std::int32_t value);
    Error(VX_CDECL* setInt32)(Handle handle, const wchar_t* name, std::int32_t value);
    Error(VX_CDECL* setInt64)(Handle handle, const wchar_t* name, std::int64_t value);
    Error(VX_CDECL* setString)(Handle handle, const wchar_t* name, const wchar_t* text);
    Error(VX_CDECL* setObjectFromStringUtf8)(Handle handle, const wchar_t* name, const char* text);
    Error(VX_CDECL* subscribe)(
        Handle handle, const wchar_t* name, QrlMeridiaNotification* notification, void* userData);
    Error(VX_CDECL* unsubscribe)(
        Handle handle, const wchar_t* name, QrlMeridiaNotification* notification, void* userData);
};

/// Initialises the client library and fills the table from it.
void bindQrlMeridiaApi(delayload::LateBinder& binder, QrlMeridiaApi& api);

/// Bootstraps the client library into the table; a failure is logged.
delayload::LoadStatus loadQrlMeridiaApi(QrlMeridiaApi& api);

} // namespace vx::meridia
