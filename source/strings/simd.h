// Internal: the 16-byte vector steps of the text loops, and nothing else of the
// library uses vector instructions. SSE2 is part of every x86-64 target, so it
// needs no run-time check; any other target (or a compiler without the
// intrinsics) gets the portable form below, which gives the same answers one
// lane at a time. Masks have one bit per lane, lane 0 lowest.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

#if !defined(OVRA_SIMD_PORTABLE) &&                                                                \
    (defined(__SSE2__) || defined(_M_X64) || (defined(_M_IX86_FP) && _M_IX86_FP >= 2))
#define OVRA_SIMD_SSE2 1
#include <emmintrin.h>
#endif

namespace ovra_internal {
namespace simd {

#if defined(OVRA_SIMD_SSE2)

struct V128 {
    __m128i v;
};

inline V128 load(const void* p) {
    return {_mm_loadu_si128(static_cast<const __m128i*>(p))};
}

// Bytes with the top bit set.
inline unsigned high8(V128 x) {
    return static_cast<unsigned>(_mm_movemask_epi8(x.v));
}

inline unsigned equal8(V128 x, unsigned char b) {
    return static_cast<unsigned>(
        _mm_movemask_epi8(_mm_cmpeq_epi8(x.v, _mm_set1_epi8(static_cast<char>(b)))));
}

// Bytes with bit K set.
template <int K> unsigned bit8(V128 x) {
    // shifting 16-bit lanes moves each byte's bit K to its top; what crosses
    // from the low byte lands in the high byte's bit 0, which is not read
    return static_cast<unsigned>(_mm_movemask_epi8(K == 7 ? x.v : _mm_slli_epi16(x.v, 7 - K)));
}

// The 16 bytes as 16-bit or 32-bit units.
template <class U16> void widen8_to16(V128 x, U16* out) {
    const __m128i z = _mm_setzero_si128();
    _mm_storeu_si128(reinterpret_cast<__m128i*>(out), _mm_unpacklo_epi8(x.v, z));
    _mm_storeu_si128(reinterpret_cast<__m128i*>(out + 8), _mm_unpackhi_epi8(x.v, z));
}

inline void widen8_to32(V128 x, uint32_t* out) {
    const __m128i z = _mm_setzero_si128();
    const __m128i lo = _mm_unpacklo_epi8(x.v, z), hi = _mm_unpackhi_epi8(x.v, z);
    _mm_storeu_si128(reinterpret_cast<__m128i*>(out), _mm_unpacklo_epi16(lo, z));
    _mm_storeu_si128(reinterpret_cast<__m128i*>(out + 4), _mm_unpackhi_epi16(lo, z));
    _mm_storeu_si128(reinterpret_cast<__m128i*>(out + 8), _mm_unpacklo_epi16(hi, z));
    _mm_storeu_si128(reinterpret_cast<__m128i*>(out + 12), _mm_unpackhi_epi16(hi, z));
}

// One bit per 16-bit lane of a compare's result.
inline unsigned lanes16(__m128i t) {
    return static_cast<unsigned>(_mm_movemask_epi8(_mm_packs_epi16(t, _mm_setzero_si128())));
}

// 16-bit lanes at least `floor`, unsigned: one bit per lane.
inline unsigned at_least16(V128 x, uint16_t floor) {
    // floor - x saturates to 0 exactly when x >= floor
    const __m128i d = _mm_subs_epu16(_mm_set1_epi16(static_cast<short>(floor)), x.v);
    return lanes16(_mm_cmpeq_epi16(d, _mm_setzero_si128()));
}

// 16-bit lanes whose bits under `mask` equal `value`.
inline unsigned masked_equal16(V128 x, uint16_t mask, uint16_t value) {
    const __m128i t = _mm_cmpeq_epi16(_mm_and_si128(x.v, _mm_set1_epi16(static_cast<short>(mask))),
                                      _mm_set1_epi16(static_cast<short>(value)));
    return lanes16(t);
}

// 16 units below 0x100 as bytes.
inline void narrow16_to8(V128 a, V128 b, char* out) {
    _mm_storeu_si128(reinterpret_cast<__m128i*>(out), _mm_packus_epi16(a.v, b.v));
}

// 8 units as 32-bit values.
inline void widen16_to32(V128 x, uint32_t* out) {
    const __m128i z = _mm_setzero_si128();
    _mm_storeu_si128(reinterpret_cast<__m128i*>(out), _mm_unpacklo_epi16(x.v, z));
    _mm_storeu_si128(reinterpret_cast<__m128i*>(out + 4), _mm_unpackhi_epi16(x.v, z));
}

// 32-bit lanes above `limit`, unsigned: one bit per lane.
inline unsigned above32(V128 x, uint32_t limit) {
    const __m128i flip = _mm_set1_epi32(static_cast<int>(0x80000000u));
    const __m128i t = _mm_cmpgt_epi32(_mm_xor_si128(x.v, flip),
                                      _mm_set1_epi32(static_cast<int>(limit ^ 0x80000000u)));
    return static_cast<unsigned>(_mm_movemask_ps(_mm_castsi128_ps(t)));
}

// Two groups of 4 values, each at most 0xFFFF, as 8 units.
template <class U16> void narrow32_to16(V128 a, V128 b, U16* out) {
    // Signed saturation is exact once the values are moved to -0x8000..0x7FFF.
    const __m128i bias = _mm_set1_epi32(0x8000);
    const __m128i packed = _mm_packs_epi32(_mm_sub_epi32(a.v, bias), _mm_sub_epi32(b.v, bias));
    _mm_storeu_si128(reinterpret_cast<__m128i*>(out),
                     _mm_add_epi16(packed, _mm_set1_epi16(static_cast<short>(0x8000))));
}

// Four groups of 4 values, each below 0x80, as 16 bytes.
inline void narrow32_to8(V128 a, V128 b, V128 c, V128 d, char* out) {
    const __m128i ab = _mm_packs_epi32(a.v, b.v), cd = _mm_packs_epi32(c.v, d.v);
    _mm_storeu_si128(reinterpret_cast<__m128i*>(out), _mm_packus_epi16(ab, cd));
}

inline V128 or128(V128 a, V128 b) {
    return {_mm_or_si128(a.v, b.v)};
}

// Per-lane counts of 32-bit values above a limit: start from zero32(), add
// with add_above32 (at most 2^32 - 1 times), read with sum32.
inline V128 zero32() {
    return {_mm_setzero_si128()};
}

inline V128 add_above32(V128 acc, V128 x, uint32_t limit) {
    const __m128i flip = _mm_set1_epi32(static_cast<int>(0x80000000u));
    const __m128i t = _mm_cmpgt_epi32(_mm_xor_si128(x.v, flip),
                                      _mm_set1_epi32(static_cast<int>(limit ^ 0x80000000u)));
    return {_mm_sub_epi32(acc.v, t)};
}

inline uint64_t sum32(V128 acc) {
    uint32_t lanes[4];
    _mm_storeu_si128(reinterpret_cast<__m128i*>(lanes), acc.v);
    return uint64_t(lanes[0]) + lanes[1] + lanes[2] + lanes[3];
}

// The UTF-8 forms of four code points, bit by bit with at most 4 bytes: each
// as a word whose low bytes are its bytes, first lowest, and its byte count.
inline void utf8_words(V128 x, uint32_t* words, uint32_t* lens) {
    const __m128i c = x.v;
    const __m128i flip = _mm_set1_epi32(static_cast<int>(0x80000000u));
    const __m128i cf = _mm_xor_si128(c, flip);
    const __m128i k1 = _mm_cmpgt_epi32(cf, _mm_set1_epi32(static_cast<int>(0x7Fu ^ 0x80000000u)));
    const __m128i k2 = _mm_cmpgt_epi32(cf, _mm_set1_epi32(static_cast<int>(0x7FFu ^ 0x80000000u)));
    const __m128i k3 = _mm_cmpgt_epi32(cf, _mm_set1_epi32(static_cast<int>(0xFFFFu ^ 0x80000000u)));
    const __m128i six = _mm_set1_epi32(0x3F);
    const __m128i lo = _mm_and_si128(c, six);
    const __m128i mid = _mm_and_si128(_mm_srli_epi32(c, 6), six);
    const __m128i hi = _mm_and_si128(_mm_srli_epi32(c, 12), six);
    const __m128i w1 =
        _mm_or_si128(_mm_or_si128(_mm_and_si128(_mm_srli_epi32(c, 6), _mm_set1_epi32(0x1F)),
                                  _mm_slli_epi32(lo, 8)),
                     _mm_set1_epi32(0x80C0));
    const __m128i w2 =
        _mm_or_si128(_mm_or_si128(_mm_and_si128(_mm_srli_epi32(c, 12), _mm_set1_epi32(0x0F)),
                                  _mm_or_si128(_mm_slli_epi32(mid, 8), _mm_slli_epi32(lo, 16))),
                     _mm_set1_epi32(0x8080E0));
    const __m128i w3 = _mm_or_si128(
        _mm_or_si128(_mm_and_si128(_mm_srli_epi32(c, 18), _mm_set1_epi32(0x07)),
                     _mm_or_si128(_mm_slli_epi32(hi, 8), _mm_slli_epi32(mid, 16))),
        _mm_or_si128(_mm_slli_epi32(lo, 24), _mm_set1_epi32(static_cast<int>(0x808080F0u))));
    __m128i w = _mm_or_si128(_mm_and_si128(k1, w1), _mm_andnot_si128(k1, c));
    w = _mm_or_si128(_mm_and_si128(k2, w2), _mm_andnot_si128(k2, w));
    w = _mm_or_si128(_mm_and_si128(k3, w3), _mm_andnot_si128(k3, w));
    const __m128i len = _mm_sub_epi32(_mm_sub_epi32(_mm_sub_epi32(_mm_set1_epi32(1), k1), k2), k3);
    _mm_storeu_si128(reinterpret_cast<__m128i*>(words), w);
    _mm_storeu_si128(reinterpret_cast<__m128i*>(lens), len);
}

// 32-bit lanes equal to `value`: one bit per lane.
inline unsigned equal32(V128 x, uint32_t value) {
    const __m128i v = _mm_set1_epi32(static_cast<int>(value));
    return static_cast<unsigned>(_mm_movemask_ps(_mm_castsi128_ps(_mm_cmpeq_epi32(x.v, v))));
}

// Per-lane counts of 16-bit units: start from zero32(), add with
// add_at_least16 / add_masked_equal16 (each adds at most 1 per lane, so at
// most 65535 times between reads), read with sum16.
inline V128 add_at_least16(V128 acc, V128 x, uint16_t floor) {
    const __m128i d = _mm_subs_epu16(_mm_set1_epi16(static_cast<short>(floor)), x.v);
    return {_mm_sub_epi16(acc.v, _mm_cmpeq_epi16(d, _mm_setzero_si128()))};
}

inline V128 add_masked_equal16(V128 acc, V128 x, uint16_t mask, uint16_t value) {
    const __m128i t = _mm_cmpeq_epi16(_mm_and_si128(x.v, _mm_set1_epi16(static_cast<short>(mask))),
                                      _mm_set1_epi16(static_cast<short>(value)));
    return {_mm_sub_epi16(acc.v, t)};
}

inline uint64_t sum16(V128 acc) {
    // pairs of lanes into 32-bit sums, then the four of those
    const __m128i lo = _mm_and_si128(acc.v, _mm_set1_epi32(0xFFFF));
    const __m128i hi = _mm_srli_epi32(acc.v, 16);
    return sum32(V128{_mm_add_epi32(lo, hi)});
}

// The UTF-8 forms of eight units none of which is a surrogate, as in
// utf8_words: at most 3 bytes each.
inline void utf8_words16(V128 x, uint32_t* words, uint16_t* lens) {
    const __m128i c = x.v;
    const __m128i z = _mm_setzero_si128();
    const __m128i two = _mm_cmpeq_epi16(_mm_subs_epu16(_mm_set1_epi16(0x80), c), z);
    const __m128i three = _mm_cmpeq_epi16(_mm_subs_epu16(_mm_set1_epi16(0x800), c), z);
    const __m128i six = _mm_set1_epi16(0x3F), mark = _mm_set1_epi16(0x80);
    auto pick = [](__m128i m, __m128i a, __m128i b) {
        return _mm_or_si128(_mm_and_si128(m, a), _mm_andnot_si128(m, b));
    };
    const __m128i lead =
        pick(three, _mm_or_si128(_mm_srli_epi16(c, 12), _mm_set1_epi16(0xE0)),
             pick(two, _mm_or_si128(_mm_srli_epi16(c, 6), _mm_set1_epi16(0xC0)), c));
    const __m128i last = _mm_or_si128(_mm_and_si128(c, six), mark);
    const __m128i middle = _mm_or_si128(_mm_and_si128(_mm_srli_epi16(c, 6), six), mark);
    const __m128i second = pick(three, middle, last);
    const __m128i first2 = _mm_or_si128(lead, _mm_slli_epi16(second, 8));
    _mm_storeu_si128(reinterpret_cast<__m128i*>(words), _mm_unpacklo_epi16(first2, last));
    _mm_storeu_si128(reinterpret_cast<__m128i*>(words + 4), _mm_unpackhi_epi16(first2, last));
    _mm_storeu_si128(reinterpret_cast<__m128i*>(lens),
                     _mm_sub_epi16(_mm_sub_epi16(_mm_set1_epi16(1), two), three));
}

// For each of the 16 positions from p: the code point of a character of at
// most 3 bytes that would start there, in 16 bits (a lone 0x80 is itself).
// Reads p[0] to p[17]; what a position that starts nothing gets is of no use.
inline void utf8_units16(const unsigned char* p, uint16_t* out) {
    const __m128i z = _mm_setzero_si128();
    const __m128i a = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p));
    const __m128i b = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p + 1));
    const __m128i c = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p + 2));
    const __m128i six = _mm_set1_epi16(0x3F);
    auto half = [&](__m128i c0, __m128i c1, __m128i c2) {
        const __m128i two = _mm_cmpgt_epi16(c0, _mm_set1_epi16(0xBF));
        const __m128i three = _mm_cmpgt_epi16(c0, _mm_set1_epi16(0xDF));
        const __m128i t1 = _mm_and_si128(c1, six);
        const __m128i v2 =
            _mm_or_si128(_mm_slli_epi16(_mm_and_si128(c0, _mm_set1_epi16(0x1F)), 6), t1);
        const __m128i v3 = _mm_or_si128(_mm_or_si128(_mm_slli_epi16(c0, 12), _mm_slli_epi16(t1, 6)),
                                        _mm_and_si128(c2, six));
        const __m128i v = _mm_or_si128(_mm_andnot_si128(two, c0), _mm_and_si128(two, v2));
        return _mm_or_si128(_mm_andnot_si128(three, v), _mm_and_si128(three, v3));
    };
    _mm_storeu_si128(
        reinterpret_cast<__m128i*>(out),
        half(_mm_unpacklo_epi8(a, z), _mm_unpacklo_epi8(b, z), _mm_unpacklo_epi8(c, z)));
    _mm_storeu_si128(
        reinterpret_cast<__m128i*>(out + 8),
        half(_mm_unpackhi_epi8(a, z), _mm_unpackhi_epi8(b, z), _mm_unpackhi_epi8(c, z)));
}

