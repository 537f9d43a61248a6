#include "ovra/ovNarrow.h"

#include <ctype.h>
#include <locale.h>
#include <string.h>

namespace {
constexpr unsigned int kUtf8CodePage = 65001;
}

extern "C" OV_API int ov_stricmp(const char* a, const char* b) {
    if (!a || !b)
        return a == b ? 0 : (a ? 1 : -1);
    return _stricmp(a, b);
}

// isleadbyte has nothing to say about UTF-8, whose lead bytes start
// characters of up to four bytes.
extern "C" OV_API int ov_lead_byte(char c) {
    if (___lc_codepage_func() == kUtf8CodePage)
        return 0;
    return isleadbyte(static_cast<unsigned char>(c)) ? 1 : 0;
}
