// Internal: the code-point readers and writers behind ovOvra::ConvertUTF, and
// the fast decoder ovString uses once a text is known to decode exactly.
//
// Readers decode the common well-formed sequences inline and hand everything
// else to an out-of-line reader that follows the exact rules (a bad sequence
// gives "?" and clears `exact`). Both give the same result for well-formed
// input, so the fast paths never change what a conversion returns.
#pragma once

#include "common/bits.h"
#include "ovra/ovString.h"

#include <cstddef>
#include <cstdint>
#include <cstring>

namespace ovra_internal {

constexpr unsigned int kReplacement = 0x3F; // "?", not U+FFFD, on purpose

// Units before the first 0; 0 for null.
template <class T> size_t units_before_zero(const T* p) noexcept {
    size_t n = 0;
    if (p)
        while (p[n])
            ++n;
    return n;
}

// "0" to "9" only, whatever the locale.
constexpr bool is_ascii_digit(unsigned int c) noexcept {
    return c >= '0' && c <= '9';
}

inline bool is_continuation(unsigned char b) {
    return (b & 0xC0u) == 0x80u;
}

// What UTF-8 is, written once for every loop that reads it. The leading 1 bits
// of a byte announce how many continuation bytes (0x80-0xBF) follow. A sequence
// is well-formed when all of them are there and the first lies in the lead's
// range, which is narrower for the leads that could otherwise spell an overlong
// form (E0, F0), a surrogate (ED) or a value above U+10FFFF (F4). C0, C1 and
// F5-F7 announce a length but start nothing well-formed; the readers still take
// the bytes they announce before giving "?".
struct Utf8Lead {
    int8_t announced; // continuation bytes announced; -1 for 0x80-0xBF and 0xF8-0xFF
    uint8_t lo, hi;   // range of the first continuation byte; empty (lo > hi) when
                      // nothing well-formed starts with this byte
    uint8_t bits;     // the lead's share of the code point
};

constexpr Utf8Lead utf8_lead(unsigned b) {
    if (b < 0x80)
        return {0, 1, 0, 0x7F};
    if (b < 0xC0 || b >= 0xF8)
        return {-1, 1, 0, 0};
    if (b < 0xE0)
        return {1, static_cast<uint8_t>(b < 0xC2 ? 1 : 0x80),
                static_cast<uint8_t>(b < 0xC2 ? 0 : 0xBF), 0x1F};
    if (b < 0xF0)
        return {2, static_cast<uint8_t>(b == 0xE0 ? 0xA0 : 0x80),
                static_cast<uint8_t>(b == 0xED ? 0x9F : 0xBF), 0x0F};
    if (b >= 0xF5)
        return {3, 1, 0, 0x07};
    return {3, static_cast<uint8_t>(b == 0xF0 ? 0x90 : 0x80),
            static_cast<uint8_t>(b == 0xF4 ? 0x8F : 0xBF), 0x07};
}

struct Utf8LeadTable {
    Utf8Lead lead[256];
};

constexpr Utf8LeadTable make_utf8_lead_table() {
    Utf8LeadTable t{};
    for (unsigned b = 0; b < 256; ++b)
        t.lead[b] = utf8_lead(b);
    return t;
}

inline constexpr Utf8LeadTable kUtf8 = make_utf8_lead_table();

// True when the first continuation byte after `lead` may be `b`.
inline bool utf8_second_ok(const Utf8Lead& lead, unsigned b) {
    return b >= lead.lo && b <= lead.hi;
}

// True when none of the n bytes has its top bit set; a word at a time.
inline bool all_ascii(const char* p, size_t n) noexcept {
    uint64_t high = 0;
    size_t i = 0;
    for (; i + 8 <= n; i += 8) {
        uint64_t w;
        std::memcpy(&w, p + i, 8);
        high |= w;
    }
    for (; i < n; ++i)
        high |= static_cast<unsigned char>(p[i]);
    return (high & 0x8080808080808080ull) == 0;
}

unsigned int read_utf8_slow(const char*& p, const char* end, bool& exact);
unsigned int read_utf16_slow(const ovChar16*& p, const ovChar16* end, bool& exact);

struct Utf8 {
    typedef char unit;

    static unsigned int value(unit u) { return static_cast<unsigned char>(u); }

    // True when the next 8 bytes are all below 0x80.
    static bool ascii8(const unit* p) {
        uint64_t w;
        std::memcpy(&w, p, 8);
        return (w & 0x8080808080808080ull) == 0;
    }

