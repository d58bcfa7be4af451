#pragma once

// The conventions of the host's four libraries, in one place: functions with a plain name and the store's
// notification function are VX_CDECL, functions with a decorated name ("_Name@8") and their callbacks VX_STDCALL.
// Outside 32-bit x86 there is but one convention.
#if defined(_M_IX86)
#define VX_CDECL __cdecl
#define VX_STDCALL __stdcall
#elif defined(__i386__)
#define VX_CDECL __attribute__((cdecl))
#define VX_STDCALL __attribute__((stdcall))
#else
#define VX_CDECL
#define VX_STDCALL
#endif
