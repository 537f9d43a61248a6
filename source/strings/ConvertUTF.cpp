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

// Inlined so the loops keep its constants in registers.
OVRA_ALWAYS_INLINE BlockMasks classify(const unsigned char* p) {
    using namespace simd;
    BlockMasks m{};
    for (int j = 0; j < 4; ++j) {
        const V128 x = load(p + 16 * j);
        const int at = 16 * j;
        m.ge80 |= uint64_t(high8(x)) << at;
        m.geC0 |= uint64_t(at_least8(x, 0xC0)) << at;
        m.geC2 |= uint64_t(at_least8(x, kFirstLead)) << at;
        m.geE0 |= uint64_t(at_least8(x, 0xE0)) << at;
        m.geF0 |= uint64_t(at_least8(x, 0xF0)) << at;
        m.geF5 |= uint64_t(at_least8(x, kPastLastLead)) << at;
        m.ge90 |= uint64_t(at_least8(x, kF0Floor)) << at;
        m.geA0 |= uint64_t(at_least8(x, kE0Floor)) << at;
        m.eq80 |= uint64_t(equal8(x, 0x80)) << at;
        m.eqE0 |= uint64_t(equal8(x, 0xE0)) << at;
        m.eqED |= uint64_t(equal8(x, 0xED)) << at;
        m.eqF0 |= uint64_t(equal8(x, 0xF0)) << at;
        m.eqF4 |= uint64_t(equal8(x, 0xF4)) << at;
    }
    return m;
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
    // Character starts are known for a whole block at once (see check_block),
    // and each character is decoded on its own.
    auto decode_block = [&](const unsigned char* b, uint64_t valid) {
        const BlockMasks m = classify(b);
        const uint64_t covered = (m.geC0 << 1) | (m.geE0 << 2) | (m.geF0 << 3) | carry;
        carry = (m.geC0 >> 63) | (m.geE0 >> 62) | (m.geF0 >> 61);
        for (uint64_t starts = ~covered & valid; starts; starts &= starts - 1)
            dst[k++] = decode_at(b + lowest_bit64(starts));
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
        for (; starts; starts &= starts - 1)
            o = W::put(last = decode_at(p + lowest_bit64(starts)), o);
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
            for (; starts; starts &= starts - 1)
                o = W::put(last = decode_at(piece + lowest_bit64(starts)), o);
            r += next;
        }
    }
    return finish<Utf8, typename W::Writer>(reinterpret_cast<const char*>(r), src + n, dst, o, oend,
                                            last, exact);
}

} // namespace

namespace {

constexpr uint32_t kUtf8Marks[4] = {0, 0x80C0u, 0x8080E0u, 0x808080F0u};

// The bytes of c's UTF-8 form (k + 1 of them) in the low bytes of a word, lowest first.
inline uint32_t utf8_word(unsigned int c, size_t k) {
    const uint32_t spread = ((c >> 18) & 0x07u) | (((c >> 12) & 0x3Fu) << 8) |
                            (((c >> 6) & 0x3Fu) << 16) | ((c & 0x3Fu) << 24);
    const uint32_t wide = (spread >> (8 * (3 - k))) | kUtf8Marks[k];
    const uint32_t multi = 0u - static_cast<uint32_t>(k != 0); // no branch: k is random
    return (wide & multi) | (c & ~multi);
}

// Eight code points as UTF-8, each written as one word of which only its own
// bytes count. Worked out first, so that a group writes only when the room
// left takes its bytes and the 3 a word may write past them.
struct Utf8Group {
    uint32_t words[8], lens[8];
    size_t bytes;

