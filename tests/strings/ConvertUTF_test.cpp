#include "ovra/ovString.h"

#include "string_test_util.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <random>
#include <string>
#include <vector>

using namespace ovtest;
using ovOvra::ConvertUTF;

namespace {

struct Decoded {
    codes out; // without the terminator
    bool exact;
};

// Both passes, as every caller does them; checks that they agree and that the
// write stays within the capacity.
template <class Unit>
Decoded decode(size_t (ConvertUTF::*f)(const Unit*, size_t, unsigned int*, size_t) const,
               const std::basic_string<Unit>& in) {
    ConvertUTF cv;
    const size_t need = (cv.*f)(in.data(), in.size(), nullptr, 0);
    const bool counted_exact = cv.was_exact();
    std::vector<unsigned int> buf(need + 1, 0xEEEEEEEE);
    const size_t got = (cv.*f)(in.data(), in.size(), buf.data(), need);
    EXPECT_EQ(got, need);
    EXPECT_EQ(counted_exact, cv.was_exact());
    EXPECT_EQ(buf[need], 0xEEEEEEEEu) << "wrote past the capacity";
    if (got == 0 || buf[got - 1] != 0)
        ADD_FAILURE() << "no terminator";
    return {codes(buf.begin(), buf.begin() + (got ? got - 1 : 0)), cv.was_exact()};
}

const unsigned int Q = '?';

} // namespace

TEST(ConvertUTF, DecodingFollowsTheRules) {
    struct Case8 {
        const char* name;
        std::string in;
        codes out;
        bool exact;
    } const cases8[] = {
        {"four bytes", "a\xF0\x9F\x98\x80z", {'a', 0x1F600, 'z'}, true},
        {"top of range", "\xF4\x8F\xBF\xBF", {0x10FFFF}, true},
        {"lone 0x80 passes as U+0080", "a\x80z", {'a', 0x80, 'z'}, true},
        {"overlong two bytes", std::string("\xC0\x80", 2), {Q}, false},
        {"overlong three bytes", "\xE0\x80\x80", {Q}, false},
        {"encoded surrogate", "\xED\xA0\x80", {Q}, false},
        {"above U+10FFFF", "\xF4\x90\x80\x80", {Q}, false},
        {"stray run swallows 0x80 too", "\x81\x82\x80z", {Q, 'z'}, false},
        {"five-byte lead is stray", "\xF8\x88\x80\x80\x80", {Q}, false},
        {"lead at end", "ab\xC3", {'a', 'b', Q}, false},
        {"lead then letter", "\xC3\x41", {Q, 'A'}, false},
        {"truncated then ASCII", "\xE2\x82z", {Q, 'z'}, false},
    };
    for (const Case8& c : cases8) {
        SCOPED_TRACE(c.name);
        const Decoded d = decode(&ConvertUTF::utf8_to_utf32, c.in);
        EXPECT_EQ(d.out, c.out);
        EXPECT_EQ(d.exact, c.exact);
    }
    struct Case16 {
        const char* name;
        u16string in;
        codes out;
        bool exact;
    } const cases16[] = {
        {"pair", u16({'a', 0xD83D, 0xDE00, 0xFFFF}), {'a', 0x1F600, 0xFFFF}, true},
        {"run of low surrogates is one ?", u16({0xDC00, 0xDC01, 'x'}), {Q, 'x'}, false},
        {"high then letter keeps the letter", u16({0xD800, 'A'}), {Q, 'A'}, false},
        {"high at end", u16({'a', 0xD800}), {'a', Q}, false},
        {"two highs", u16({0xD800, 0xD800, 0xDC00}), {Q, 0x10000}, false},
    };
    for (const Case16& c : cases16) {
        SCOPED_TRACE(c.name);
        const Decoded d = decode(&ConvertUTF::utf16_to_utf32, c.in);
        EXPECT_EQ(d.out, c.out);
        EXPECT_EQ(d.exact, c.exact);
    }
}

