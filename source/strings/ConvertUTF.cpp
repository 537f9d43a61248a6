#include "strings/utf_codec.h"

#include <algorithm>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace ovra_internal {

// Everything the inline reader does not accept, and what a bad sequence costs:
// the bytes its lead announces are taken (up to the first that does not
// continue it) and give one "?".
unsigned int read_utf8_slow(const char*& p, const char* end, bool& exact) {
    const unsigned int b = static_cast<unsigned char>(*p++);
    if (b <= 0x80) // a lone 0x80 passes as U+0080, on purpose
        return b;
    const Utf8Lead& lead = kUtf8.lead[b];
    if (lead.announced < 0) {
        // A run of stray continuation bytes (0x80 included) gives one "?".
        exact = false;
        while (p < end && is_continuation(static_cast<unsigned char>(*p)))
            ++p;
        return kReplacement;
    }
    const unsigned int second = p < end ? static_cast<unsigned char>(*p) : 0;
    unsigned int c = b & lead.bits;
    bool whole = true;
    for (int i = 0; i < lead.announced; ++i) {
        if (p == end || !is_continuation(static_cast<unsigned char>(*p))) {
            whole = false; // the offending byte is left for the next read
            break;
        }
        c = (c << 6) | (static_cast<unsigned char>(*p++) & 0x3Fu);
    }
    if (!whole || !utf8_second_ok(lead, second)) {
        exact = false;
        return kReplacement;
    }
    return c;
}

unsigned int read_utf16_slow(const ovChar16*& p, const ovChar16* end, bool& exact) {
    const unsigned int u = static_cast<uint16_t>(*p++);
    if (u < 0xD800 || u > 0xDFFF)
        return u;
    if (u <= 0xDBFF) {
        const unsigned int next = p < end ? static_cast<uint16_t>(*p) : 0;
        if (next < 0xDC00 || next > 0xDFFF) {
            exact = false;
            return kReplacement;
        }
        ++p;
        return (((u - 0xD800u) << 10) | (next & 0x3FFu)) + 0x10000u;
    }
    // A run of lone low surrogates gives one "?".
    exact = false;
    while (p < end && static_cast<uint16_t>(*p) >= 0xDC00 && static_cast<uint16_t>(*p) <= 0xDFFF)
        ++p;
    return kReplacement;
}

