// UTF-8 <-> UTF-16 for the glyphs Windows files. Strict in both directions: malformed
// input is refused, never replaced, so a bad name cannot reach the system altered.
#ifndef UB_UTF8_WIN_H
#define UB_UTF8_WIN_H

#ifndef WIN32_LEAN_AND_MEAN
#define WIN32_LEAN_AND_MEAN
#endif
#ifndef NOMINMAX
#define NOMINMAX
#endif
#include <windows.h>

#include <string>

namespace ub_detail {

// `n` bytes of UTF-8 (embedded zeros kept) to UTF-16; false for malformed input.
inline bool utf8_to_wide(const char* s, size_t n, std::wstring& out) {
    out.clear();
    if (n == 0)
        return true;
    if (n > 0x7FFFFFFF)
        return false;
    const int len = static_cast<int>(n);
    const int w = MultiByteToWideChar(CP_UTF8, MB_ERR_INVALID_CHARS, s, len, nullptr, 0);
    if (w <= 0)
        return false;
    out.resize(static_cast<size_t>(w));
    return MultiByteToWideChar(CP_UTF8, MB_ERR_INVALID_CHARS, s, len, &out[0], w) == w;
}

// A 0-terminated UTF-8 text (null allowed: gives the empty text) to UTF-16.
inline bool utf8_to_wide(const char* s, std::wstring& out) {
    return utf8_to_wide(s ? s : "", s ? std::char_traits<char>::length(s) : 0, out);
}

// `n` UTF-16 units (embedded zeros kept) to UTF-8; false for unpaired surrogates.
inline bool wide_to_utf8(const wchar_t* s, size_t n, std::string& out) {
    out.clear();
    if (n == 0)
        return true;
    if (n > 0x7FFFFFFF)
        return false;
    const int len = static_cast<int>(n);
    const int b =
        WideCharToMultiByte(CP_UTF8, WC_ERR_INVALID_CHARS, s, len, nullptr, 0, nullptr, nullptr);
    if (b <= 0)
        return false;
    out.resize(static_cast<size_t>(b));
    return WideCharToMultiByte(CP_UTF8, WC_ERR_INVALID_CHARS, s, len, &out[0], b, nullptr,
                               nullptr) == b;
}

// The longest prefix of `s` of at most `limit` bytes that ends on a character boundary.
inline size_t utf8_cut(const std::string& s, size_t limit) {
    if (s.size() <= limit)
        return s.size();
    size_t n = limit;
    while (n > 0 && (static_cast<unsigned char>(s[n]) & 0xC0) == 0x80)
        --n;
    return n;
}

} // namespace ub_detail

#endif // UB_UTF8_WIN_H
