#include "strings/utf_codec.h"

#include "strings/simd.h"

#include <algorithm>

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

// Every class is a formula on the bytes' bits, b[k] marking the bytes with
// bit k set, so a block's classes cost a few word operations.
constexpr BlockMasks classes_of(const uint64_t (&b)[8]) {
    const uint64_t low4 = b[3] | b[2] | b[1] | b[0];
    BlockMasks m{};
    m.ge80 = b[7];
    m.geC0 = b[7] & b[6];
    m.geE0 = m.geC0 & b[5];
    m.geF0 = m.geE0 & b[4];
    m.geC2 = m.geC0 & (b[5] | b[4] | b[3] | b[2] | b[1]);
    m.geF5 = m.geF0 & (b[3] | (b[2] & (b[1] | b[0])));
    m.ge90 = b[7] & (b[6] | b[5] | b[4]);
    m.geA0 = b[7] & (b[6] | b[5]);
    m.eq80 = b[7] & ~(b[6] | b[5] | b[4] | low4);
    m.eqE0 = m.geE0 & ~(b[4] | low4);
    m.eqED = m.geE0 & ~b[4] & b[3] & b[2] & ~b[1] & b[0];
    m.eqF0 = m.geF0 & ~low4;
    m.eqF4 = m.geF0 & ~b[3] & b[2] & ~b[1] & ~b[0];
    return m;
}

constexpr bool classes_match_the_scanner() {
    for (unsigned v = 0; v < 256; ++v) {
        uint64_t b[8] = {};
        for (int k = 0; k < 8; ++k)
            b[k] = (v >> k) & 1;
        const BlockMasks m = classes_of(b);
        const uint64_t want[13] = {v >= 0x80, v >= 0xC0,          v >= kFirstLead, v >= 0xE0,
                                   v >= 0xF0, v >= kPastLastLead, v >= kF0Floor,   v >= kE0Floor,
                                   v == 0x80, v == 0xE0,          v == 0xED,       v == 0xF0,
                                   v == 0xF4};
        const uint64_t got[13] = {m.ge80, m.geC0, m.geC2, m.geE0, m.geF0, m.geF5, m.ge90,
                                  m.geA0, m.eq80, m.eqE0, m.eqED, m.eqF0, m.eqF4};
        for (int i = 0; i < 13; ++i)
            if (want[i] != got[i])
                return false;
    }
    return true;
}
static_assert(classes_match_the_scanner(), "a byte class formula is wrong");

// Inlined so the loops keep its constants in registers.
OVRA_ALWAYS_INLINE BlockMasks classify(const unsigned char* p) {
    using namespace simd;
    uint64_t b[8] = {};
    for (int j = 0; j < 4; ++j) {
        const V128 x = load(p + 16 * j);
        const int at = 16 * j;
        b[7] |= uint64_t(bit8<7>(x)) << at;
        b[6] |= uint64_t(bit8<6>(x)) << at;
        b[5] |= uint64_t(bit8<5>(x)) << at;
        b[4] |= uint64_t(bit8<4>(x)) << at;
        b[3] |= uint64_t(bit8<3>(x)) << at;
        b[2] |= uint64_t(bit8<2>(x)) << at;
        b[1] |= uint64_t(bit8<1>(x)) << at;
        b[0] |= uint64_t(bit8<0>(x)) << at;
    }
    return classes_of(b);
}

// True when a block holds a byte with the top bit set.
inline bool any_high(const unsigned char* p) {
    using namespace simd;
    const V128 x = or128(or128(load(p), load(p + 16)), or128(load(p + 32), load(p + 48)));
    return high8(x) != 0;
}

// What one block leaves to the next: the bytes of it that continue a
// character, and which of the leads with a narrow second-byte range came last.
struct BlockCarry {
    uint64_t cover = 0;
    uint64_t e0 = 0, ed = 0, f0 = 0, f4 = 0;
};