namespace {

// For decoding text known to be exact: the bits a lead byte gives (low byte)
// and how many continuation bytes follow it (high byte).
struct LeadInfo {
    uint16_t info[256];
};

constexpr LeadInfo make_lead_info() {
    LeadInfo t{};
    for (unsigned b = 0; b < 256; ++b) {
        const Utf8Lead lead = kUtf8.lead[b];
        // A lone 0x80 decodes as itself; other non-leads never start a character of exact text.
        const unsigned mask = b <= 0x80 ? 0xFF : lead.bits;
        const unsigned extra = lead.announced > 0 ? static_cast<unsigned>(lead.announced) : 0;
        t.info[b] = static_cast<uint16_t>(mask | (extra << 8));
    }
    return t;
}

constexpr LeadInfo kLeadInfo = make_lead_info();

// The fast paths work on 64-byte blocks, one bit per byte.
constexpr size_t kBlock = 64;

// The block scanner asks the same rules as every other reader, as byte classes:
// where leads start and stop, and the four leads whose first continuation byte
// has a narrower range. The checks below hold it to the lead table.
constexpr unsigned kFirstLead = 0xC2;    // C0 and C1 only spell overlong forms
constexpr unsigned kPastLastLead = 0xF5; // F5 and up would go past U+10FFFF
constexpr unsigned kE0Floor = 0xA0;      // E0 needs at least this, ED less
constexpr unsigned kF0Floor = 0x90;      // F0 needs at least this, F4 less

constexpr bool scanner_matches_the_rules() {
    for (unsigned b = 0x80; b < 0x100; ++b) {
        const Utf8Lead lead = kUtf8.lead[b];
        const int announced = b < 0xC0 || b >= 0xF8 ? -1 : b >= 0xF0 ? 3 : b >= 0xE0 ? 2 : 1;
        if (lead.announced != announced)
            return false;
        const bool starts = b >= kFirstLead && b < kPastLastLead;
        if (starts != (lead.lo <= lead.hi))
            return false;
        if (!starts)
            continue;
        const unsigned lo = b == 0xE0 ? kE0Floor : b == 0xF0 ? kF0Floor : 0x80;
        const unsigned hi = b == 0xED ? kE0Floor - 1 : b == 0xF4 ? kF0Floor - 1 : 0xBF;
        if (lead.lo != lo || lead.hi != hi)
            return false;
    }
    return true;
}
static_assert(scanner_matches_the_rules(), "the block scanner and the lead table disagree");

// Byte classes of one block.
struct BlockMasks {
    uint64_t ge80, geC0, geC2, geE0, geF0, geF5, ge90, geA0;
    uint64_t eq80, eqE0, eqED, eqF0, eqF4;
};

#if defined(__SSE2__)
inline uint64_t at_least16(__m128i x, unsigned char floor) {
    const __m128i f = _mm_set1_epi8(static_cast<char>(floor));
    return static_cast<uint16_t>(_mm_movemask_epi8(_mm_cmpeq_epi8(_mm_max_epu8(x, f), x)));
}

inline uint64_t equal16(__m128i x, unsigned char v) {
    return static_cast<uint16_t>(
        _mm_movemask_epi8(_mm_cmpeq_epi8(x, _mm_set1_epi8(static_cast<char>(v)))));
}

inline BlockMasks classify(const unsigned char* p) {
    BlockMasks m{};
    for (int j = 0; j < 4; ++j) {
        const __m128i x = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p + 16 * j));
        const int at = 16 * j;
        m.ge80 |= static_cast<uint64_t>(static_cast<uint16_t>(_mm_movemask_epi8(x))) << at;
        m.geC0 |= at_least16(x, 0xC0) << at;
        m.geC2 |= at_least16(x, kFirstLead) << at;
        m.geE0 |= at_least16(x, 0xE0) << at;
        m.geF0 |= at_least16(x, 0xF0) << at;
        m.geF5 |= at_least16(x, kPastLastLead) << at;
        m.ge90 |= at_least16(x, kF0Floor) << at;
        m.geA0 |= at_least16(x, kE0Floor) << at;
        m.eq80 |= equal16(x, 0x80) << at;
        m.eqE0 |= equal16(x, 0xE0) << at;
        m.eqED |= equal16(x, 0xED) << at;
        m.eqF0 |= equal16(x, 0xF0) << at;
        m.eqF4 |= equal16(x, 0xF4) << at;
    }
    return m;
}

inline uint64_t high_bits(const unsigned char* p) {
    uint64_t m = 0;
    for (int j = 0; j < 4; ++j) {
        const __m128i x = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p + 16 * j));
        m |= static_cast<uint64_t>(static_cast<uint16_t>(_mm_movemask_epi8(x))) << (16 * j);
    }
    return m;
}
#else
inline BlockMasks classify(const unsigned char* p) {
    BlockMasks m{};
    for (unsigned i = 0; i < kBlock; ++i) {
        const unsigned b = p[i];
        const uint64_t bit = uint64_t(1) << i;
        m.ge80 |= b >= 0x80 ? bit : 0;
        m.geC0 |= b >= 0xC0 ? bit : 0;
        m.geC2 |= b >= kFirstLead ? bit : 0;
        m.geE0 |= b >= 0xE0 ? bit : 0;
        m.geF0 |= b >= 0xF0 ? bit : 0;
        m.geF5 |= b >= kPastLastLead ? bit : 0;
        m.ge90 |= b >= kF0Floor ? bit : 0;
        m.geA0 |= b >= kE0Floor ? bit : 0;
        m.eq80 |= b == 0x80 ? bit : 0;
        m.eqE0 |= b == 0xE0 ? bit : 0;
        m.eqED |= b == 0xED ? bit : 0;
        m.eqF0 |= b == 0xF0 ? bit : 0;
        m.eqF4 |= b == 0xF4 ? bit : 0;
    }
    return m;
}

inline uint64_t high_bits(const unsigned char* p) {
    uint64_t m = 0;
    for (unsigned i = 0; i < kBlock; ++i)
        m |= static_cast<uint64_t>(p[i] >> 7) << i;
    return m;
}
#endif

