#include "ovra/ovStringCompare.h"
#include "ovra/ovStringEncoding.h"

#include "string_test_util.h"

#include <gtest/gtest.h>

using namespace ovtest;

namespace {

int sign(int v) {
    return (v > 0) - (v < 0);
}

ovString code_point_string(std::initializer_list<unsigned int> codes) {
    const std::vector<unsigned int> v(codes);
    int st;
    return ovString(ovSTRING_UTF32, v.data(), v.size(), st);
}

// An encoding that refuses everything, to reach the fallback.
class RefusingEncoding final : public ovIStringEncoding {
public:
    ovString in(const char*, int& status) const override {
        status = 1;
        return ovString();
    }
    utString out(const ovString&, int& status) const override {
        status = 1;
        return utString("refused");
    }
};

struct Pair {
    const char* name;
    ovString a, b;
    int expected;   // sign of compare
    int equal = -1; // -1: as expected == 0
};

} // namespace

TEST(ovStringCompareNumeric, OrdersByCodePointValueWithPrefixesFirst) {
    const Pair cases[] = {
        {"abc<abd", from_utf8("abc"), from_utf8("abd"), -1},
        {"prefix first", from_utf8("ab"), from_utf8("abc"), -1},
        {"equal", from_utf8("abc"), from_utf8("abc"), 0},
        {"case counts", from_utf8("a"), from_utf8("B"), 1},
        {"BMP before astral", from_utf8("\xEF\xBF\xBF"), from_utf8("\xF0\x90\x80\x80"), -1},
        {"unsigned values", code_point_string({0xFFFFFFFFu}), from_utf8("a"), 1},
        {"two nulls", ovString(), ovString(), 0},
        {"null orders as empty but is not equal", ovString(), ovString(ovSTRING_EMPTY), 0, 0},
        {"null before text", ovString(), from_utf8("a"), -1},
        {"text after null", from_utf8("a"), ovString(), 1},
    };
    const ovStringCompareNumeric cmp;
    for (const Pair& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(cmp.compare(c.a, c.b), c.expected);
        EXPECT_EQ(cmp.equal(c.a, c.b), c.equal >= 0 ? c.equal : c.expected == 0);
    }
}

TEST(ovStringCompareInsensitive, FoldsAsciiCaseOfTheEncodedText) {
    const Pair cases[] = {
        {"file names", from_utf8("File.TXT"), from_utf8("file.txt"), 0},
        {"prefix first", from_utf8("AB"), from_utf8("abc"), -1},
        {"folds to lower case", from_utf8("_"), from_utf8("A"), -1},
        {"non-ASCII kept", from_utf8("\xC3\x84"), from_utf8("\xC3\xA4"), -1},
        {"null as empty", ovString(), ovString(ovSTRING_EMPTY), 0},
        {"null before text", ovString(), from_utf8("a"), -1},
    };
    const ovStringUTF8Encoding utf8;
    const ovStringCompareInsensitive given(&utf8);
    const ovStringCompareInsensitive by_default(nullptr);
    for (const Pair& c : cases) {
        SCOPED_TRACE(c.name);
        for (const ovIStringCompare* cmp : {static_cast<const ovIStringCompare*>(&given),
                                            static_cast<const ovIStringCompare*>(&by_default)}) {
            EXPECT_EQ(sign(cmp->compare(c.a, c.b)), c.expected);
            EXPECT_EQ(cmp->equal(c.a, c.b), c.expected == 0 ? 1 : 0);
        }
    }
}

TEST(ovStringCompareInsensitive, FallsBackToCodePointOrderWhenTheEncodingFails) {
    const RefusingEncoding refusing;
    const ovStringCompareInsensitive cmp(&refusing);
    EXPECT_EQ(cmp.compare(from_utf8("B"), from_utf8("a")), -1) << "'B' < 'a' by value";
    EXPECT_EQ(cmp.equal(from_utf8("A"), from_utf8("a")), 0);
    EXPECT_EQ(cmp.equal(from_utf8("abc"), from_utf8("abc")), 1);

    // The "C" locale cannot take U+65E5: only that pair falls back.
    const ovStringCRTEncoding crt;
    const ovStringCompareInsensitive mb(&crt);
    EXPECT_EQ(mb.equal(from_utf8("Ab"), from_utf8("aB")), 1);
    EXPECT_EQ(mb.compare(from_utf8("\xE6\x97\xA5"), from_utf8("a")), 1);
    EXPECT_EQ(mb.equal(from_utf8("\xE6\x97\xA5"), from_utf8("\xE6\x97\xA5")), 1);
}
