#include "ovra/ovStringReader.h"

#include "strings/reader_stream.h"

#include <algorithm>
#include <climits>
#include <cstdlib>
#include <cwchar>

// mbtowc reads at most the bytes it is given, and a UTF-8 locale needs up to
// four, so bytes are added while mbrtowc says the character is incomplete.
// In a double-byte locale the first such step is exactly ov_lead_byte's test.
unsigned int ovra_internal::read_mb_rest(std::istream& is, int b, int& status) {
    char bytes[MB_LEN_MAX] = {static_cast<char>(b)};
    size_t n = 1;
    const size_t most = std::min<size_t>(MB_CUR_MAX, sizeof bytes);
    for (;;) {
        std::mbstate_t state{};
        wchar_t w = 0;
        const size_t r = std::mbrtowc(&w, bytes, n, &state);
        if (r == static_cast<size_t>(-2) && n < most) {
            const int c = next_byte(is);
            if (c == kEndOfStream) {
                status = 1;
                return ovREADER_CUT_CHARACTER;
            }
            bytes[n++] = static_cast<char>(c);
            continue;
        }
        if (r == static_cast<size_t>(-1) || r == static_cast<size_t>(-2)) {
            status = 1;
            return ovREADER_BAD_CHARACTER;
        }
        // wchar_t is a code point here; what UTF-16 could not carry reads as
        // "?", as the UTF-16 decoding on Windows gives.
        const unsigned int c = static_cast<unsigned int>(w);
        return (c >= 0xD800 && c <= 0xDFFF) || c > 0x10FFFF ? '?' : c;
    }
}