// 16-bit lanes holding a surrogate or 0: one bit per lane.
inline unsigned surrogate_or_zero16(V128 x) {
    const __m128i s =
        _mm_cmpeq_epi16(_mm_and_si128(x.v, _mm_set1_epi16(static_cast<short>(0xF800))),
                        _mm_set1_epi16(static_cast<short>(0xD800)));
    return lanes16(_mm_or_si128(s, _mm_cmpeq_epi16(x.v, _mm_setzero_si128())));
}

// Eight UTF-16 units as code points in two groups of 4, each first half of a
// pair joined with the unit after it (`next` after the last lane). The lanes
// of second halves are left as they are, for the caller to drop.
inline void join_pairs16(V128 x, uint16_t next, V128& lo, V128& hi) {
    const __m128i z = _mm_setzero_si128();
    const __m128i after = _mm_insert_epi16(_mm_srli_si128(x.v, 2), next, 7);
    const __m128i first =
        _mm_cmpeq_epi16(_mm_and_si128(x.v, _mm_set1_epi16(static_cast<short>(0xFC00))),
                        _mm_set1_epi16(static_cast<short>(0xD800)));
    // (first - 0xD800) << 10 | second & 0x3FF, + 0x10000, as one sum
    const __m128i bias = _mm_set1_epi32(static_cast<int>(0x10000u - (0xD800u << 10)));
    const __m128i ten = _mm_set1_epi32(0x3FF);
    auto half = [&](__m128i u, __m128i a, __m128i m) {
        const __m128i pair =
            _mm_add_epi32(_mm_add_epi32(_mm_slli_epi32(u, 10), _mm_and_si128(a, ten)), bias);
        return _mm_or_si128(_mm_and_si128(m, pair), _mm_andnot_si128(m, u));
    };
    lo.v = half(_mm_unpacklo_epi16(x.v, z), _mm_unpacklo_epi16(after, z),
                _mm_unpacklo_epi16(first, first));
    hi.v = half(_mm_unpackhi_epi16(x.v, z), _mm_unpackhi_epi16(after, z),
                _mm_unpackhi_epi16(first, first));
}

