#include "ovra/ovNarrow.h"

#include <cstdlib>
#include <cwchar>

namespace {

// ASCII folding only, as the "C" locale does, so results do not move with
// the locale.
inline int fold(unsigned char c) {
    return c >= 'A' && c <= 'Z' ? c + ('a' - 'A') : c;
}

// True when the locale decodes two- and three-byte UTF-8 as UTF-8. Asked of
// mbrtowc itself rather than of nl_langinfo, whose answer may be overwritten
// by another thread; nothing is cached, since setlocale may change the answer.
// A double-byte code page reads these bytes as one two-byte character of its
// own, never as U+00E9 then U+20AC.
bool decodes_utf8() {
    std::mbstate_t state{};
    wchar_t w = 0;
    if (std::mbrtowc(&w, "\xC3\xA9", 2, &state) != 2 || w != 0xE9)
        return false;
    state = std::mbstate_t{};
    return std::mbrtowc(&w, "\xE2\x82\xAC", 3, &state) == 3 && w == 0x20AC;
}

} // namespace

extern "C" OV_API int ov_stricmp(const char* a, const char* b) {
    if (!a || !b)
        return a == b ? 0 : (a ? 1 : -1);
    const unsigned char* p = reinterpret_cast<const unsigned char*>(a);
    const unsigned char* q = reinterpret_cast<const unsigned char*>(b);
    for (;; ++p, ++q) {
        const int d = fold(*p) - fold(*q);
        if (d != 0 || *p == 0)
            return d;
    }
}

extern "C" OV_API int ov_lead_byte(char c) {
    if (MB_CUR_MAX == 1 || decodes_utf8())
        return 0;
    std::mbstate_t state{};
    return std::mbrlen(&c, 1, &state) == static_cast<size_t>(-2) ? 1 : 0;
}
