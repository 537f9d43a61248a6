// Bit tricks of the text loops, one definition per compiler, and the byte order they rely
// on: the word-at-a-time paths store several bytes with one memcpy of a word whose low
// byte comes first.
#pragma once

#include <cstdint>

#if defined(_MSC_VER) && !defined(__clang__)
#include <intrin.h>
#endif

#if defined(__BYTE_ORDER__)
static_assert(__BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__,
              "the text loops store words low byte first: a big-endian target needs them changed");
#elif !defined(_WIN32)
#error "unknown byte order; the text loops assume little-endian"
#endif

#if defined(__GNUC__) || defined(__clang__)
#define OVRA_NOINLINE __attribute__((noinline))
#define OVRA_ALWAYS_INLINE inline __attribute__((always_inline))
#elif defined(_MSC_VER)
#define OVRA_NOINLINE __declspec(noinline)
#define OVRA_ALWAYS_INLINE __forceinline
#else
#define OVRA_NOINLINE
#define OVRA_ALWAYS_INLINE inline
#endif

namespace ovra_internal {

// Number of set bits. Without the popcnt instruction (the x86-64 baseline) the builtin
// is a library call; the bit sums below are inline and cheaper.
inline unsigned popcount64(uint64_t x) noexcept {
#if (defined(__GNUC__) || defined(__clang__)) && defined(__POPCNT__)
    return static_cast<unsigned>(__builtin_popcountll(x));
#else
    x = x - ((x >> 1) & 0x5555555555555555ull);
    x = (x & 0x3333333333333333ull) + ((x >> 2) & 0x3333333333333333ull);
    x = (x + (x >> 4)) & 0x0F0F0F0F0F0F0F0Full;
    return static_cast<unsigned>((x * 0x0101010101010101ull) >> 56);
#endif
}

// Index of the lowest set bit; x must not be 0.
inline unsigned lowest_bit64(uint64_t x) noexcept {
#if defined(__GNUC__) || defined(__clang__)
    return static_cast<unsigned>(__builtin_ctzll(x));
#elif defined(_MSC_VER) && defined(_M_X64)
    unsigned long i;
    _BitScanForward64(&i, x);
    return static_cast<unsigned>(i);
#else
    unsigned i = 0;
    while (!(x & 1)) {
        x >>= 1;
        ++i;
    }
    return i;
#endif
}

} // namespace ovra_internal