    static unsigned int read(const unit*& p, const unit* end, bool& exact) {
        const unsigned char* q = reinterpret_cast<const unsigned char*>(p);
        const unsigned int b = q[0];
        if (b <= 0x80) { // a lone 0x80 passes as U+0080, on purpose
            ++p;
            return b;
        }
        // Well-formed sequences decode here; the rest, by the same rules, out of line.
        const Utf8Lead& lead = kUtf8.lead[b];
        const std::ptrdiff_t k = lead.announced;
        if (k > 0 && end - p > k && utf8_second_ok(lead, q[1])) {
            unsigned int c = ((b & lead.bits) << 6) | (q[1] & 0x3Fu);
            if (k == 1) {
                p += 2;
                return c;
            }
            if (is_continuation(q[2])) {
                c = (c << 6) | (q[2] & 0x3Fu);
                if (k == 2) {
                    p += 3;
                    return c;
                }
                if (is_continuation(q[3])) {
                    p += 4;
                    return (c << 6) | (q[3] & 0x3Fu);
                }
            }
        }
        return read_utf8_slow(p, end, exact);
    }

    // At most 4 bytes whatever c is; values above U+1FFFFF lose their top bits.
    static size_t size(unsigned int c) { return 1 + (c >= 0x80) + (c > 0x7FF) + (c > 0xFFFF); }

    static void put(unsigned int c, size_t k, unit* o) {
        static const unsigned char lead[4] = {0x00, 0xC0, 0xE0, 0xF0};
        if (k == 0) {
            o[0] = static_cast<unit>(c);
            return;
        }
        o[0] = static_cast<unit>(lead[k] | ((c >> (6 * k)) & ((1u << (6 - k)) - 1u)));
        for (size_t i = 1; i <= k; ++i)
            o[i] = static_cast<unit>(0x80u | ((c >> (6 * (k - i))) & 0x3Fu));
    }

    // Stores c, or "?" when it does not fit the room left (at least one unit).
    static size_t store(unsigned int c, unit*& o, const unit* end, bool& exact) {
        if (c < 0x80) {
            *o++ = static_cast<unit>(c);
            return 1;
        }
        const size_t n = size(c);
        if (static_cast<size_t>(end - o) < n) {
            exact = false;
            *o++ = static_cast<unit>(kReplacement);
            return 1;
        }
        put(c, n - 1, o);
        o += n;
        return n;
    }
};

struct Utf16 {
    typedef ovChar16 unit;

    static unsigned int value(unit u) { return static_cast<uint16_t>(u); }

    static bool ascii8(const unit* p) {
        unsigned int acc = 0;
        for (int i = 0; i < 8; ++i)
            acc |= static_cast<uint16_t>(p[i]);
        return acc < 0x80;
    }

    static unsigned int read(const unit*& p, const unit* end, bool& exact) {
        const unsigned int u = static_cast<uint16_t>(*p);
        if (u < 0xD800 || u > 0xDFFF) {
            ++p;
            return u;
        }
        return read_utf16_slow(p, end, exact);
    }

    static size_t size(unsigned int c) { return c >= 0x10000 ? 2 : 1; }

    // Surrogate values kept in UTF-32 text pass through as single units; bits
    // above U+10FFFF are dropped from pairs.
    static size_t store(unsigned int c, unit*& o, const unit* end, bool& exact) {
        if (c < 0x10000) {
            *o++ = static_cast<unit>(c);
            return 1;
        }
        if (end - o < 2) {
            exact = false;
            *o++ = static_cast<unit>(kReplacement);
            return 1;
        }
        const unsigned int v = c - 0x10000;
        o[0] = static_cast<unit>(0xD800u | ((v >> 10) & 0x3FFu));
        o[1] = static_cast<unit>(0xDC00u | (v & 0x3FFu));
        o += 2;
        return 2;
    }
};

struct Utf32 {
    typedef unsigned int unit;

    static unsigned int value(unit u) { return u; }

    static bool ascii8(const unit* p) {
        unsigned int acc = 0;
        for (int i = 0; i < 8; ++i)
            acc |= p[i];
        return acc < 0x80;
    }

    // UTF-32 input is taken as it is.
    static unsigned int read(const unit*& p, const unit*, bool&) { return *p++; }

    static size_t size(unsigned int) { return 1; }