TEST(ConvertUTF, TerminatorAndCapacity) {
    ConvertUTF cv;
    // Counting an empty input gives just the terminator; capacity 1 writes it.
    unsigned int buf[8] = {7, 7};
    EXPECT_EQ(cv.utf8_to_utf32("", 0, buf, 1), 1u);
    EXPECT_EQ(codes(buf, buf + 2), (codes{0, 7}));
    EXPECT_EQ(cv.utf8_to_utf32(nullptr, 5, nullptr, 0), 1u) << "null input is empty";

    // Input that already ends with its 0 gets no second terminator.
    EXPECT_EQ(cv.utf8_to_utf32("ab", 3, buf, 8), 3u);

    // Output that fills up is cut without a terminator, and that is not a loss.
    EXPECT_EQ(cv.utf8_to_utf32("abcdef", 6, buf, 3), 3u);
    EXPECT_EQ(codes(buf, buf + 3), (codes{'a', 'b', 'c'}));
    EXPECT_TRUE(cv.was_exact());

    // A code point that does not fit the room left becomes "?".
    const unsigned int emoji[] = {'x', 0x1F600};
    ovChar16 out16[2];
    EXPECT_EQ(cv.utf32_to_utf16(emoji, 2, out16, 2), 2u);
    EXPECT_EQ(static_cast<unsigned>(out16[1]), Q);
    EXPECT_FALSE(cv.was_exact());
    char out8[3];
    EXPECT_EQ(cv.utf32_to_utf8(emoji + 1, 1, out8, 3), 2u);
    EXPECT_EQ(std::string(out8), "?");

    // Each conversion starts exact again.
    EXPECT_EQ(cv.utf32_to_utf8(emoji, 1, nullptr, 0), 2u);
    EXPECT_TRUE(cv.was_exact());
}

TEST(ConvertUTF, EncodingIsBitByBitWithoutValidation) {
    struct Case {
        unsigned int in;
        std::string utf8;
        u16string utf16;
    } const cases[] = {
        {0xE9, "\xC3\xA9", u16({0xE9})},
        {0x20AC, "\xE2\x82\xAC", u16({0x20AC})},
        {0x1F600, "\xF0\x9F\x98\x80", u16({0xD83D, 0xDE00})},
        {0xD800, "\xED\xA0\x80", u16({0xD800})},
        {0x110000, "\xF4\x90\x80\x80", u16({0xD800, 0xDC00})},
        {0x200041, "\xF0\x80\x81\x81", u16({0xDBC0, 0xDC41})}, // top bits lost
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.in);
        ConvertUTF cv;
        std::string out8(cv.utf32_to_utf8(&c.in, 1, nullptr, 0), '\0');
        EXPECT_EQ(cv.utf32_to_utf8(&c.in, 1, &out8[0], out8.size()), out8.size());
        EXPECT_TRUE(cv.was_exact());
        EXPECT_EQ(out8, c.utf8 + '\0');
        u16string out16(cv.utf32_to_utf16(&c.in, 1, nullptr, 0), 0);
        EXPECT_EQ(cv.utf32_to_utf16(&c.in, 1, &out16[0], out16.size()), out16.size());
        EXPECT_EQ(out16, c.utf16 + ovChar16(0));
    }
}

TEST(ConvertUTF, DirectUtf8AndUtf16RoundTrip) {
    const std::string text = "a\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80z";
    ConvertUTF cv;
    u16string units(cv.utf8_to_utf16(text.data(), text.size(), nullptr, 0), 0);
    cv.utf8_to_utf16(text.data(), text.size(), &units[0], units.size());
    EXPECT_EQ(units, u16({'a', 0xE9, 0x20AC, 0xD83D, 0xDE00, 'z', 0}));

    // The input's own 0 is the terminator.
    std::string back(cv.utf16_to_utf8(units.data(), units.size(), nullptr, 0), '\0');
    cv.utf16_to_utf8(units.data(), units.size(), &back[0], back.size());
    EXPECT_EQ(back, text + '\0');
    EXPECT_TRUE(cv.was_exact());
}