inline void store32(V128 x, uint32_t* out) {
    _mm_storeu_si128(reinterpret_cast<__m128i*>(out), x.v);
}

#else // the portable form: the same answers, one lane at a time

struct V128 {
    unsigned char b[16];

    uint16_t u16(int i) const {
        uint16_t u;
        std::memcpy(&u, b + 2 * i, 2);
        return u;
    }
    uint32_t u32(int i) const {
        uint32_t u;
        std::memcpy(&u, b + 4 * i, 4);
        return u;
    }
};

inline V128 load(const void* p) {
    V128 x;
    std::memcpy(x.b, p, 16);
    return x;
}

inline unsigned high8(V128 x) {
    unsigned m = 0;
    for (int i = 0; i < 16; ++i)
        m |= static_cast<unsigned>(x.b[i] >> 7) << i;
    return m;
}

inline unsigned equal8(V128 x, unsigned char v) {
    unsigned m = 0;
    for (int i = 0; i < 16; ++i)
        m |= static_cast<unsigned>(x.b[i] == v) << i;
    return m;
}

template <int K> unsigned bit8(V128 x) {
    unsigned m = 0;
    for (int i = 0; i < 16; ++i)
        m |= static_cast<unsigned>((x.b[i] >> K) & 1) << i;
    return m;
}