    static size_t store(unsigned int c, unit*& o, const unit*, bool&) {
        *o++ = c;
        return 1;
    }
};

// The reading loop of a whole conversion from where a fast loop stopped: reads
// and stores while input remains and the output is not full, then ends the
// output the way every conversion does.
template <class R, class W>
size_t finish(const typename R::unit* p, const typename R::unit* end, typename W::unit* dst,
              typename W::unit* o, const typename W::unit* oend, unsigned int last, bool& exact) {
    while (p < end && o < oend) {
        if (end - p >= 8 && oend - o >= 8 && R::ascii8(p)) {
            for (int i = 0; i < 8; ++i)
                o[i] = static_cast<typename W::unit>(R::value(p[i]));
            p += 8;
            o += 8;
            last = R::value(p[-1]);
            continue;
        }
        last = R::read(p, end, exact);
        W::store(last, o, oend, exact);
    }
    if (last != 0 && o < oend)
        *o++ = 0;
    return static_cast<size_t>(o - dst);
}

// One whole conversion: with no output (null dst or cap 0) the size needed
// including one terminator; otherwise the units written. A terminator is added
// unless the last code read was 0; output that fills up gets none.
template <class R, class W>
size_t convert(const typename R::unit* src, size_t n, typename W::unit* dst, size_t cap,
               bool& exact) {
    exact = true;
    if (!src)
        n = 0;
    const typename R::unit* p = src;
    const typename R::unit* const end = src + n;
    unsigned int last = kReplacement;

    if (!dst || cap == 0) {
        size_t count = 0;
        while (p < end) {
            if (end - p >= 8 && R::ascii8(p)) {
                p += 8;
                count += 8;
                last = R::value(p[-1]);
                continue;
            }
            last = R::read(p, end, exact);
            count += W::size(last);
        }
        return last == 0 ? count : count + 1;
    }

    return finish<R, W>(p, end, dst, dst, dst + cap, last, exact);
}

// ConvertUTF's conversions with their fast paths; each gives exactly what
// convert<R, W> gives, which is what proves them.
size_t utf8_to_utf16(const char* src, size_t n, ovChar16* dst, size_t cap, bool& exact);
size_t utf8_to_utf32(const char* src, size_t n, unsigned int* dst, size_t cap, bool& exact);
size_t utf16_to_utf8(const ovChar16* src, size_t n, char* dst, size_t cap, bool& exact);
size_t utf16_to_utf32(const ovChar16* src, size_t n, unsigned int* dst, size_t cap, bool& exact);
size_t utf32_to_utf8(const unsigned int* src, size_t n, char* dst, size_t cap, bool& exact);
size_t utf32_to_utf16(const unsigned int* src, size_t n, ovChar16* dst, size_t cap, bool& exact);

// Copies n bytes known to be ASCII as code points.
void copy_ascii(const char* src, size_t n, unsigned int* dst);

// Copies n bytes of ASCII into both forms; false (and the outputs unfinished)
// as soon as a byte is not ASCII.
bool widen_ascii(const char* src, size_t n, unsigned int* dst32, ovChar16* dst16);

// Decodes n UTF-16 units into dst, which has room for n + 1 code points, and
// ends them with 0. False when the units do not convert exactly (dst then
// holds nothing of use); otherwise `count` is the code points written, the
// terminator not counted, and `zero` says whether one of them is 0.
bool decode_exact_utf16(const ovChar16* src, size_t n, unsigned int* dst, size_t& count,
                        bool& zero);

// Index of the first 0 among n code points; n when there is none.
size_t first_zero(const unsigned int* p, size_t n);

// True when n bytes of UTF-8 convert exactly; `count` is then their code
// points (no terminator counted).
bool count_exact_utf8(const char* src, size_t n, size_t& count);

// Decodes n bytes already known to convert exactly (a counting pass said so)
// into dst, which has room for every code point and the terminator.
void decode_exact_utf8(const char* src, size_t n, unsigned int* dst);

} // namespace ovra_internal

namespace ovra_internal {

// Messages that a failed or refused conversion holds instead of the text.
inline constexpr char kFailedUtf8[] = "Failed to construct string from UTF8 string.";
inline constexpr char kFailedUtf16[] = "Failed to construct string from UTF16 string.";
inline constexpr char kUnsafeAscii[] = "Error: this string contains unsafe/non-ASCII characters.";
inline constexpr char kFailedCpIn[] = "Failed to convert to ovString.";
inline constexpr char kFailedCpOut[] = "Failed to convert to 8-bit encoding.";

// What a code page gives for text it cannot take: status 1, and the message
// (a plain, not failed, string) as the result.
inline ovString refused_cp_in(int& status) {
    status = 1;
    return ovString::literal(kFailedCpIn);
}
inline utString refused_cp_out(int& status) {
    status = 1;
    return utString(utSTRING_LIT, kFailedCpOut);
}

// A copy of s as callers of the encodings get it: never failed, so bad text
// shows only in the status the caller already has.
inline ovString unfailed(const ovString& s) {
    return ovString(s);
}

} // namespace ovra_internal