namespace {

// One code point as a reader of the rules gives it, and whether it was read
// exactly.
struct Read {
    unsigned int code;
    bool ok;
};
typedef std::vector<Read> reads;

reads reference_reads_utf8(const std::string& s) {
    reads out;
    size_t i = 0;
    const size_t n = s.size();
    auto cont = [&](size_t j) { return j < n && (static_cast<unsigned char>(s[j]) >> 6) == 2; };
    while (i < n) {
        const unsigned int b = static_cast<unsigned char>(s[i++]);
        if (b <= 0x80) {
            out.push_back({b, true});
            continue;
        }
        if (b < 0xC0 || b >= 0xF8) {
            while (cont(i))
                ++i;
            out.push_back({Q, false});
            continue;
        }
        const int k = b >= 0xF0 ? 3 : b >= 0xE0 ? 2 : 1;
        unsigned int c = b & (0x3Fu >> k);
        bool bad = false;
        for (int j = 0; j < k && !bad; ++j) {
            bad = !cont(i);
            if (!bad)
                c = (c << 6) | (static_cast<unsigned char>(s[i++]) & 0x3F);
        }
        const unsigned int least = k == 1 ? 0x80 : k == 2 ? 0x800 : 0x10000;
        const bool ok = !bad && c >= least && (c < 0xD800 || c > 0xDFFF) && c <= 0x10FFFF;
        out.push_back({ok ? c : Q, ok});
    }
    return out;
}

reads reference_reads_utf16(const u16string& s) {
    reads out;
    size_t i = 0;
    auto unit = [&](size_t j) { return static_cast<unsigned int>(s[j]); };
    auto low = [&](size_t j) { return j < s.size() && unit(j) >= 0xDC00 && unit(j) <= 0xDFFF; };
    while (i < s.size()) {
        const unsigned int u = unit(i++);
        if (u < 0xD800 || u > 0xDFFF) {
            out.push_back({u, true});
        } else if (u <= 0xDBFF) {
            if (low(i))
                out.push_back({(((u - 0xD800) << 10) | (unit(i++) - 0xDC00)) + 0x10000, true});
            else
                out.push_back({Q, false});
        } else {
            while (low(i))
                ++i;
            out.push_back({Q, false});
        }
    }
    return out;
}

codes codes_of(const reads& in) {
    codes out;
    for (const Read& r : in)
        out.push_back(r.code);
    return out;
}

bool all_exact(const reads& in) {
    for (const Read& r : in)
        if (!r.ok)
            return false;
    return true;
}

// One code point in units of `Unit` by the plain rules: UTF-8 bytes, UTF-16
// units with pairs above 0xFFFF, or the code point itself.
template <class Unit> std::vector<Unit> units_of(unsigned int c) {
    std::vector<Unit> units;
    if (sizeof(Unit) == 1) {
        const int k = (c >= 0x80) + (c > 0x7FF) + (c > 0xFFFF);
        const unsigned lead[] = {0, 0xC0, 0xE0, 0xF0};
        units.push_back(static_cast<Unit>(k ? lead[k] | ((c >> (6 * k)) & (0x3Fu >> k)) : c));
        for (int j = k - 1; j >= 0; --j)
            units.push_back(static_cast<Unit>(0x80 | ((c >> (6 * j)) & 0x3F)));
    } else if (sizeof(Unit) == 2 && c >= 0x10000) {
        units.push_back(static_cast<Unit>(0xD800 | (((c - 0x10000) >> 10) & 0x3FF)));
        units.push_back(static_cast<Unit>(0xDC00 | ((c - 0x10000) & 0x3FF)));
    } else {
        units.push_back(static_cast<Unit>(c));
    }
    return units;
}

// A whole conversion by the plain rules into `cap` units of `Unit`: read and
// store while input remains and the output is not full, "?" for a character
// that does not fit, a terminator when there is room and the last code was not 0.
template <class Unit>
std::vector<Unit> reference_convert(const reads& in, size_t cap, bool& exact) {
    std::vector<Unit> out;
    exact = true;
    unsigned int last = Q;
    for (size_t i = 0; i < in.size() && out.size() < cap; ++i) {
        const unsigned int c = last = in[i].code;
        exact = exact && in[i].ok;
        std::vector<Unit> units = units_of<Unit>(c);
        if (units.size() > cap - out.size()) {
            exact = false;
            units.assign(1, static_cast<Unit>(Q));
        }
        out.insert(out.end(), units.begin(), units.end());
    }
    if (last != 0 && out.size() < cap)
        out.push_back(0);
    return out;
}

// Code points encoded the way a whole conversion does: every one read exactly.
template <class Unit> std::vector<Unit> reference_encode(const codes& in, size_t cap, bool& exact) {
    reads r;
    for (unsigned int c : in)
        r.push_back({c, true});
    return reference_convert<Unit>(r, cap, exact);
}

// Checks one ConvertUTF conversion against the plain rules: the counted size,
// then the whole text, then a random cut, each from a misaligned copy of the
// input, and never a unit written past the capacity.
template <class In, class Out>
void check_conversion(size_t (ConvertUTF::*f)(const In*, size_t, Out*, size_t) const,
                      const std::basic_string<In>& text, const reads& expected, std::mt19937& rng) {
    const size_t shift = rng() % 8;
    std::vector<In> input(shift + text.size() + 1);
    std::copy(text.begin(), text.end(), input.begin() + shift);
    const In* src = input.data() + shift;

    ConvertUTF cv;
    bool exact;
    const size_t need = reference_convert<Out>(expected, SIZE_MAX, exact).size();
    ASSERT_EQ((cv.*f)(src, text.size(), nullptr, 0), need) << "counted size";
    ASSERT_EQ(cv.was_exact(), exact) << "counted exactness";
    for (size_t cap : {need, size_t(rng() % need + 1)}) {
        const std::vector<Out> want = reference_convert<Out>(expected, cap, exact);
        std::vector<Out> out(cap + 8, static_cast<Out>(0x23));
        const size_t got = (cv.*f)(src, text.size(), out.data(), cap);
        ASSERT_EQ(out[cap], static_cast<Out>(0x23)) << "wrote past capacity " << cap;
        out.resize(got);
        ASSERT_EQ(out, want) << "capacity " << cap << " of " << need;
        ASSERT_EQ(cv.was_exact(), exact) << "capacity " << cap;
    }
}

// Up to max_pieces pieces, mostly fewer. The first ascii_count good pieces are
// ASCII and some texts are mostly those; with broken given, about one piece in
// broken_one_in is broken.
template <class Str, size_t G, size_t B>
Str random_pieces(std::mt19937& rng, const Str (&good)[G], unsigned ascii_count,
                  const Str (*broken)[B], unsigned broken_one_in, unsigned max_pieces) {
    Str s;
    const unsigned pieces = rng() % 3 ? rng() % 40 : rng() % max_pieces;
    const unsigned ascii_weight = rng() % 4;
    for (unsigned i = 0; i < pieces; ++i) {
        if (broken && rng() % broken_one_in == 0)
            s += (*broken)[rng() % B];
        else if (rng() % 4 < ascii_weight)
            s += good[rng() % ascii_count];
        else
            s += good[rng() % G];
    }
    return s;
}

// Text built from pieces: runs of ASCII long enough to fill whole vector
// blocks, characters of every length, and (when bad is set) every kind of
// broken sequence, including 0 units inside the text.
std::string random_utf8(std::mt19937& rng, bool bad) {
    static const std::string good[] = {"a",
                                       "bcdefgh",
                                       "0123456789abcdef0123456789ABCDEF0123456789abcdef",
                                       "\x80",
                                       "\xC3\xA9",
                                       "\xDF\xBF",
                                       "\xE2\x82\xAC",
                                       "\xEF\xBF\xBF",
                                       "\xF0\x9F\x98\x80",
                                       "\xF4\x8F\xBF\xBF"};
    static const std::string broken[] = {
        "\xC3",         "\xED\xA0\x80",     "\x81\x82",          "\xF8\x88",
        "\xE0\x80\x80", "\xF0\x8F\xBF\xBF", "\xF4\x90\x80\x80",  "\xC1\xBF",
        "\xF5\x80",     "\xE2\x82",         std::string(1, '\0')};
    return random_pieces(rng, good, 3, bad ? &broken : nullptr, 16, 300);
}

u16string random_utf16(std::mt19937& rng, bool bad) {
    static const u16string good[] = {u16({'a'}),
                                     u16({'0', '1', '2', '3', '4', '5', '6', '7', '8', '9', 'a',
                                          'b', 'c', 'd', 'e', 'f', 'g', 'h', 'i'}),
                                     u16({0x7F, 0x80}),
                                     u16({0xE9}),
                                     u16({0x7FF, 0x800}),
                                     u16({0x20AC}),
                                     u16({0xFFFF}),
                                     u16({0xD83D, 0xDE00}),
                                     u16({0xDBFF, 0xDFFF})};
    static const u16string broken[] = {u16({0xD800}), u16({0xDC00}), u16({0xDC00, 0xDFFF}),
                                       u16({0xDBFF, 'x'}), u16({0})};
    return random_pieces(rng, good, 2, bad ? &broken : nullptr, 12, 200);
}

} // namespace

