// Windows code pages through the system's own conversion calls.
#include "ovra/ovStringEncoding.h"

#include "common/win32.h"
#include "strings/utf_codec.h"

#include <vector>

using namespace ovra_internal;

ovString ovStringCPEncoding::in(const char* text, int& status) const {
    const UINT cp = static_cast<UINT>(m_code_page);
    int n = MultiByteToWideChar(cp, MB_ERR_INVALID_CHARS, text, -1, nullptr, 0);
    if (n == 0) {
        return refused_cp_in(status);
    }
    std::vector<wchar_t> wide(static_cast<size_t>(n));
    n = MultiByteToWideChar(cp, MB_ERR_INVALID_CHARS, text, -1, wide.data(), n);
    if (n == 0) {
        return refused_cp_in(status);
    }
    ovString s(ovSTRING_UTF16, wide.data(), status);
    status = 0; // the code page already refused bad input
    return unfailed(s);
}

utString ovStringCPEncoding::out(const ovString& s, int& status) const {
    const UINT cp = static_cast<UINT>(m_code_page);
    // Windows refuses to report default characters for the UTF pages and so
    // fails the call below; Wine accepts it. Refuse them here on both.
    if (cp == CP_UTF7 || cp == CP_UTF8) {
        return refused_cp_out(status);
    }
    const wchar_t* w = s.convert(ovSTRING_WCS);
    int n = WideCharToMultiByte(cp, 0, w, -1, nullptr, 0, nullptr, nullptr);
    if (n == 0) {
        return refused_cp_out(status);
    }
    std::vector<char> narrow(static_cast<size_t>(n));
    // The system stores into status whether it used the default character.
    n = WideCharToMultiByte(cp, 0, w, -1, narrow.data(), n, nullptr, &status);
    if (n == 0) {
        return refused_cp_out(status);
    }
    return utString(utCOPY, narrow.data());
}