// Decides block by block whether a text is exact, that is well-formed UTF-8
// plus lone 0x80 bytes, and counts its characters. In such text a byte
// continues a character exactly when a lead byte close enough before it
// covers it; 0x80 is a character of its own only when nothing covers it.
// So every rule is a test on whole bit masks, with no branch per byte.
class ExactScanner {
public:
    // Checks one block and returns how many characters start in it among the
    // bytes marked in `counted`.
    size_t block(const unsigned char* p, uint64_t counted = ~uint64_t(0)) {
        if (m_cover == 0 && high_bits(p) == 0) // plain ASCII
            return ovra_internal::popcount64(counted);
        const BlockMasks m = classify(p);
        const uint64_t cont = m.ge80 & ~m.geC0;
        const uint64_t covered = (m.geC0 << 1) | (m.geE0 << 2) | (m.geF0 << 3) | m_cover;
        uint64_t bad = covered & ~cont;          // a character cut short
        bad |= cont & ~covered & ~m.eq80;        // a stray continuation byte
        bad |= (m.geC0 & ~m.geC2) | m.geF5;      // bytes that never start anything
        bad |= ((m.eqE0 << 1) | m_e0) & ~m.geA0; // overlong three bytes
        bad |= ((m.eqED << 1) | m_ed) & m.geA0;  // surrogates
        bad |= ((m.eqF0 << 1) | m_f0) & ~m.ge90; // overlong four bytes
        bad |= ((m.eqF4 << 1) | m_f4) & m.ge90;  // above U+10FFFF
        m_bad |= bad;
        m_cover = (m.geC0 >> 63) | (m.geE0 >> 62) | (m.geF0 >> 61);
        m_e0 = m.eqE0 >> 63;
        m_ed = m.eqED >> 63;
        m_f0 = m.eqF0 >> 63;
        m_f4 = m.eqF4 >> 63;
        return ovra_internal::popcount64(~covered & counted);
    }

    // True when no block broke a rule and no character runs past the end.
    bool exact() const { return (m_bad | m_cover) == 0; }

private:
    uint64_t m_cover = 0; // bytes of the next block that continue a character
    uint64_t m_e0 = 0, m_ed = 0, m_f0 = 0, m_f4 = 0;
    uint64_t m_bad = 0;
};

// A copy of the last few bytes, padded with 0 bytes to a whole block (and the
// three bytes decode_at may read past a character's start).
struct TailBlock {
    unsigned char bytes[kBlock + 3];
    uint64_t valid;

    TailBlock(const unsigned char* p, size_t n) : bytes(), valid(0) {
        if (n)
            std::memcpy(bytes, p, n);
        valid = n >= kBlock ? ~uint64_t(0) : (uint64_t(1) << n) - 1;
    }
};

// Decodes the character starting at p, reading 4 bytes whatever its length.
inline unsigned int decode_at(const unsigned char* p) {
    const unsigned int info = kLeadInfo.info[p[0]];
    const unsigned int all = ((p[0] & info & 0xFFu) << 18) | ((p[1] & 0x3Fu) << 12) |
                             ((p[2] & 0x3Fu) << 6) | (p[3] & 0x3Fu);
    return all >> (6 * (3 - (info >> 8)));
}

} // namespace

bool count_exact_utf8(const char* src, size_t n, size_t& count) {
    const unsigned char* p = reinterpret_cast<const unsigned char*>(src);
    const unsigned char* const end = p + n;
    ExactScanner scan;
    size_t chars = 0;
    for (; static_cast<size_t>(end - p) >= kBlock; p += kBlock)
        chars += scan.block(p);
    const TailBlock tail(p, static_cast<size_t>(end - p));
    chars += scan.block(tail.bytes, tail.valid);
    count = chars;
    return scan.exact();
}

void decode_exact_utf8(const char* src, size_t n, unsigned int* dst) {
    const unsigned char* p = reinterpret_cast<const unsigned char*>(src);
    const unsigned char* const end = p + n;
    size_t k = 0;
    uint64_t carry = 0; // bytes of this block that continue the last one's character
    // Character starts are known for a whole block at once (see ExactScanner),
    // and each character is decoded on its own.
    auto decode_block = [&](const unsigned char* b, uint64_t valid) {
        const BlockMasks m = classify(b);
        const uint64_t covered = (m.geC0 << 1) | (m.geE0 << 2) | (m.geF0 << 3) | carry;
        carry = (m.geC0 >> 63) | (m.geE0 >> 62) | (m.geF0 >> 61);
        for (uint64_t starts = ~covered & valid; starts; starts &= starts - 1)
            dst[k++] = decode_at(b + ovra_internal::lowest_bit64(starts));
    };
    while (static_cast<size_t>(end - p) >= kBlock + 3) {
        if ((high_bits(p) | carry) == 0) { // plain ASCII
            for (size_t i = 0; i < kBlock; ++i)
                dst[k + i] = p[i];
            k += kBlock;
        } else {
            decode_block(p, ~uint64_t(0));
        }
        p += kBlock;
    }
    while (p < end) {
        const size_t left = std::min(kBlock, static_cast<size_t>(end - p));
        const TailBlock tail(p, static_cast<size_t>(end - p)); // with the overhang decode_at reads
        if ((high_bits(tail.bytes) | carry) == 0) {            // short texts are mostly ASCII
            for (size_t i = 0; i < left; ++i)
                dst[k + i] = p[i];
            k += left;
        } else {
            decode_block(tail.bytes, tail.valid);
        }
        p += left;
    }
    dst[k] = 0;
}

