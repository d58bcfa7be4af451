#pragma once

#include <windows.h>

#include <wuapi.h>

namespace vx::com {

// A virtual destructor would take slots of an interface's table.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wnon-virtual-dtor"

/// When updates were last looked for and installed with success: VT_DATE in UTC, VT_EMPTY for never.
struct IAutomaticUpdatesResults : IDispatch {
    virtual HRESULT STDMETHODCALLTYPE get_LastSearchSuccessDate(VARIANT* date) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_LastInstallationSuccessDate(VARIANT* date) = 0;
};

struct IAutomaticUpdates2 : IAutomaticUpdates {
    virtual HRESULT STDMETHODCALLTYPE get_Results(IAutomaticUpdatesResults** results) = 0;
};

#pragma GCC diagnostic pop

} // namespace vx::com

__CRT_UUID_DECL(
    vx::com::IAutomaticUpdatesResults, 0xe7a4d634, 0x7942, 0x4dd9, 0xa1, 0x11, 0x82, 0x22, 0x8b, 0xa3, 0x39, 0x01)
__CRT_UUID_DECL(vx::com::IAutomaticUpdates2, 0x4a2f5c31, 0xcfd9, 0x410e, 0xb7, 0xfb, 0x29, 0xa6, 0x53, 0x97, 0x3a, 0x0f)