// The block, vector and word-at-a-time paths must give exactly what the plain
// rules give, for every conversion, at every alignment and capacity; and the
// string type's own decoders with them.
TEST(ConvertUTF, FastPathsAgreeWithTheRulesOnRandomInput) {
    std::mt19937 rng(12345);
    for (int round = 0; round < 1500; ++round) {
        SCOPED_TRACE(testing::Message() << "round " << round);
        const bool bad = round % 2 != 0;

        const std::string s = random_utf8(rng, bad);
        const reads from8 = reference_reads_utf8(s);
        {
            SCOPED_TRACE("utf8_to_utf32");
            check_conversion(&ConvertUTF::utf8_to_utf32, s, from8, rng);
        }
        {
            SCOPED_TRACE("utf8_to_utf16");
            check_conversion(&ConvertUTF::utf8_to_utf16, s, from8, rng);
        }
        if (s.find('\0') == std::string::npos) {
            const ovString str = from_utf8(s);
            ASSERT_EQ(str.failed(), !all_exact(from8));
            if (!str.failed()) {
                ASSERT_EQ(code_points(str), codes_of(from8));
                bool exact;
                const std::vector<ovChar16> utf16 =
                    reference_convert<ovChar16>(from8, SIZE_MAX, exact);
                ASSERT_EQ(u16string(str.convert(ovSTRING_UTF16)), u16string(utf16.data()));
            }
        }

        const u16string u = random_utf16(rng, bad);
        const reads from16 = reference_reads_utf16(u);
        {
            SCOPED_TRACE("utf16_to_utf32");
            check_conversion(&ConvertUTF::utf16_to_utf32, u, from16, rng);
        }
        {
            SCOPED_TRACE("utf16_to_utf8");
            check_conversion(&ConvertUTF::utf16_to_utf8, u, from16, rng);
        }
        int st = -1;
        const ovString str16(ovSTRING_UTF16, u.data(), u.size(), st);
        ASSERT_EQ(st, all_exact(from16) ? 0 : 1);
        if (st == 0) {
            codes want = codes_of(from16);
            want.erase(std::find(want.begin(), want.end(), 0u), want.end()); // a 0 cuts the text
            ASSERT_EQ(code_points(str16), want);
        }
        if (HasFatalFailure())
            return;
    }
}

