// Internal: the byte scan behind the UTF-8 reader's read_line. A line is
// mostly plain ASCII, which decodes to itself; only LF, CR, NUL and bytes from
// 0x80 up need the reader's attention. widen16 takes sixteen bytes at once:
// with SSE2 (the x86-64 baseline) in a few vector instructions, elsewhere a
// byte at a time, with the same result.
#pragma once

#include <cstddef>

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

} // namespace ovra_internal