// Checks a block of exact text, that is well-formed UTF-8 plus lone 0x80
// bytes, and returns the bytes that break a rule (none when the block is
// fine). In such text a byte continues a character exactly when a lead byte
// close enough before it covers it; 0x80 is a character of its own only when
// nothing covers it. So every rule is a test on whole bit masks, with no
// branch per byte. `covered` gets the bytes that continue a character.
inline uint64_t check_block(const BlockMasks& m, BlockCarry& carry, uint64_t& covered) {
    const uint64_t cont = m.ge80 & ~m.geC0;
    covered = (m.geC0 << 1) | (m.geE0 << 2) | (m.geF0 << 3) | carry.cover;
    uint64_t bad = covered & ~cont;              // a character cut short
    bad |= cont & ~covered & ~m.eq80;            // a stray continuation byte
    bad |= (m.geC0 & ~m.geC2) | m.geF5;          // bytes that never start anything
    bad |= ((m.eqE0 << 1) | carry.e0) & ~m.geA0; // overlong three bytes
    bad |= ((m.eqED << 1) | carry.ed) & m.geA0;  // surrogates
    bad |= ((m.eqF0 << 1) | carry.f0) & ~m.ge90; // overlong four bytes
    bad |= ((m.eqF4 << 1) | carry.f4) & m.ge90;  // above U+10FFFF
    carry.cover = (m.geC0 >> 63) | (m.geE0 >> 62) | (m.geF0 >> 61);
    carry.e0 = m.eqE0 >> 63;
    carry.ed = m.eqED >> 63;
    carry.f0 = m.eqF0 >> 63;
    carry.f4 = m.eqF4 >> 63;
    return bad;
}

// Decides block by block whether a text is exact, and counts its characters
// and those of them that take four bytes (two UTF-16 units).
class ExactScanner {
public:
    // Checks one block and counts the characters that start in it among the
    // bytes marked in `counted`.
    void block(const unsigned char* p, uint64_t counted = ~uint64_t(0)) {
        if (m_carry.cover == 0 && !any_high(p)) { // plain ASCII
            m_chars += popcount64(counted);
            return;
        }
        const BlockMasks m = classify(p);
        uint64_t covered;
        m_bad |= check_block(m, m_carry, covered);
        m_chars += popcount64(~covered & counted);
        m_quads += popcount64(m.geF0 & counted);
    }

    // True when no block broke a rule and no character runs past the end.
    bool exact() const { return (m_bad | m_carry.cover) == 0; }
    size_t chars() const { return m_chars; }
    size_t quads() const { return m_quads; }

private:
    BlockCarry m_carry;
    uint64_t m_bad = 0;
    size_t m_chars = 0, m_quads = 0;
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

// For decoding a character as one word read from its lead byte on: the bits
// of the word that belong to it (low half) and how far its value is shifted
// up when read as if it had four bytes (high half).
struct WordInfo {
    uint64_t info[256];
};

constexpr WordInfo make_word_info() {
    WordInfo t{};
    for (unsigned b = 0; b < 256; ++b) {
        const unsigned info = kLeadInfo.info[b];
        const unsigned extra = info >> 8;
        uint32_t mask = info & 0xFFu; // the lead's bits, lowest byte first
        for (unsigned i = 1; i <= extra; ++i)
            mask |= 0x3Fu << (8 * i);
        t.info[b] = mask | (uint64_t(6 * (3 - extra)) << 32);
    }
    return t;
}

constexpr WordInfo kWordInfo = make_word_info();

// Decodes the character starting at p, reading 4 bytes whatever its length.
inline unsigned int decode_at(const unsigned char* p) {
    uint32_t w;
    std::memcpy(&w, p, 4); // little-endian: the lead byte lowest
    const uint64_t info = kWordInfo.info[p[0]];
    const uint32_t x = w & static_cast<uint32_t>(info);
    const uint32_t all =
        ((x & 0xFFu) << 18) | ((x & 0x3F00u) << 4) | ((x >> 10) & 0xFC0u) | (x >> 24);
    return all >> (info >> 32);
}

// Exact text counted by the block scanner, or nothing (false) when it is not.
bool scan_exact_utf8(const char* src, size_t n, ExactScanner& scan) {
    const unsigned char* p = reinterpret_cast<const unsigned char*>(src);
    const unsigned char* const end = p + n;
    for (; static_cast<size_t>(end - p) >= kBlock; p += kBlock)
        scan.block(p);
    const TailBlock tail(p, static_cast<size_t>(end - p));
    scan.block(tail.bytes, tail.valid);
    return scan.exact();
}

// The writers of the block decoders, which always have room for a whole
// character: UTF-16 stores one unaligned word of which only its own units count.
struct FastUtf16 {
    typedef ovChar16 unit;
    typedef Utf16 Writer;
    static void ascii(simd::V128 x, unit* o) { simd::widen8_to16(x, o); }
    static unit* put(unsigned int c, unit* o) {
        if (c < 0x10000) { // nearly always, so the branch is cheap
            *o = static_cast<unit>(c);
            return o + 1;
        }
        const unsigned int v = c - 0x10000u;
        o[0] = static_cast<unit>(0xD800u | ((v >> 10) & 0x3FFu));
        o[1] = static_cast<unit>(0xDC00u | (v & 0x3FFu));
        return o + 2;
    }
};

struct FastUtf32 {
    typedef unsigned int unit;
    typedef Utf32 Writer;
    static void ascii(simd::V128 x, unit* o) { simd::widen8_to32(x, o); }
    static unit* put(unsigned int c, unit* o) {
        *o = c;
        return o + 1;
    }
};

// Writes the characters that start at `starts` in a checked block (the 2
// bytes after it may be read); `fours` marks the starts of 4-byte ones. Every
// shorter character is worked out for all positions at once, so that each
// costs no more than its store.
template <class W>
typename W::unit* put_starts(const unsigned char* b, uint64_t starts, uint64_t fours,
                             typename W::unit* o) {
    uint16_t units[kBlock];
    for (size_t j = 0; j < kBlock; j += 16)
        simd::utf8_units16(b + j, units + j);
    for (; starts; starts &= starts - 1) {
        const unsigned at = lowest_bit64(starts);
        if ((fours >> at) & 1) // rare, so the branch is cheap
            o = W::put(decode_at(b + at), o);
        else
            *o++ = static_cast<typename W::unit>(units[at]);
    }
    return o;
}

} // namespace

