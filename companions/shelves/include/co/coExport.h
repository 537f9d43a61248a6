// CO_API marks the public symbols of the shelves shared library.
// Define CO_BUILDING only while compiling shelves itself; a static build of shelves
// defines CO_STATIC for its users (the build does it); otherwise users define nothing.
// Predefining CO_API, or using an unsupported compiler, is a build error.
#ifndef CO_EXPORT_H
#define CO_EXPORT_H

#if defined(CO_API)
#error "CO_API must come from co/coExport.h only"
#endif

#if defined(CO_STATIC)
#define CO_API
#elif defined(_WIN32)
#if defined(CO_BUILDING)
#define CO_API __declspec(dllexport)
#else
#define CO_API __declspec(dllimport)
#endif
#elif defined(__GNUC__)
// Same attribute both ways: the library is built with hidden visibility.
#define CO_API __attribute__((visibility("default")))
#else
#error "co/coExport.h: unsupported compiler"
#endif

#endif // CO_EXPORT_H