template <class U16> void widen8_to16(V128 x, U16* out) {
    for (int i = 0; i < 16; ++i)
        out[i] = static_cast<U16>(x.b[i]);
}

inline void widen8_to32(V128 x, uint32_t* out) {
    for (int i = 0; i < 16; ++i)
        out[i] = x.b[i];
}

inline unsigned at_least16(V128 x, uint16_t floor) {
    unsigned m = 0;
    for (int i = 0; i < 8; ++i)
        m |= static_cast<unsigned>(x.u16(i) >= floor) << i;
    return m;
}

inline unsigned masked_equal16(V128 x, uint16_t mask, uint16_t value) {
    unsigned m = 0;
    for (int i = 0; i < 8; ++i)
        m |= static_cast<unsigned>((x.u16(i) & mask) == value) << i;
    return m;
}

inline void narrow16_to8(V128 a, V128 b, char* out) {
    for (int i = 0; i < 8; ++i) {
        out[i] = static_cast<char>(a.u16(i));
        out[8 + i] = static_cast<char>(b.u16(i));
    }
}

inline void widen16_to32(V128 x, uint32_t* out) {
    for (int i = 0; i < 8; ++i)
        out[i] = x.u16(i);
}

inline unsigned above32(V128 x, uint32_t limit) {
    unsigned m = 0;
    for (int i = 0; i < 4; ++i)
        m |= static_cast<unsigned>(x.u32(i) > limit) << i;
    return m;
}

