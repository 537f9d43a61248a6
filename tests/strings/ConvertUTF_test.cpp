#include "ovra/ovString.h"

#include "string_test_util.h"

#include <gtest/gtest.h>

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

// An independent decoder written from the rules, one byte at a time, to check
// the fast paths against.
codes reference_utf8(const std::string& s, bool& exact) {
    codes out;
    exact = true;
    size_t i = 0;
    const size_t n = s.size();
    auto cont = [&](size_t j) { return j < n && (static_cast<unsigned char>(s[j]) >> 6) == 2; };
    while (i < n) {
        const unsigned int b = static_cast<unsigned char>(s[i++]);
        if (b <= 0x80) {
            out.push_back(b);
            continue;
        }
        if (b < 0xC0 || b >= 0xF8) {
            exact = false;
            while (cont(i))
                ++i;
            out.push_back(Q);
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
        exact = exact && ok;
        out.push_back(ok ? c : Q);
    }
    return out;
}

// Code points encoded by the plain rules into `cap` units, the way a whole
// conversion does: "?" for a character that does not fit, a terminator when
// there is room and the last code was not 0.
template <class Unit>
std::vector<Unit> reference_encode(const codes& in, size_t cap, bool utf8, bool& exact) {
    std::vector<Unit> out;
    exact = true;
    unsigned int last = Q;
    for (size_t i = 0; i < in.size() && out.size() < cap; ++i) {
        const unsigned int c = last = in[i];
        std::vector<Unit> units;
        if (utf8) {
            const int k = (c >= 0x80) + (c > 0x7FF) + (c > 0xFFFF);
            const unsigned lead[] = {0, 0xC0, 0xE0, 0xF0};
            units.push_back(static_cast<Unit>(k ? lead[k] | ((c >> (6 * k)) & (0x3Fu >> k)) : c));
            for (int j = k - 1; j >= 0; --j)
                units.push_back(static_cast<Unit>(0x80 | ((c >> (6 * j)) & 0x3F)));
        } else if (c >= 0x10000) {
            units.push_back(static_cast<Unit>(0xD800 | (((c - 0x10000) >> 10) & 0x3FF)));
            units.push_back(static_cast<Unit>(0xDC00 | ((c - 0x10000) & 0x3FF)));
        } else {
            units.push_back(static_cast<Unit>(c));
        }
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

// The word-at-a-time and inline paths must give exactly what the plain rules
// give, at every alignment and capacity.
TEST(ConvertUTF, FastPathsAgreeWithTheRulesOnRandomInput) {
    std::mt19937 rng(12345);
    const char* pieces[] = {"a",
                            "bcdefgh",
                            "0123456789abcdef",
                            "\x80",
                            "\xC3\xA9",
                            "\xE2\x82\xAC",
                            "\xF0\x9F\x98\x80",
                            "\xC3",
                            "\xED\xA0\x80",
                            "\x81\x82",
                            "\xF8",
                            "\xE0\x80\x80",
                            "\xF4\x90\x80\x80"};
    for (int round = 0; round < 600; ++round) {
        std::string s;
        // Mostly short texts, some long enough to cross several 64-byte blocks;
        // odd rounds mix in bad input.
        const int len = static_cast<int>(rng() % (round % 3 ? 24 : 120));
        for (int i = 0; i < len; ++i)
            s += pieces[rng() % (round % 2 ? 13 : 7)];
        SCOPED_TRACE(testing::Message() << "round " << round);
        bool exact;
        const codes expected = reference_utf8(s, exact);
        const Decoded d = decode(&ConvertUTF::utf8_to_utf32, s);
        ASSERT_EQ(d.out, expected);
        ASSERT_EQ(d.exact, exact);

        // Cut into a too-small buffer: a prefix, never past the capacity.
        const size_t cap = rng() % (expected.size() + 1) + 1;
        std::vector<unsigned int> small(cap + 1, 0xEEEEEEEE);
        const size_t got = ConvertUTF().utf8_to_utf32(s.data(), s.size(), small.data(), cap);
        ASSERT_LE(got, cap);
        ASSERT_EQ(small[cap], 0xEEEEEEEEu);
        for (size_t i = 0; i < got && i < expected.size(); ++i)
            ASSERT_EQ(small[i], expected[i]) << "at " << i;

        if (exact) { // and the string type's own decoder agrees
            const ovString str = from_utf8(s);
            ASSERT_FALSE(str.failed());
            ASSERT_EQ(code_points(str), expected);
        }
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
        const std::vector<Unit> expected =
            reference_encode<Unit>(in, cap, sizeof(Unit) == 1, exact);
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
        codes in(rng() % 80);
        for (unsigned int& c : in)
            c = rng() % 3 ? 'a' + rng() % 26 : samples[rng() % 15];
        SCOPED_TRACE(testing::Message() << "round " << round);
        check_encode<ovChar16>(&ConvertUTF::utf32_to_utf16, in, rng);
        check_encode<char>(&ConvertUTF::utf32_to_utf8, in, rng);
        if (HasFatalFailure())
            return;
    }
}
