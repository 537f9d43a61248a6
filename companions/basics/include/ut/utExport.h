// UT_API marks the public symbols of the basics shared library.
// Define UT_BUILDING only while compiling basics itself; a static build of basics
// defines UT_STATIC for its users (the build does it); otherwise users define nothing.
// Predefining UT_API, or using an unsupported compiler, is a build error.
#ifndef UT_EXPORT_H
#define UT_EXPORT_H

#if defined(UT_API)
#error "UT_API must come from ut/utExport.h only"
#endif

#if defined(UT_STATIC)
#define UT_API
#elif defined(_WIN32)
#if defined(UT_BUILDING)
#define UT_API __declspec(dllexport)
#else
#define UT_API __declspec(dllimport)
#endif
#elif defined(__GNUC__)
// Same attribute both ways: the library is built with hidden visibility.
#define UT_API __attribute__((visibility("default")))
#else
#error "ut/utExport.h: unsupported compiler"
#endif

#endif // UT_EXPORT_H