// Code points to UTF-8 or UTF-16, which never meet bad input: the only loss
// is a character that does not fit. Sizes are summed without a branch, and
// while at least 4 units of room are left every character is written as one
// unaligned word of which only its own units count.
namespace {

constexpr uint32_t kUtf8Marks[4] = {0, 0x80C0u, 0x8080E0u, 0x808080F0u};

// How many of the code points exceed each limit, four at a time.
template <size_t N>
void count_above(const unsigned int* src, size_t n, const unsigned int (&limits)[N],
                 size_t& total) {
    size_t i = 0;
#if defined(__SSE2__)
    // Unsigned compares through the sign bit.
    const __m128i flip = _mm_set1_epi32(static_cast<int>(0x80000000u));
    __m128i lim[N];
    for (size_t j = 0; j < N; ++j)
        lim[j] = _mm_set1_epi32(static_cast<int>(limits[j] ^ 0x80000000u));
    while (n - i >= 4) {
        __m128i acc = _mm_setzero_si128();
        // At most 255 rounds of 4 lanes before the 32-bit lane sums are read.
        const size_t stop = i + std::min<size_t>((n - i) & ~size_t(3), 4 * 255);
        for (; i < stop; i += 4) {
            const __m128i x =
                _mm_xor_si128(_mm_loadu_si128(reinterpret_cast<const __m128i*>(src + i)), flip);
            for (size_t j = 0; j < N; ++j)
                acc = _mm_sub_epi32(acc, _mm_cmpgt_epi32(x, lim[j]));
        }
        uint32_t lanes[4];
        _mm_storeu_si128(reinterpret_cast<__m128i*>(lanes), acc);
        total += size_t(lanes[0]) + lanes[1] + lanes[2] + lanes[3];
    }
#endif
    for (; i < n; ++i)
        for (size_t j = 0; j < N; ++j)
            total += src[i] > limits[j];
}

size_t utf32_count_utf8(const unsigned int* src, size_t n) {
    static const unsigned int limits[3] = {0x7F, 0x7FF, 0xFFFF};
    size_t count = n;
    count_above(src, n, limits, count);
    const unsigned int last = n ? src[n - 1] : kReplacement;
    return last == 0 ? count : count + 1;
}

size_t utf32_count_utf16(const unsigned int* src, size_t n) {
    static const unsigned int limits[1] = {0xFFFF};
    size_t count = n;
    count_above(src, n, limits, count);
    const unsigned int last = n ? src[n - 1] : kReplacement;
    return last == 0 ? count : count + 1;
}

// The bytes of c's UTF-8 form in the low bytes of a word, lowest first.
inline uint32_t utf8_word(unsigned int c, size_t k) {
    const uint32_t spread = ((c >> 18) & 0x07u) | (((c >> 12) & 0x3Fu) << 8) |
                            (((c >> 6) & 0x3Fu) << 16) | ((c & 0x3Fu) << 24);
    const uint32_t wide = (spread >> (8 * (3 - k))) | kUtf8Marks[k];
    const uint32_t multi = 0u - static_cast<uint32_t>(k != 0); // no branch: k is random
    return (wide & multi) | (c & ~multi);
}

inline uint32_t utf16_word(unsigned int c) {
    const unsigned int v = c - 0x10000u;
    const uint32_t pair = (0xD800u | ((v >> 10) & 0x3FFu)) | ((0xDC00u | (v & 0x3FFu)) << 16);
    const uint32_t two = 0u - static_cast<uint32_t>(c >= 0x10000);
    return (pair & two) | (c & ~two);
}

} // namespace