bool count_exact_utf8(const char* src, size_t n, size_t& count) {
    ExactScanner scan;
    const bool exact = scan_exact_utf8(src, n, scan);
    count = scan.chars();
    return exact;
}

void decode_exact_utf8(const char* src, size_t n, unsigned int* dst) {
    const unsigned char* p = reinterpret_cast<const unsigned char*>(src);
    const unsigned char* const end = p + n;
    size_t k = 0;
    uint64_t carry = 0; // bytes of this block that continue the last one's character
    // Character starts are known for a whole block at once (see check_block).
    auto decode_block = [&](const unsigned char* b, uint64_t valid) {
        const BlockMasks m = classify(b);
        const uint64_t covered = (m.geC0 << 1) | (m.geE0 << 2) | (m.geF0 << 3) | carry;
        carry = (m.geC0 >> 63) | (m.geE0 >> 62) | (m.geF0 >> 61);
        k = static_cast<size_t>(put_starts<FastUtf32>(b, ~covered & valid, m.geF0, dst + k) - dst);
    };
    while (static_cast<size_t>(end - p) >= kBlock + 3) {
        if (carry == 0 && !any_high(p)) { // plain ASCII
            for (size_t j = 0; j < kBlock; j += 16)
                simd::widen8_to32(simd::load(p + j), dst + k + j);
            k += kBlock;
        } else {
            decode_block(p, ~uint64_t(0));
        }
        p += kBlock;
    }
    while (p < end) {
        const size_t left = std::min(kBlock, static_cast<size_t>(end - p));
        const TailBlock tail(p, static_cast<size_t>(end - p)); // with the overhang decode_at reads
        if (carry == 0 && !any_high(tail.bytes)) {             // short texts are mostly ASCII
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

void copy_ascii(const char* src, size_t n, unsigned int* dst) {
    if (n < 16) {
        for (size_t i = 0; i < n; ++i)
            dst[i] = static_cast<unsigned char>(src[i]);
        return;
    }
    size_t i = 0;
    for (; n - i >= 16; i += 16)
        simd::widen8_to32(simd::load(src + i), dst + i);
    if (i < n) // the last 16 again, overlapping what is done
        simd::widen8_to32(simd::load(src + n - 16), dst + n - 16);
}

bool widen_ascii(const char* src, size_t n, unsigned int* dst32, ovChar16* dst16) {
    const unsigned char* p = reinterpret_cast<const unsigned char*>(src);
    size_t i = 0;
    for (; n - i >= kBlock; i += kBlock) {
        if (any_high(p + i))
            return false;
        for (size_t j = 0; j < kBlock; j += 16) {
            const simd::V128 x = simd::load(p + i + j);
            simd::widen8_to32(x, dst32 + i + j);
            simd::widen8_to16(x, dst16 + i + j);
        }
    }
    for (; i < n; ++i) {
        if (p[i] >= 0x80)
            return false;
        dst32[i] = p[i];
        dst16[i] = static_cast<ovChar16>(p[i]);
    }
    return true;
}

namespace {

// UTF-8 into a buffer, a checked block at a time while there is room for a
// whole block; the first block that breaks a rule, and whatever does not fill
// a block, go through the reader that follows the rules one character at a
// time. A character that runs into the next block is written once that block
// has been checked.
template <class W>
size_t decode_utf8(const char* src, size_t n, typename W::unit* dst, size_t cap, bool& exact) {
    exact = true;
    if (!src)
        n = 0;
    const unsigned char* p = reinterpret_cast<const unsigned char*>(src);
    const unsigned char* const end = p + n;
    typename W::unit* o = dst;
    const typename W::unit* const oend = dst + cap;
    const unsigned char* pending = nullptr; // the start of a character not yet written
    unsigned int last = kReplacement;
    BlockCarry carry;
    // A block writes at most one unit per byte, and the pending character two.
    while (static_cast<size_t>(end - p) >= kBlock + 3 && oend - o >= std::ptrdiff_t(kBlock + 2)) {
        if (carry.cover == 0 && !any_high(p)) {
            for (size_t j = 0; j < kBlock; j += 16)
                W::ascii(simd::load(p + j), o + j);
            o += kBlock;
            p += kBlock;
            last = p[-1];
            continue;
        }
        const BlockMasks m = classify(p);
        uint64_t covered;
        if (check_block(m, carry, covered))
            break;
        if (pending)
            o = W::put(last = decode_at(pending), o);
        uint64_t starts = ~covered;
        pending = nullptr;
        if (carry.cover) {
            // The last character goes on into the next block; its lead is the
            // last of the leads among the block's last three bytes.
            const uint64_t leads = m.geC0 >> 61;
            const unsigned top = 61 + ((leads & 4) ? 2 : (leads & 2) ? 1 : 0);
            pending = p + top;
            starts &= ~(uint64_t(1) << top);
        }
        if (starts) {
            o = put_starts<W>(p, starts, m.geF0, o);
            last = o[-1]; // only whether it is 0 counts, and a pair's second half is not
        }
        p += kBlock;
    }
    const unsigned char* r = pending ? pending : p;
    // What is left (all of a short text) is taken a copy of at most one block
    // at a time: checked, and written at once when there is room for it.
    if (static_cast<size_t>(end - r) < kBlock + 3 + 4) {
        while (r < end) {
            const size_t left = static_cast<size_t>(end - r);
            const size_t m = std::min(kBlock, left);
            unsigned char piece[kBlock + 3] = {}; // and the bytes decode_at reads past a start
            std::memcpy(piece, r, std::min(left, sizeof piece));
            const uint64_t valid = m == kBlock ? ~uint64_t(0) : (uint64_t(1) << m) - 1;
            if (!any_high(piece)) { // ASCII, the zeros after it included
                if (m > static_cast<size_t>(oend - o))
                    break;
                for (size_t i = 0; i < m; ++i)
                    o[i] = static_cast<typename W::unit>(piece[i]);
                o += m;
                last = piece[m - 1];
                r += m;
                continue;
            }
            const BlockMasks mk = classify(piece);
            BlockCarry fresh; // r is where a character starts
            uint64_t covered;
            if (check_block(mk, fresh, covered) & valid)
                break;
            uint64_t starts = ~covered & valid;
            size_t next = m;
            if ((covered & ~valid) || fresh.cover) { // the last character runs past the piece
                if (left == m)
                    break; // cut short by the end of the text: the rules say how
                const uint64_t leads = mk.geC0 >> 61;
                next = 61 + ((leads & 4) ? 2 : (leads & 2) ? 1 : 0);
                starts &= ~(uint64_t(1) << next);
            }
            const size_t units = popcount64(starts) + popcount64(starts & mk.geF0);
            if (units > static_cast<size_t>(oend - o))
                break;
            if (starts) {
                o = put_starts<W>(piece, starts, mk.geF0, o);
                last = o[-1];
            }
            r += next;
        }
    }
    return finish<Utf8, typename W::Writer>(reinterpret_cast<const char*>(r), src + n, dst, o, oend,
                                            last, exact);
}

} // namespace

namespace {

// Eight code points as UTF-8, but those of the lanes in `drop`, each written
// as one word of which only its own bytes count. Worked out first, so that a
// group writes only what the room left takes.
struct Utf8Group {
    uint32_t words[8], lens[8];
    size_t bytes;

    // Code points, in two groups of 4.
    Utf8Group(simd::V128 a, simd::V128 b) {
        simd::utf8_words(a, words, lens);
        simd::utf8_words(b, words + 4, lens + 4);
        sum();
    }
    // UTF-16 units with no surrogate among them.
    explicit Utf8Group(simd::V128 x) {
        uint16_t n[8];
        simd::utf8_words16(x, words, n);
        for (int i = 0; i < 8; ++i)
            lens[i] = n[i];
        sum();
    }
    // UTF-16 units whose surrogates pair up, the first halves in `highs`,
    // but for the lanes in `drop`.
    Utf8Group(simd::V128 x, unsigned highs, unsigned drop = 0) {
        simd::V128 lo, hi;
        simd::join_pairs16(x, 0, lo, hi);
        simd::utf8_words(lo, words, lens);
        simd::utf8_words(hi, words + 4, lens + 4);
        for (unsigned d = drop | (highs << 1); d; d &= d - 1)
            lens[lowest_bit64(d)] = 0;
        sum();
    }
    // Writes the group when its bytes fit, else nothing; the end of the room
    // is never written past.
    bool put(char*& o, const char* end) const {
        const size_t room = static_cast<size_t>(end - o);
        if (bytes + 4 <= room) { // each word writes 4 bytes, a dropped lane's too
            o = put_words(o);
        } else if (bytes <= room) {
            char last[8 * 4 + 4];
            put_words(last);
            std::memcpy(o, last, bytes);
            o += bytes;
        } else {
            return false;
        }
        return true;
    }

private:
    void sum() {
        bytes =
            size_t(lens[0]) + lens[1] + lens[2] + lens[3] + lens[4] + lens[5] + lens[6] + lens[7];
    }
    char* put_words(char* o) const {
        for (int i = 0; i < 8; ++i) {
            std::memcpy(o, &words[i], 4); // little-endian: the first byte lowest
            o += lens[i];
        }
        return o;
    }
};

} // namespace

size_t utf8_to_utf16(const char* src, size_t n, ovChar16* dst, size_t cap, bool& exact) {
    if (!dst || cap == 0) {
        ExactScanner scan;
        if (src && scan_exact_utf8(src, n, scan)) {
            exact = true;
            // Exact text ends on a whole character, so the last code read is 0
            // exactly when the last byte is.
            const bool ends_in_zero = n > 0 && src[n - 1] == 0;
            return scan.chars() + scan.quads() + (ends_in_zero ? 0 : 1);
        }
        return convert<Utf8, Utf16>(src, n, dst, cap, exact);
    }
    return decode_utf8<FastUtf16>(src, n, dst, cap, exact);
}

size_t utf8_to_utf32(const char* src, size_t n, unsigned int* dst, size_t cap, bool& exact) {
    if (!dst || cap == 0) {
        ExactScanner scan;
        if (src && scan_exact_utf8(src, n, scan)) {
            exact = true;
            const bool ends_in_zero = n > 0 && src[n - 1] == 0;
            return scan.chars() + (ends_in_zero ? 0 : 1);
        }
        return convert<Utf8, Utf32>(src, n, dst, cap, exact);
    }
    return decode_utf8<FastUtf32>(src, n, dst, cap, exact);
}

namespace {

// UTF-16 is read 8 units at a time; a group holding a surrogate goes through
// the reader that follows the rules, and so does whatever is left at the end.
inline bool has_surrogate(simd::V128 x) {
    return simd::masked_equal16(x, 0xF800, 0xD800) != 0;
}

// True when every surrogate of a group is half of a whole pair inside it;
// `highs` then marks the first halves.
inline bool whole_pairs(simd::V128 x, unsigned& highs) {
    highs = simd::masked_equal16(x, 0xFC00, 0xD800);
    return (highs << 1) == simd::masked_equal16(x, 0xFC00, 0xDC00);
}

inline unsigned int pair_at(const ovChar16* p) {
    return (((static_cast<uint16_t>(p[0]) - 0xD800u) << 10) |
            (static_cast<uint16_t>(p[1]) & 0x3FFu)) +
           0x10000u;
}

inline bool is_second_half(ovChar16 u) {
    return (static_cast<uint16_t>(u) & 0xFC00) == 0xDC00;
}

// Writes the code points of a joined group (see join_pairs16) but those of
// the lanes in `drop`. It writes a dropped lane too before moving on, so the
// room for all 8 must be there.
inline unsigned int* put_joined(simd::V128 lo, simd::V128 hi, unsigned drop, unsigned int* o) {
    uint32_t t[8];
    simd::store32(lo, t);
    simd::store32(hi, t + 4);
    for (int i = 0; i < 8; ++i) {
        *o = t[i];
        o += 1 - ((drop >> i) & 1);
    }
    return o;
}

// The units the lanes in `lanes` of a group of whole pairs (first halves in
// `highs`) take, the pair's second half being among `lanes` too.
template <class W>
OVRA_ALWAYS_INLINE size_t group_size(simd::V128 x, unsigned lanes, unsigned highs) {
    // A pair is one code point: 4 bytes where its two units counted 6.
    if (sizeof(typename W::unit) == 1)
        return popcount64(lanes) - 2 * popcount64(highs) +
               popcount64((simd::at_least16(x, 0x80) | (simd::at_least16(x, 0x800) << 8)) &
                          (lanes | (lanes << 8)));
    return popcount64(lanes) - popcount64(highs);
}

template <class W> size_t count_utf16(const ovChar16* src, size_t n, bool& exact) {
    exact = true;
    if (!src)
        n = 0;
    const ovChar16* p = src;
    const ovChar16* const end = src + n;
    unsigned int last = kReplacement;
    size_t count = 0;
    // Whole groups are counted per lane, and the lanes summed now and then:
    // to UTF-8 a unit takes one byte more from 0x80 and another from 0x800,
    // so a pair's units count 3 + 3 where it takes 4.
    const bool to_utf8 = sizeof(typename W::unit) == 1;
    simd::V128 longer = simd::zero32(), firsts = simd::zero32();
    unsigned groups = 0;
    auto fold = [&] {
        count += simd::sum16(longer);
        count -= (to_utf8 ? 2 : 1) * simd::sum16(firsts);
        longer = firsts = simd::zero32();
        groups = 0;
    };
    while (end - p >= 8) {
        const simd::V128 x = simd::load(p);
        unsigned highs;
        if (has_surrogate(x) && !whole_pairs(x, highs)) {
            for (const ovChar16* const stop = p + 8; p < stop;) {
                last = Utf16::read(p, end, exact);
                count += W::size(last);
            }
            continue;
        }
        if (to_utf8)
            longer = simd::add_at_least16(simd::add_at_least16(longer, x, 0x80), x, 0x800);
        firsts = simd::add_masked_equal16(firsts, x, 0xFC00, 0xD800);
        count += 8;
        if (++groups == 0x7FFF) // a lane gains at most 2 a group
            fold();
        p += 8;
        last = static_cast<uint16_t>(p[-1]);
    }
    fold();
    // The last few units, as the new lanes of the last 8 when those pair up
    // among themselves.
    const size_t left = static_cast<size_t>(end - p);
    if (left != 0 && left < 8 && n >= 8) {
        const simd::V128 x = simd::load(end - 8);
        const unsigned fresh = 0xFFu & ~(0xFFu >> left);
        const unsigned highs = simd::masked_equal16(x, 0xFC00, 0xD800) & fresh;
        if ((simd::masked_equal16(x, 0xFC00, 0xDC00) & fresh) == (highs << 1) && highs < 0x80) {
            count += group_size<W>(x, fresh, highs);
            p = end;
            last = static_cast<uint16_t>(p[-1]);
        }
    }
    while (p < end) {
        last = Utf16::read(p, end, exact);
        count += W::size(last);
    }
    return last == 0 ? count : count + 1;
}

} // namespace

size_t utf16_to_utf8(const ovChar16* src, size_t n, char* dst, size_t cap, bool& exact) {
    if (!dst || cap == 0)
        return count_utf16<Utf8>(src, n, exact);
    exact = true;
    if (!src)
        n = 0;
    const ovChar16* p = src;
    const ovChar16* const end = src + n;
    char* o = dst;
    const char* const oend = dst + cap;
    unsigned int last = kReplacement;
    while (end - p >= 8) {
        const simd::V128 x = simd::load(p);
        if (end - p >= 16 && oend - o >= 16) {
            const simd::V128 y = simd::load(p + 8);
            if (simd::at_least16(simd::or128(x, y), 0x80) == 0) {
                simd::narrow16_to8(x, y, o);
                p += 16;
                o += 16;
                last = static_cast<uint16_t>(p[-1]);
                continue;
            }
        }
        unsigned highs = 0;
        if (!has_surrogate(x) || whole_pairs(x, highs)) {
            if (!(highs ? Utf8Group(x, highs) : Utf8Group(x)).put(o, oend))
                break;
            p += 8;
            last = static_cast<uint16_t>(p[-1]);
            continue;
        }
        // Bad units, or a pair across groups: 8 of them take at most 24 bytes,
        // and one more pair may end the group.
        if (oend - o < 32)
            break;
        for (const ovChar16* const stop = p + 8; p < stop;) {
            last = Utf16::read(p, end, exact);
            Utf8::store(last, o, oend, exact);
        }
    }
    // The last few units, as the new lanes of the last 8 when those pair up
    // among themselves.
    const size_t left = static_cast<size_t>(end - p);
    if (left != 0 && left < 8 && n >= 8) {
        const simd::V128 x = simd::load(end - 8);
        const unsigned fresh = 0xFFu & ~(0xFFu >> left);
        const unsigned highs = simd::masked_equal16(x, 0xFC00, 0xD800) & fresh;
        const unsigned lows = simd::masked_equal16(x, 0xFC00, 0xDC00) & fresh;
        if (lows == (highs << 1) && highs < 0x80) {
            if (Utf8Group(x, highs, 0xFFu & ~fresh).put(o, oend)) {
                p = end;
                last = static_cast<uint16_t>(p[-1]);
            }
        }
    }
    return finish<Utf16, Utf8>(p, end, dst, o, oend, last, exact);
}

size_t utf16_to_utf32(const ovChar16* src, size_t n, unsigned int* dst, size_t cap, bool& exact) {
    if (!dst || cap == 0)
        return count_utf16<Utf32>(src, n, exact);
    exact = true;
    if (!src)
        n = 0;
    const ovChar16* p = src;
    const ovChar16* const end = src + n;
    unsigned int* o = dst;
    const unsigned int* const oend = dst + cap;
    unsigned int last = kReplacement;
    while (end - p >= 8 && oend - o >= 8) {
        const simd::V128 x = simd::load(p);
        if (!has_surrogate(x)) {
            simd::widen16_to32(x, o);
            o += 8;
        } else if (unsigned highs; whole_pairs(x, highs)) {
            simd::V128 lo, hi;
            simd::join_pairs16(x, 0, lo, hi);
            o = put_joined(lo, hi, highs << 1, o);
        } else {
            for (const ovChar16* const stop = p + 8; p < stop;)
                *o++ = last = Utf16::read(p, end, exact);
            continue;
        }
        p += 8;
        last = static_cast<uint16_t>(p[-1]);
    }
    return finish<Utf16, Utf32>(p, end, dst, o, oend, last, exact);
}

bool decode_exact_utf16(const ovChar16* src, size_t n, unsigned int* dst, size_t& count,
                        bool& zero) {
    // One pass: the room for a code point per unit is never short, and a
    // group's masks say at once whether its surrogates all pair up. A group
    // keeps a pair that runs past it whole, so the next starts on a character.
    const ovChar16* p = src;
    const ovChar16* const end = src + n;
    unsigned int* o = dst;
    bool zeros = false;
    while (end - p >= 8) {
        const simd::V128 x = simd::load(p);
        const unsigned special = simd::surrogate_or_zero16(x);
        if (special == 0) {
            simd::widen16_to32(x, o);
            o += 8;
            p += 8;
            continue;
        }
        const unsigned highs = simd::masked_equal16(x, 0xFC00, 0xD800);
        const unsigned lows = simd::masked_equal16(x, 0xFC00, 0xDC00);
        zeros |= (special & ~(highs | lows)) != 0;
        if (lows != ((highs << 1) & 0xFF))
            return false;
        const unsigned runs_on = highs >> 7;
        if (runs_on && (end - p < 9 || !is_second_half(p[8])))
            return false;
        simd::V128 lo, hi;
        simd::join_pairs16(x, runs_on ? static_cast<uint16_t>(p[8]) : 0, lo, hi);
        o = put_joined(lo, hi, lows, o);
        p += 8 + runs_on;
    }
    // The last few units: when the last 8 are all plain, each of them is one
    // code point, so they end the output wherever the groups stopped.
    const size_t left = static_cast<size_t>(end - p);
    if (left != 0 && left < 8 && n >= 8) {
        const simd::V128 x = simd::load(end - 8);
        if (simd::surrogate_or_zero16(x) == 0) {
            simd::widen16_to32(x, o - (8 - left));
            o += left;
            p = end;
        }
    }
    while (p < end) {
        const unsigned int u = static_cast<uint16_t>(*p++);
        if ((u & 0xF800) != 0xD800) {
            zeros |= u == 0;
            *o++ = u;
        } else if (u < 0xDC00 && p < end && is_second_half(*p)) {
            *o++ = pair_at(p - 1);
            ++p;
        } else {
            return false;
        }
    }
    *o = 0;
    count = static_cast<size_t>(o - dst);
    zero = zeros;
    return true;
}

size_t first_zero(const unsigned int* p, size_t n) {
    size_t i = 0;
    for (; n - i >= 8; i += 8) {
        const unsigned zeros =
            simd::equal32(simd::load(p + i), 0) | (simd::equal32(simd::load(p + i + 4), 0) << 4);
        if (zeros)
            return i + lowest_bit64(zeros);
    }
    while (i < n && p[i])
        ++i;
    return i;
}

// Code points to UTF-8 or UTF-16, which never meet bad input: the only loss
// is a character that does not fit. Sizes are counted on whole groups, and
// while there is room for the worst case every character is written as one
// unaligned word of which only its own units count.
namespace {

// The units needed for n code points: n plus one for each limit a code point
// is above, counted in the lanes of a vector.
template <size_t N>
size_t count_from_utf32(const unsigned int* src, size_t n, const unsigned int (&limits)[N]) {
    size_t count = n, i = 0;
    while (n - i >= 16) {
        simd::V128 acc = simd::zero32();
        // Each lane adds at most N per round, far below its limit.
        const size_t stop = i + std::min<size_t>((n - i) & ~size_t(15), size_t(1) << 20);
        for (; i < stop; i += 16) {
            using namespace simd;
            const V128 a = load(src + i), b = load(src + i + 4), c = load(src + i + 8),
                       d = load(src + i + 12);
            if (above32(or128(or128(a, b), or128(c, d)), limits[0]) == 0)
                continue; // none above the lowest limit
            for (size_t j = 0; j < N; ++j) {
                acc = add_above32(acc, a, limits[j]);
                acc = add_above32(acc, b, limits[j]);
                acc = add_above32(acc, c, limits[j]);
                acc = add_above32(acc, d, limits[j]);
            }
        }
        count += simd::sum32(acc);
    }
    for (; i < n; ++i)
        for (size_t j = 0; j < N; ++j)
            count += src[i] > limits[j];
    const unsigned int last = n ? src[n - 1] : kReplacement;
    return last == 0 ? count : count + 1;
}

} // namespace

size_t utf32_to_utf8(const unsigned int* src, size_t n, char* dst, size_t cap, bool& exact) {
    exact = true;
    if (!src)
        n = 0;
    if (!dst || cap == 0) {
        static constexpr unsigned int limits[3] = {0x7F, 0x7FF, 0xFFFF};
        return count_from_utf32(src, n, limits);
    }
    char* o = dst;
    const char* const oend = dst + cap;
    size_t i = 0;
    while (n - i >= 8) {
        if (n - i >= 16 && oend - o >= 16) {
            using namespace simd;
            const V128 a = load(src + i), b = load(src + i + 4), c = load(src + i + 8),
                       d = load(src + i + 12);
            if (above32(or128(or128(a, b), or128(c, d)), 0x7F) == 0) {
                narrow32_to8(a, b, c, d, o);
                o += 16;
                i += 16;
                continue;
            }
        }
        if (!Utf8Group(simd::load(src + i), simd::load(src + i + 4)).put(o, oend))
            break;
        i += 8;
    }
    const unsigned int last = i ? src[i - 1] : kReplacement;
    return finish<Utf32, Utf8>(src + i, src + n, dst, o, oend, last, exact);
}

size_t utf32_to_utf16(const unsigned int* src, size_t n, ovChar16* dst, size_t cap, bool& exact) {
    exact = true;
    if (!src)
        n = 0;
    if (!dst || cap == 0) {
        static constexpr unsigned int limits[1] = {0xFFFF};
        return count_from_utf32(src, n, limits);
    }
    ovChar16* o = dst;
    const ovChar16* const oend = dst + cap;
    size_t i = 0;
    // Eight at a time while even eight pairs fit, with the word written past the last.
    while (n - i >= 8 && oend - o >= 18) {
        using namespace simd;
        const V128 a = load(src + i), b = load(src + i + 4);
        if (above32(or128(a, b), 0xFFFF) == 0) {
            narrow32_to16(a, b, o);
            o += 8;
        } else {
            for (int j = 0; j < 8; ++j)
                o = FastUtf16::put(src[i + j], o);
        }
        i += 8;
    }
    const unsigned int last = i ? src[i - 1] : kReplacement;
    return finish<Utf32, Utf16>(src + i, src + n, dst, o, oend, last, exact);
}

} // namespace ovra_internal

namespace ovOvra {

using namespace ovra_internal;

size_t ConvertUTF::utf8_to_utf16(const char* src, size_t n, ovChar16* dst, size_t cap) const {
    return ovra_internal::utf8_to_utf16(src, n, dst, cap, m_exact);
}

size_t ConvertUTF::utf16_to_utf8(const ovChar16* src, size_t n, char* dst, size_t cap) const {
    return ovra_internal::utf16_to_utf8(src, n, dst, cap, m_exact);
}

size_t ConvertUTF::utf8_to_utf32(const char* src, size_t n, unsigned int* dst, size_t cap) const {
    return ovra_internal::utf8_to_utf32(src, n, dst, cap, m_exact);
}

size_t ConvertUTF::utf32_to_utf8(const unsigned int* src, size_t n, char* dst, size_t cap) const {
    return ovra_internal::utf32_to_utf8(src, n, dst, cap, m_exact);
}

size_t ConvertUTF::utf16_to_utf32(const ovChar16* src, size_t n, unsigned int* dst,
                                  size_t cap) const {
    return ovra_internal::utf16_to_utf32(src, n, dst, cap, m_exact);
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
