#include "ovra/ovNarrow.h"

#include <cctype>
#include <clocale>
#include <cstdlib>
#include <cwchar>
#include <langinfo.h>

namespace {

// ASCII folding only, as the "C" locale does, so results do not move with
// the locale.
inline int fold(unsigned char c) {
    return c >= 'A' && c <= 'Z' ? c + ('a' - 'A') : c;
}

bool is_utf8_codeset() {
    const char* set = nl_langinfo(CODESET);
    if (!set)
        return false;
    const char* want = "utf8";
    for (; *set; ++set) {
        if (*set == '-' || *set == '_')
            continue;
        if (std::tolower(static_cast<unsigned char>(*set)) != *want)
            return false;
        ++want;
    }
    return *want == 0;
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
    if (MB_CUR_MAX == 1 || is_utf8_codeset())
        return 0;
    std::mbstate_t state{};
    return std::mbrlen(&c, 1, &state) == static_cast<size_t>(-2) ? 1 : 0;
}
