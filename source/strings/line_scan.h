// Internal: the byte scan behind the UTF-8 reader's read_line. A line is
// mostly plain ASCII, which decodes to itself; only LF, CR, NUL and bytes from
// 0x80 up need the reader's attention, so widen16 takes sixteen bytes at once
// with the vector steps of simd.h.
#pragma once

#include "strings/simd.h"
#include "strings/utf_codec.h"

#include <cstddef>
#include <cstdint>
#include <cstring>

namespace ovra_internal {

// True for a byte that decodes to itself and ends no line.
inline bool is_plain_line_byte(unsigned char b) noexcept {
    return b < 0x80 && b != '\n' && b != '\r' && b != 0;
}

// Stores the 16 bytes at p as code points at out[0, 16) and returns a mask
// with bit i set when p[i] is not plain. Code points from the first set bit on
// are not that byte's character: the caller writes over them.
inline unsigned widen16(const unsigned char* p, unsigned int* out) noexcept {
    const simd::V128 v = simd::load(p);
    simd::widen8_to32(v, out);
    return simd::high8(v) | simd::equal8(v, '\n') | simd::equal8(v, '\r') | simd::equal8(v, 0);
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
