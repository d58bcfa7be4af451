#pragma once

#include <windows.h>

#include <taskschd.h>

namespace vx::com {

// A virtual destructor would take slots of an interface's table.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wnon-virtual-dtor"

/// A trigger of TASK_TRIGGER_WEEKLY. Bit 0 of the days of week is Sunday.
struct IWeeklyTrigger : ITrigger {
    virtual HRESULT STDMETHODCALLTYPE get_DaysOfWeek(short* days) = 0;
    virtual HRESULT STDMETHODCALLTYPE put_DaysOfWeek(short days) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_WeeksInterval(short* weeks) = 0;
    virtual HRESULT STDMETHODCALLTYPE put_WeeksInterval(short weeks) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_RandomDelay(BSTR* randomDelay) = 0;
    virtual HRESULT STDMETHODCALLTYPE put_RandomDelay(BSTR randomDelay) = 0;
};

#pragma GCC diagnostic pop

} // namespace vx::com

__CRT_UUID_DECL(vx::com::IWeeklyTrigger, 0x5038fc98, 0x82ff, 0x436d, 0x87, 0x28, 0xa5, 0x12, 0xa5, 0x7c, 0x9d, 0xc1)