template <class U16> void narrow32_to16(V128 a, V128 b, U16* out) {
    for (int i = 0; i < 4; ++i) {
        out[i] = static_cast<U16>(a.u32(i));
        out[4 + i] = static_cast<U16>(b.u32(i));
    }
}

inline void narrow32_to8(V128 a, V128 b, V128 c, V128 d, char* out) {
    const V128* g[4] = {&a, &b, &c, &d};
    for (int j = 0; j < 4; ++j)
        for (int i = 0; i < 4; ++i)
            out[4 * j + i] = static_cast<char>(g[j]->u32(i));
}

inline V128 or128(V128 a, V128 b) {
    for (int i = 0; i < 16; ++i)
        a.b[i] |= b.b[i];
    return a;
}

inline V128 zero32() {
    return V128{};
}

inline V128 add_above32(V128 acc, V128 x, uint32_t limit) {
    for (int i = 0; i < 4; ++i) {
        const uint32_t n = acc.u32(i) + (x.u32(i) > limit);
        std::memcpy(acc.b + 4 * i, &n, 4);
    }
    return acc;
}

inline uint64_t sum32(V128 acc) {
    return uint64_t(acc.u32(0)) + acc.u32(1) + acc.u32(2) + acc.u32(3);
}

inline void utf8_words(V128 x, uint32_t* words, uint32_t* lens) {
    static const uint32_t marks[4] = {0, 0x80C0u, 0x8080E0u, 0x808080F0u};
    for (int i = 0; i < 4; ++i) {
        const uint32_t c = x.u32(i);
        const uint32_t k = (c > 0x7F) + (c > 0x7FF) + (c > 0xFFFF);
        uint32_t w = c;
        if (k) {
            w = marks[k] | ((c >> (6 * k)) & ((1u << (6 - k)) - 1u));
            for (uint32_t j = 1; j <= k; ++j)
                w |= ((c >> (6 * (k - j))) & 0x3Fu) << (8 * j);
        }
        words[i] = w;
        lens[i] = k + 1;
    }
}