size_t utf32_to_utf8(const unsigned int* src, size_t n, char* dst, size_t cap, bool& exact) {
    exact = true;
    if (!src)
        n = 0;
    if (!dst || cap == 0)
        return utf32_count_utf8(src, n);
    char* o = dst;
    const char* const oend = dst + cap;
    size_t i = 0;
    // Eight at a time while even eight 4-byte characters fit.
    while (n - i >= 8 && oend - o >= 32) {
        if (Utf32::ascii8(src + i)) {
            for (int j = 0; j < 8; ++j)
                o[j] = static_cast<char>(src[i + j]);
            o += 8;
        } else {
            for (int j = 0; j < 8; ++j) {
                const unsigned int c = src[i + j];
                const size_t k = (c >= 0x80) + (c > 0x7FF) + (c > 0xFFFF);
                const uint32_t w = utf8_word(c, k);
                std::memcpy(o, &w, 4); // little-endian: the first byte lowest
                o += k + 1;
            }
        }
        i += 8;
    }
    while (i < n && o < oend)
        Utf8::store(src[i++], o, oend, exact);
    const unsigned int last = i ? src[i - 1] : kReplacement;
    if (last != 0 && o < oend)
        *o++ = 0;
    return static_cast<size_t>(o - dst);
}

size_t utf32_to_utf16(const unsigned int* src, size_t n, ovChar16* dst, size_t cap, bool& exact) {
    exact = true;
    if (!src)
        n = 0;
    if (!dst || cap == 0)
        return utf32_count_utf16(src, n);
    ovChar16* o = dst;
    const ovChar16* const oend = dst + cap;
    size_t i = 0;
    while (i < n && oend - o >= 2) {
        const unsigned int c = src[i++];
        const uint32_t w = utf16_word(c);
        std::memcpy(o, &w, 4);
        o += 1 + (c >= 0x10000);
    }
    while (i < n && o < oend)
        Utf16::store(src[i++], o, oend, exact);
    const unsigned int last = i ? src[i - 1] : kReplacement;
    if (last != 0 && o < oend)
        *o++ = 0;
    return static_cast<size_t>(o - dst);
}

} // namespace ovra_internal

namespace ovOvra {

using namespace ovra_internal;

size_t ConvertUTF::utf8_to_utf16(const char* src, size_t n, ovChar16* dst, size_t cap) const {
    return convert<Utf8, Utf16>(src, n, dst, cap, m_exact);
}

size_t ConvertUTF::utf16_to_utf8(const ovChar16* src, size_t n, char* dst, size_t cap) const {
    return convert<Utf16, Utf8>(src, n, dst, cap, m_exact);
}

size_t ConvertUTF::utf8_to_utf32(const char* src, size_t n, unsigned int* dst, size_t cap) const {
    size_t chars;
    if ((!dst || cap == 0) && src && count_exact_utf8(src, n, chars)) {
        m_exact = true;
        // Exact text ends on a whole character, so the last code read is 0
        // exactly when the last byte is.
        const bool ends_in_zero = n > 0 && src[n - 1] == 0;
        return ends_in_zero ? chars : chars + 1;
    }
    return convert<Utf8, Utf32>(src, n, dst, cap, m_exact);
}

size_t ConvertUTF::utf32_to_utf8(const unsigned int* src, size_t n, char* dst, size_t cap) const {
    return ovra_internal::utf32_to_utf8(src, n, dst, cap, m_exact);
}

size_t ConvertUTF::utf16_to_utf32(const ovChar16* src, size_t n, unsigned int* dst,
                                  size_t cap) const {
    return convert<Utf16, Utf32>(src, n, dst, cap, m_exact);
}

size_t ConvertUTF::utf32_to_utf16(const unsigned int* src, size_t n, ovChar16* dst,
                                  size_t cap) const {
    return ovra_internal::utf32_to_utf16(src, n, dst, cap, m_exact);
}

unsigned int ConvertUTF::read_code(ConvertUTF8, const char*& p, const char* end) const {
    return read_utf8_slow(p, end, m_exact);
}

unsigned int ConvertUTF::read_code(ConvertUTF16, const ovChar16*& p, const ovChar16* end) const {
    return read_utf16_slow(p, end, m_exact);
}

size_t ConvertUTF::store_code(ConvertUTF8, unsigned int c, char** p, const char* end) const {
    if (!p || !*p)
        return Utf8::size(c);
    if (*p >= end) { // no room at all: nothing can be stored
        m_exact = false;
        return 0;
    }
    return Utf8::store(c, *p, end, m_exact);
}

size_t ConvertUTF::store_code(ConvertUTF16, unsigned int c, ovChar16** p,
                              const ovChar16* end) const {
    if (!p || !*p)
        return Utf16::size(c);
    if (*p >= end) {
        m_exact = false;
        return 0;
    }
    return Utf16::store(c, *p, end, m_exact);
}

} // namespace ovOvra
