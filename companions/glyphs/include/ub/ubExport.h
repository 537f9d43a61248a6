// UB_API marks the public symbols of the glyphs shared library.
// Define UB_BUILDING only while compiling glyphs itself; a static build of glyphs
// defines UB_STATIC for its users (the build does it); otherwise users define nothing.
// Predefining UB_API, or using an unsupported compiler, is a build error.
#ifndef UB_EXPORT_H
#define UB_EXPORT_H

#if defined(UB_API)
#error "UB_API must come from ub/ubExport.h only"
#endif

#if defined(UB_STATIC)
#define UB_API
#elif defined(_WIN32)
#if defined(UB_BUILDING)
#define UB_API __declspec(dllexport)
#else
#define UB_API __declspec(dllimport)
#endif
#elif defined(__GNUC__)
// Same attribute both ways: the library is built with hidden visibility.
#define UB_API __attribute__((visibility("default")))
#else
#error "ub/ubExport.h: unsupported compiler"
#endif

#endif // UB_EXPORT_H
