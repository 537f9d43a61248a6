// UTF-8 forms of the Win32 registry, module and activation-context calls: each takes
// and gives UTF-8 where its W form takes UTF-16, and otherwise behaves as that form
// (same arguments, same result codes). Windows only; includes <windows.h>.
//
// Registry text: names and REG_SZ, REG_EXPAND_SZ and REG_MULTI_SZ data are UTF-8 on
// this side and UTF-16 in the registry; sizes are counted in UTF-8 bytes. Other data
// passes through as bytes. Malformed UTF-8 in a name or in string data is refused with
// ERROR_NO_UNICODE_TRANSLATION and nothing is changed. Where a name or data does not
// fit the caller's buffer the result is ERROR_MORE_DATA: enumerated names are then cut
// at a character boundary and terminated, queried data is not written.
#ifndef UB_WINDOWS_H
#define UB_WINDOWS_H

#if defined(_WIN32)

#include "ub/ubExport.h"

#include <windows.h>

UB_API LONG RegOpenKeyExU(HKEY root, const char* path, DWORD options, REGSAM access, HKEY* result);
UB_API LONG RegCreateKeyU(HKEY root, const char* path, HKEY* result);
UB_API LONG RegCreateKeyExU(HKEY root, const char* path, DWORD reserved, char* key_class,
                            DWORD options, REGSAM access, SECURITY_ATTRIBUTES* security,
                            HKEY* result, DWORD* disposition);
UB_API LONG RegDeleteKeyU(HKEY root, const char* path);
UB_API LONG RegDeleteValueU(HKEY key, const char* name);
// `size` is in and out: the buffer's bytes, then the data's (terminator included).
UB_API LONG RegQueryValueExU(HKEY key, const char* name, DWORD* reserved, DWORD* type, BYTE* data,
                             DWORD* size);
// `size` counts the UTF-8 bytes, terminator included, for the string types.
UB_API LONG RegSetValueExU(HKEY key, const char* name, DWORD reserved, DWORD type, const BYTE* data,
                           DWORD size);
// `size` is the name buffer's bytes, terminator included.
UB_API LONG RegEnumKeyU(HKEY key, DWORD index, char* name, DWORD size);
// `name_size` is in and out: the buffer's bytes with the terminator, then the name's
// without it. `data` and `data_size` as for RegQueryValueExU; all three may be null.
UB_API LONG RegEnumValueU(HKEY key, DWORD index, char* name, DWORD* name_size, DWORD* reserved,
                          DWORD* type, BYTE* data, DWORD* data_size);

// LoadLibraryW with a UTF-8 name; null (last error set) on failure.
UB_API HMODULE LoadLibraryU(const char* name);
// GetModuleHandleW with a UTF-8 name; null asks for the executable.
UB_API HMODULE GetModuleHandleU(const char* name);
// The module's path in UTF-8. Returns the bytes written without the terminator; a
// path that does not fit is cut at a character boundary, terminated, and `size` is
// returned with last error ERROR_INSUFFICIENT_BUFFER, as the W form does.
UB_API DWORD GetModuleFileNameU(HMODULE module, char* buffer, DWORD size);
// CreateActCtxW with the ACTCTXA description's strings read as UTF-8 (a resource name
// made with MAKEINTRESOURCE passes as it is). INVALID_HANDLE_VALUE on failure.
UB_API HANDLE CreateActCtxU(const ACTCTXA* context);

#endif // _WIN32

#endif // UB_WINDOWS_H