namespace {

template <class Unit>
void check_encode(size_t (ConvertUTF::*f)(const unsigned int*, size_t, Unit*, size_t) const,
                  const codes& in, std::mt19937& rng) {
    ConvertUTF cv;
    const size_t need = (cv.*f)(in.data(), in.size(), nullptr, 0);
    for (size_t cap : {need, need ? rng() % need + 1 : 1}) {
        bool exact;
        const std::vector<Unit> expected = reference_encode<Unit>(in, cap, exact);
        std::vector<Unit> out(cap + 4, static_cast<Unit>(0x23));
        const size_t got = (cv.*f)(in.data(), in.size(), out.data(), cap);
        ASSERT_EQ(out[cap], static_cast<Unit>(0x23)) << "past capacity";
        out.resize(got);
        ASSERT_EQ(out, expected) << "capacity " << cap;
        ASSERT_EQ(cv.was_exact(), exact);
        ASSERT_TRUE(cap != need || exact) << "the counted size always fits";
    }
}

} // namespace

TEST(ConvertUTF, EncodingFastPathsAgreeWithTheRules) {
    std::mt19937 rng(777);
    const unsigned int samples[] = {0,        'a',      0x7F,     0x80,     0x7FF,
                                    0x800,    0xD800,   0xFFFF,   0x10000,  0x1F600,
                                    0x10FFFF, 0x110000, 0x1FFFFF, 0x200041, 0xFFFFFFFF};
    for (int round = 0; round < 400; ++round) {
        // Some rounds are nearly all ASCII, so runs fill the wide paths.
        codes in(rng() % (round % 4 ? 80 : 300));
        const unsigned odds = round % 3 ? 3 : 40;
        for (unsigned int& c : in)
            c = rng() % odds ? 'a' + rng() % 26 : samples[rng() % 15];
        SCOPED_TRACE(testing::Message() << "round " << round);
        check_encode<ovChar16>(&ConvertUTF::utf32_to_utf16, in, rng);
        check_encode<char>(&ConvertUTF::utf32_to_utf8, in, rng);
        if (HasFatalFailure())
            return;
    }
}