inline unsigned equal32(V128 x, uint32_t value) {
    unsigned m = 0;
    for (int i = 0; i < 4; ++i)
        m |= static_cast<unsigned>(x.u32(i) == value) << i;
    return m;
}

inline void utf8_units16(const unsigned char* p, uint16_t* out) {
    for (int i = 0; i < 16; ++i) {
        const unsigned c0 = p[i], c1 = p[i + 1] & 0x3Fu, c2 = p[i + 2] & 0x3Fu;
        out[i] = static_cast<uint16_t>(c0 >= 0xE0   ? (c0 << 12) | (c1 << 6) | c2
                                       : c0 >= 0xC0 ? ((c0 & 0x1Fu) << 6) | c1
                                                    : c0);
    }
}

inline V128 add_at_least16(V128 acc, V128 x, uint16_t floor) {
    for (int i = 0; i < 8; ++i) {
        const uint16_t n = static_cast<uint16_t>(acc.u16(i) + (x.u16(i) >= floor));
        std::memcpy(acc.b + 2 * i, &n, 2);
    }
    return acc;
}

inline V128 add_masked_equal16(V128 acc, V128 x, uint16_t mask, uint16_t value) {
    for (int i = 0; i < 8; ++i) {
        const uint16_t n = static_cast<uint16_t>(acc.u16(i) + ((x.u16(i) & mask) == value));
        std::memcpy(acc.b + 2 * i, &n, 2);
    }
    return acc;
}

inline uint64_t sum16(V128 acc) {
    uint64_t n = 0;
    for (int i = 0; i < 8; ++i)
        n += acc.u16(i);
    return n;
}

inline void utf8_words16(V128 x, uint32_t* words, uint16_t* lens) {
    for (int i = 0; i < 8; ++i) {
        const uint32_t c = x.u16(i);
        const uint32_t last = 0x80 | (c & 0x3F);
        if (c < 0x80) {
            words[i] = c;
            lens[i] = 1;
        } else if (c < 0x800) {
            words[i] = (0xC0 | (c >> 6)) | (last << 8);
            lens[i] = 2;
        } else {
            words[i] = (0xE0 | (c >> 12)) | ((0x80 | ((c >> 6) & 0x3F)) << 8) | (last << 16);
            lens[i] = 3;
        }
    }
}

inline unsigned surrogate_or_zero16(V128 x) {
    unsigned m = 0;
    for (int i = 0; i < 8; ++i)
        m |= static_cast<unsigned>((x.u16(i) & 0xF800) == 0xD800 || x.u16(i) == 0) << i;
    return m;
}

inline void join_pairs16(V128 x, uint16_t next, V128& lo, V128& hi) {
    for (int i = 0; i < 8; ++i) {
        const uint32_t u = x.u16(i);
        const uint32_t a = i < 7 ? x.u16(i + 1) : next;
        const uint32_t c =
            (u & 0xFC00) == 0xD800 ? (((u - 0xD800u) << 10) | (a & 0x3FFu)) + 0x10000u : u;
        std::memcpy((i < 4 ? lo : hi).b + 4 * (i % 4), &c, 4);
    }
}

inline void store32(V128 x, uint32_t* out) {
    std::memcpy(out, x.b, 16);
}

#endif

} // namespace simd
} // namespace ovra_internal
