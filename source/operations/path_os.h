// Path text for system calls.
#pragma once

#include "ovra/ovPathName.h"

namespace ovra_internal {

// The UTF-8 text; "" for an invalid path, which names nothing.
inline const char* utf8_path(const ovPathName& path) {
    const char* p = path.string().convert(ovSTRING_UTF8);
    return p ? p : "";
}

// The platform's wide text (UTF-16 on Windows); L"" for an invalid path.
inline const wchar_t* wide_path(const ovPathName& path) {
    const wchar_t* p = path.string().convert(ovSTRING_WCS);
    return p ? p : L"";
}

// True for the text "." exactly, which is a directory without asking the system.
bool is_dot(const ovPathName& path) noexcept;

} // namespace ovra_internal