    Utf8Group(simd::V128 a, simd::V128 b) {
        simd::utf8_words(a, words, lens);
        simd::utf8_words(b, words + 4, lens + 4);
        bytes =
            size_t(lens[0]) + lens[1] + lens[2] + lens[3] + lens[4] + lens[5] + lens[6] + lens[7];
    }
    bool fits(const char* o, const char* end) const {
        return bytes + 3 <= static_cast<size_t>(end - o);
    }
    char* put(char* o) const {
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

template <class W> size_t count_utf16(const ovChar16* src, size_t n, bool& exact) {
    exact = true;
    if (!src)
        n = 0;
    const ovChar16* p = src;
    const ovChar16* const end = src + n;
    unsigned int last = kReplacement;
    size_t count = 0;
    while (end - p >= 8) {
        const simd::V128 x = simd::load(p);
        unsigned highs = 0;
        if (has_surrogate(x) && !whole_pairs(x, highs)) {
            for (const ovChar16* const stop = p + 8; p < stop;) {
                last = Utf16::read(p, end, exact);
                count += W::size(last);
            }
            continue;
        }
        // A pair is one code point: 4 bytes where its two units counted 6.
        if (sizeof(typename W::unit) == 1)
            count += 8 - 2 * popcount64(highs) +
                     popcount64(simd::at_least16(x, 0x80) | (simd::at_least16(x, 0x800) << 8));
        else
            count += 8 - popcount64(highs);
        p += 8;
        last = static_cast<uint16_t>(p[-1]);
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
    // Groups with surrogates need room for the worst case: 24 bytes, and one
    // more pair may end a group.
    while (end - p >= 8 && oend - o >= 16) {
        const simd::V128 x = simd::load(p);
        if (end - p >= 16) {
            const simd::V128 y = simd::load(p + 8);
            if (simd::at_least16(simd::or128(x, y), 0x80) == 0) {
                simd::narrow16_to8(x, y, o);
                p += 16;
                o += 16;
                last = static_cast<uint16_t>(p[-1]);
                continue;
            }
        }
        if (!has_surrogate(x)) {
            const Utf8Group g(simd::load32x4_from16(x, false), simd::load32x4_from16(x, true));
            if (!g.fits(o, oend))
                break;
            o = g.put(o);
            p += 8;
            last = static_cast<uint16_t>(p[-1]);
            continue;
        }
        if (oend - o < 32)
            break;
        unsigned highs = 0;
        if (!whole_pairs(x, highs)) {
            for (const ovChar16* const stop = p + 8; p < stop;) {
                last = Utf16::read(p, end, exact);
                Utf8::store(last, o, oend, exact);
            }
            continue;
        }
        for (int i = 0; i < 8; ++i) {
            unsigned int c = static_cast<uint16_t>(p[i]);
            size_t k = (c >= 0x80) + (c >= 0x800);
            if ((highs >> i) & 1) {
                c = pair_at(p + i++);
                k = 3;
            }
            const uint32_t w = utf8_word(c, k);
            std::memcpy(o, &w, 4); // little-endian: the first byte lowest
            o += k + 1;
        }
        p += 8;
        last = static_cast<uint16_t>(p[-1]);
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
            // No branch per unit: the second half of a pair is written and then
            // written over.
            const unsigned lows = highs << 1;
            for (int i = 0; i < 8; ++i) {
                const unsigned int u = static_cast<uint16_t>(p[i]);
                const unsigned int next = i < 7 ? static_cast<uint16_t>(p[i + 1]) : 0u;
                const unsigned int pair = (((u - 0xD800u) << 10) | (next & 0x3FFu)) + 0x10000u;
                *o = (highs >> i) & 1 ? pair : u;
                o += 1 - ((lows >> i) & 1);
            }
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

bool count_exact_utf16(const ovChar16* src, size_t n, size_t& count, bool& zero) {
    // Exact UTF-16 is every first half of a pair followed by a second half, and
    // every second half preceded by a first: a test on masks of 16 units.
    size_t i = 0, pairs = 0;
    unsigned carry = 0, zeros = 0, bad = 0;
    // Sixteen units from p, of which the first `valid` count.
    auto group = [&](const ovChar16* p, unsigned valid) {
        using namespace simd;
        const V128 x = load(p), y = load(p + 8);
        const unsigned highs =
            (masked_equal16(x, 0xFC00, 0xD800) | (masked_equal16(y, 0xFC00, 0xD800) << 8)) & valid;
        const unsigned lows =
            (masked_equal16(x, 0xFC00, 0xDC00) | (masked_equal16(y, 0xFC00, 0xDC00) << 8)) & valid;
        zeros |= (masked_equal16(x, 0xFFFF, 0) | (masked_equal16(y, 0xFFFF, 0) << 8)) & valid;
        bad |= lows ^ (((highs << 1) | carry) & valid);
        carry = (highs & ~(valid >> 1)) != 0; // a first half in the last unit
        pairs += popcount64(highs);
    };
    for (; n - i >= 16; i += 16)
        group(src + i, 0xFFFF);
    if (i < n) { // the rest, padded to a whole group
        ovChar16 rest[16] = {};
        std::memcpy(rest, src + i, (n - i) * sizeof(ovChar16));
        group(rest, (1u << (n - i)) - 1);
    }
    count = n - pairs;
    zero = zeros != 0;
    return (bad | carry) == 0;
}

void decode_exact_utf16(const ovChar16* src, size_t n, unsigned int* dst) {
    // Exact text: a first half is always followed by its second, so a group
    // needs no check, and the pair's second half may lie in the next group.
    auto group = [&](const ovChar16* p, const ovChar16* after, unsigned valid) {
        const simd::V128 x = simd::load(p);
        const unsigned highs = simd::masked_equal16(x, 0xFC00, 0xD800) & valid;
        const unsigned lows = simd::masked_equal16(x, 0xFC00, 0xDC00) & valid;
        if ((highs | lows) == 0 && valid == 0xFF) {
            simd::widen16_to32(x, dst);
            dst += 8;
            return;
        }
        for (int i = 0; i < 8 && (valid >> i) & 1; ++i) {
            const unsigned int u = static_cast<uint16_t>(p[i]);
            const unsigned int next =
                i < 7 ? static_cast<uint16_t>(p[i + 1])
                      : ((highs >> 7) & 1 ? static_cast<uint16_t>(after[0]) : 0u);
            const unsigned int pair = (((u - 0xD800u) << 10) | (next & 0x3FFu)) + 0x10000u;
            *dst = (highs >> i) & 1 ? pair : u;
            dst += 1 - ((lows >> i) & 1); // a second half is written over
        }
    };
    size_t i = 0;
    for (; n - i >= 8; i += 8)
        group(src + i, src + i + 8, 0xFF);
    if (i < n) {
        ovChar16 rest[9] = {}; // and a unit after the group, as every group has
        std::memcpy(rest, src + i, (n - i) * sizeof(ovChar16));
        group(rest, rest + 8, (1u << (n - i)) - 1);
    }
    *dst = 0;
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
    while (n - i >= 8 && oend - o >= 16) {
        if (n - i >= 16) {
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
        const Utf8Group g(simd::load(src + i), simd::load(src + i + 4));
        if (!g.fits(o, oend))
            break;
        o = g.put(o);
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
