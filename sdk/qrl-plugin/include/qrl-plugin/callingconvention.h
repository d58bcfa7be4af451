#pragma once

/// The calling conventions of the host, each in one place: a host that differs is a change of one line here.
/// Functions with a decorated name and all callbacks of the host records are QRL_STDCALL, functions with a
/// plain name are QRL_CDECL. Elsewhere than on Windows there is one convention only.
#ifdef _WIN32
#define QRL_STDCALL __attribute__((stdcall))
#define QRL_CDECL __attribute__((cdecl))
#else
#define QRL_STDCALL
#define QRL_CDECL
#endif
