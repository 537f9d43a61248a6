// Internal: the byte scan behind the UTF-8 reader's read_line. A line is
// mostly plain ASCII, which decodes to itself; only LF, CR, NUL and bytes from
// 0x80 up need the reader's attention. widen16 takes sixteen bytes at once:
// with SSE2 (the x86-64 baseline) in a few vector instructions, elsewhere a
// byte at a time, with the same result.
#pragma once

#include "strings/utf_codec.h"

#include <cstddef>
#include <cstdint>
#include <cstring>

#if defined(__SSE2__) || defined(_M_X64) || (defined(_M_IX86_FP) && _M_IX86_FP >= 2)
#define OVRA_LINE_SCAN_SSE2 1
#include <emmintrin.h>
#endif

namespace ovra_internal {

// True for a byte that decodes to itself and ends no line.
inline bool is_plain_line_byte(unsigned char b) noexcept {
    return b < 0x80 && b != '\n' && b != '\r' && b != 0;
}

// Stores the 16 bytes at p as code points at out[0, 16) and returns a mask
// with bit i set when p[i] is not plain. Code points from the first set bit on
// are not that byte's character: the caller writes over them.
inline unsigned widen16(const unsigned char* p, unsigned int* out) noexcept {
#if defined(OVRA_LINE_SCAN_SSE2)
    const __m128i zero = _mm_setzero_si128();
    const __m128i v = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p));
    // The top bit of each byte, and the bytes equal to LF, CR or NUL.
    const __m128i ends = _mm_or_si128(_mm_or_si128(_mm_cmpeq_epi8(v, _mm_set1_epi8('\n')),
                                                   _mm_cmpeq_epi8(v, _mm_set1_epi8('\r'))),
                                      _mm_cmpeq_epi8(v, zero));
    const __m128i lo = _mm_unpacklo_epi8(v, zero);
    const __m128i hi = _mm_unpackhi_epi8(v, zero);
    __m128i* o = reinterpret_cast<__m128i*>(out);
    _mm_storeu_si128(o, _mm_unpacklo_epi16(lo, zero));
    _mm_storeu_si128(o + 1, _mm_unpackhi_epi16(lo, zero));
    _mm_storeu_si128(o + 2, _mm_unpacklo_epi16(hi, zero));
    _mm_storeu_si128(o + 3, _mm_unpackhi_epi16(hi, zero));
    return static_cast<unsigned>(_mm_movemask_epi8(_mm_or_si128(v, ends)));
#else
    unsigned stop = 0;
    for (unsigned i = 0; i < 16; ++i) {
        out[i] = p[i];
        stop |= static_cast<unsigned>(!is_plain_line_byte(p[i])) << i;
    }
    return stop;
#endif
}

// The character of a well-formed multibyte sequence at p, by the lead table's
// rules, without a branch on its length; p[0] is 0x80 or above and p[0, 4)
// may be read. 0 when the bytes are not a well-formed sequence: the caller
// then reads them the converter's way. `length` receives the announced byte
// count (0 for a byte that starts nothing).
inline unsigned int well_formed_at(const unsigned char* p, unsigned& length) noexcept {
    const Utf8Lead& lead = kUtf8.lead[p[0]];
    length = static_cast<unsigned>(lead.announced + 1);
    uint32_t w;
    std::memcpy(&w, p, 4); // p[0] in the low byte
    // The bytes after the second that the lead announces, each 0x80..0xBF.
    static const uint32_t kTail[5] = {0, 0, 0, 0xC0u << 16, 0xC0C0u << 16};
    const unsigned b1 = (w >> 8) & 0xFFu;
    if (length < 2 || !utf8_second_ok(lead, b1) ||
        (w & kTail[length]) != (kTail[length] & 0x80808080u))
        return 0;
    const unsigned int all = ((w & lead.bits) << 18) | ((b1 & 0x3Fu) << 12) |
                             (((w >> 16) & 0x3Fu) << 6) | ((w >> 24) & 0x3Fu);
    return all >> (6 * (4 - length));
}

} // namespace ovra_internal
