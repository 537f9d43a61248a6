// Export control for libovra and the few type choices its headers share.
//
// OV_API marks what the library exports; everything else is hidden. The
// library's own build defines OVRA_BUILDING; users define nothing.
#pragma once

#if defined(_WIN32)
#if defined(OVRA_BUILDING)
#define OV_API __declspec(dllexport)
#else
#define OV_API __declspec(dllimport)
#endif
#else
#define OV_API __attribute__((visibility("default")))
#endif

// One UTF-16 code unit. Windows' wchar_t already is one; where wchar_t is
// 32-bit (POSIX) the UTF-16 forms use char16_t instead and wchar_t text is
// UTF-32.
#if defined(_WIN32)
typedef wchar_t ovChar16;
#else
typedef char16_t ovChar16;
#endif
