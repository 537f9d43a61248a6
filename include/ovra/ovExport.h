/// @file
/// Export control for libovra and the few type choices its headers share.
///
/// `OV_API` marks what the library exports; everything else is hidden. The
/// library's own build defines `OVRA_BUILDING`; a static build of libovra
/// defines `OVRA_STATIC` for its users (CMake and ovra.pc pass it on), and
/// users define nothing else. Predefining `OV_API`, or a compiler that is
/// neither GCC-compatible nor Windows', is a build error.
///
/// This header is plain C as well as C++: the procedural headers that include
/// it are compiled by C callers.
#ifndef OVRA_EXPORT_H
#define OVRA_EXPORT_H

#if defined(OV_API)
#error "OV_API must come from ovra/ovExport.h only"
#endif

#if defined(OVRA_STATIC)
/// Marks an exported class, function or variable of libovra.
#define OV_API
#elif defined(_WIN32)
#if defined(OVRA_BUILDING)
#define OV_API __declspec(dllexport)
#else
#define OV_API __declspec(dllimport)
#endif
#elif defined(__GNUC__)
/// Same attribute both ways: the library is built with hidden visibility.
#define OV_API __attribute__((visibility("default")))
#else
#error "ovra/ovExport.h: unsupported compiler"
#endif

/// One UTF-16 code unit. Windows' `wchar_t` already is one; where `wchar_t`
/// is 32-bit (POSIX) the UTF-16 forms use `char16_t` in C++ (`uint16_t` in C,
/// the same size and representation) and `wchar_t` text is UTF-32.
#if defined(_WIN32)
#include <stddef.h>
typedef wchar_t ovChar16;
#elif defined(__cplusplus)
typedef char16_t ovChar16;
#else
#include <stdint.h>
typedef uint16_t ovChar16;
#endif

#endif /* OVRA_EXPORT_H */
