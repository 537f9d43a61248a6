#include "ovra/ovStringReader.h"

#include "../support/line_agreement.h"
#include "string_test_util.h"

#include <gtest/gtest.h>

#include <clocale>
#include <memory>
#include <random>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

using namespace ovtest;

namespace {

const char kNull[] = "<null>"; // what utf8_of gives for the null string

// One read: the text as UTF-8 (kNull for the null string) and the status.
struct Got {
    std::string text;
    int status;
    bool operator==(const Got& o) const { return text == o.text && status == o.status; }
};

std::ostream& operator<<(std::ostream& os, const Got& g) {
    return os << "(\"" << g.text << "\", " << g.status << ")";
}

typedef std::vector<Got> Reads;

// Lines until the stream reports its end (at most 20).
Reads lines_of(ovStringReader& reader, const std::string& bytes) {
    std::istringstream is(bytes);
    Reads out;
    while (!is.eof() && out.size() < 20) {
        int st = -1;
        const ovString s = reader.read_line(is, st);
        out.push_back({utf8_of(s), st});
    }
    return out;
}

std::string utf16le(const std::string& utf8) {
    std::ostringstream os;
    from_utf8(utf8).write(os, ovSTRING_UTF16LE);
    return os.str();
}

std::string same(const std::string& s) {
    return s;
}

struct Encoding {
    const char* name;
    std::unique_ptr<ovStringReader> (*make)();
    std::string (*encode)(const std::string&);
};

const Encoding kEncodings[] = {
    {"UTF-8", [] { return std::unique_ptr<ovStringReader>(new ovStringReaderUTF8); }, same},
    {"UTF-16LE", [] { return std::unique_ptr<ovStringReader>(new ovStringReaderUTF16LE); },
     utf16le},
    {"MB", [] { return std::unique_ptr<ovStringReader>(new ovStringReaderMB); }, same},
};

// Hands out a fixed script of (code point, status), then the end of stream.
class ScriptedReader final : public ovStringReader {
public:
    ScriptedReader(std::initializer_list<std::pair<unsigned int, int>> script) : m_script(script) {}

protected:
    unsigned int read_char(std::istream&, int& status) override {
        const bool more = m_next < m_script.size();
        status = more ? m_script[m_next].second : 0;
        return more ? m_script[m_next++].first : ovREADER_END;
    }

private:
    std::vector<std::pair<unsigned int, int>> m_script;
    size_t m_next = 0;
};

} // namespace

TEST(ovStringReader, EveryLineEndingBecomesALineFeed) {
    struct Case {
        const char* input;
        Reads expected;
    } const cases[] = {
        {"A\r\nB\rC\nD", {{"A", 0}, {"B", 0}, {"C", 0}, {"D", 0}}},
        {"x\n", {{"x", 0}, {"", 0}}},
        {"A\r", {{"A", 0}}}, // looking for an LF after the CR meets the end
        {"\r\n\r\n\n", {{"", 0}, {"", 0}, {"", 0}, {"", 0}}},
        {"\r\r\n", {{"", 0}, {"", 0}, {"", 0}}},
        {"", {{"", 0}}},
    };
    for (const Encoding& e : kEncodings) {
        for (const Case& c : cases) {
            SCOPED_TRACE(std::string(e.name) + ": " + testing::PrintToString(c.input));
            const std::unique_ptr<ovStringReader> reader = e.make();
            EXPECT_EQ(lines_of(*reader, e.encode(c.input)), c.expected);
        }
        // Past the end: still a valid empty line.
        std::istringstream is(e.encode("D"));
        int st = -1;
        e.make()->read_line(is, st);
        const ovString after = e.make()->read_line(is, st);
        EXPECT_TRUE(is.eof() && !after.invalid() && after.empty() && st == 0);
    }
}

TEST(ovStringReader, TokensEndAtSeparatorsAndSkipOnlyWhenAsked) {
    struct Case {
        const char* name;
        const char* input;
        int skip;
        const char* separators;
        std::vector<std::string> expected; // until the end, or a null token
    } const cases[] = {
        {"blank and tab", "  xy z", 1, " \t", {"xy", "z"}},
        {"runs skipped", "\t xy\t\tz\t", 1, " \t", {"xy", "z", kNull}},
        {"empty tokens kept", "a,,b", 0, ",", {"a", "", "b"}},
        {"empty tokens skipped", "a,,b", 1, ",", {"a", "b"}},
        {"only separators", ",,", 1, ",", {kNull}},
        {"null set: whole stream", "a b\nc", 0, nullptr, {"a b\nc"}},
        {"code point U+00C3 is byte 0xC3", "a\xC3\x83z", 0, "\xC3", {"a", "z"}},
        {"but not its UTF-8 bytes", "a\xC3\xA9z", 0, "\xC3", {"a\xC3\xA9z"}},
    };
    ovStringReaderUTF8 reader;
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        std::istringstream is(c.input);
        std::vector<std::string> got;
        while (got.size() < 10) {
            int st = -1;
            got.push_back(utf8_of(reader.read_token(is, c.skip, c.separators, st)));
            EXPECT_EQ(st, 0);
            if (is.eof() || got.back() == kNull)
                break;
        }
        EXPECT_EQ(got, c.expected);
    }
}

TEST(ovStringReader, TokenProtocolWithSpecialCodes) {
    const unsigned int bad = ovREADER_BAD_CHARACTER, cut = ovREADER_CUT_CHARACTER;
    struct Case {
        const char* name;
        std::initializer_list<std::pair<unsigned int, int>> script;
        int skip;
        std::vector<Got> expected;
    } const cases[] = {
        {"bad ends token", {{'a', 0}, {bad, 1}, {'b', 0}}, 0, {{"a", 1}, {"b", 0}}},
        {"bad at once", {{bad, 1}, {'b', 0}}, 0, {{"", 1}, {"b", 0}}},
        {"bad while skipping", {{' ', 0}, {bad, 1}, {'b', 0}}, 1, {{kNull, 1}, {"b", 0}}},
        {"cut ends token", {{'a', 0}, {cut, 1}}, 0, {{"a", 1}, {"", 0}}},
        {"cut is skipped", {{cut, 1}, {'b', 0}}, 1, {{"b", 0}, {kNull, 0}}},
        {"end while skipping", {{' ', 0}}, 1, {{kNull, 0}, {kNull, 0}}},
        {"astral not a separator",
         {{0x1F600, 0}, {0x120, 0}, {' ', 0}},
         0,
         {{"\xF0\x9F\x98\x80\xC4\xA0", 0}, {"", 0}}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        ScriptedReader reader(c.script);
        std::istringstream is;
        for (const Got& want : c.expected) {
            int st = -1;
            const ovString s = reader.read_token(is, c.skip, " ", st);
            EXPECT_EQ((Got{utf8_of(s), st}), want);
        }
    }
}

TEST(ovStringReader, ValidSeparatorsAreSevenBitPrintableOrControl) {
    const std::pair<const char*, int> cases[] = {{"", 1},      {" \t\n", 1}, {"~", 1},
                                                 {nullptr, 1}, {"\x7F", 0},  {"a\xC3", 0}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.first ? c.first : "null");
        EXPECT_EQ(ovStringReaderUTF8().valid_separators(c.first), c.second);
    }
}

TEST(ovStringReader, LongLinesComeBackWhole) {
    const char* pieces[] = {"a", "b", "\xE2\x82\xAC", "c", "\xF0\x9F\x98\x80"};
    for (const Encoding& e : {kEncodings[0], kEncodings[1]}) { // "C" locale MB is ASCII only
        for (size_t length : {255u, 256u, 257u, 512u, 513u, 1000u}) {
            SCOPED_TRACE(std::string(e.name) + " " + std::to_string(length));
            std::string line;
            for (size_t i = 0; i < length; ++i)
                line += pieces[i % 5];
            const std::unique_ptr<ovStringReader> reader = e.make();
            std::istringstream is(e.encode(line + "\r\nend"));
            int st = -1;
            const ovString got = reader->read_line(is, st);
            EXPECT_EQ(st, 0);
            EXPECT_EQ(utf8_of(got), line);
            EXPECT_EQ(utf8_of(reader->read_line(is, st)), "end");
        }
    }
}

TEST(ovStringReader, BadBytesEndTheLineWithStatus) {
    struct Case {
        const char* name;
        std::string bytes;
        Reads expected;
    };
    const Case utf8[] = {
        {"stray 0x80", "ab\x80xy", {{"ab", 1}, {"xy", 0}}},
        {"lead 0xF8", "ab\xF8xy", {{"ab", 1}, {"xy", 0}}},
        {"lead 0xFF", "\xFF", {{"", 1}, {"", 0}}},
        {"cut by the end", "ab\xE2\x82", {{"ab", 1}}},
        {"malformed takes the next byte", "\xC3Gz", {{"?z", 0}}},
        {"even a line feed", "\xC3\nz\n", {{"?z", 0}, {"", 0}}},
        {"NUL ends the line", std::string("ab\0cd", 5), {{"ab", 0}, {"cd", 0}}},
        {"overlong", "\xE0\x80\x80z", {{"?z", 0}}},
        {"surrogate", "\xED\xA0\x80z", {{"?z", 0}}},
        {"well formed",
         "\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80",
         {{"\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80", 0}}},
    };
    const Case utf16[] = {
        {"BOM is a character", std::string("\xFF\xFEh\0i\0", 6), {{"\xEF\xBB\xBFhi", 0}}},
        {"odd last byte", std::string("A\0B", 3), {{"A", 1}}},
        {"pair cut by the end", std::string("A\0\x3D\xD8", 4), {{"A", 1}}},
        {"pair cut inside", std::string("\x3D\xD8\x00", 3), {{"", 1}}},
        {"pair", std::string("\x3D\xD8\x00\xDE", 4), {{"\xF0\x9F\x98\x80", 0}}},
        {"lone low surrogate", std::string("\x00\xDCz\0", 4), {{"?z", 0}}},
        {"high takes the next unit", std::string("\x3D\xD8y\0z\0", 6), {{"?z", 0}}},
        {"CR LF cut", std::string("A\0\r\0\n", 5), {{"A", 1}}},
        {"CR then U+010A", std::string("\r\0\x0A\x01x\0", 6), {{"", 0}, {"x", 0}}},
    };
    ovStringReaderUTF8 r8;
    for (const Case& c : utf8) {
        SCOPED_TRACE(std::string("UTF-8: ") + c.name);
        EXPECT_EQ(lines_of(r8, c.bytes), c.expected);
    }
    ovStringReaderUTF16LE r16;
    for (const Case& c : utf16) {
        SCOPED_TRACE(std::string("UTF-16LE: ") + c.name);
        EXPECT_EQ(lines_of(r16, c.bytes), c.expected);
    }
}

TEST(ovStringReaderMB, ReadsDoubleByteCharactersOfTheLocale) {
    const std::string old = std::setlocale(LC_CTYPE, nullptr);
    if (!std::setlocale(LC_CTYPE, ".932") && !std::setlocale(LC_CTYPE, "ja_JP.SJIS"))
        GTEST_SKIP() << "no Shift-JIS locale here";
    ovStringReaderMB reader;
    EXPECT_EQ(lines_of(reader, "a\x82\xA0z\r\nx"), (Reads{{"a\xE3\x81\x82z", 0}, {"x", 0}}));
    EXPECT_EQ(lines_of(reader, "a\x82"), (Reads{{"a", 1}}));
    std::setlocale(LC_CTYPE, old.c_str());
}

TEST(ovStringReader, NeverThrowsAndReportsThroughTheStream) {
    ovStringReaderUTF8 reader;
    int st = -1;

    std::istringstream strict("A");
    strict.exceptions(std::ios_base::eofbit | std::ios_base::failbit | std::ios_base::badbit);
    EXPECT_EQ(utf8_of(reader.read_line(strict, st)), "A");
    EXPECT_TRUE(strict.eof());

    struct Throwing : std::streambuf {
        int_type underflow() override { throw std::runtime_error("device gone"); }
    } throwing;
    std::istream broken(&throwing);
    EXPECT_TRUE(reader.read_line(broken, st).empty());
    EXPECT_TRUE(st == 0 && broken.bad());

    std::istringstream failed("text");
    failed.setstate(std::ios_base::failbit);
    EXPECT_FALSE(reader.read_line(failed, st).invalid()) << "reads as ended";
    EXPECT_TRUE(reader.read_token(failed, 1, " ", st).invalid());
    EXPECT_EQ(st, 0);
}

TEST(ovStringReaderUTF8, ReadLineAgreesWithReadingCharacterByCharacter) {
    // Buffers that cut the text anywhere, the unbuffered kind (0), and one
    // holding it all, as a string stream does.
    const size_t chunks[] = {0, 1, 2, 3, 5, 15, 16, 17, 33, 100000};
    const std::string run(40, 'q');
    const struct {
        const char* name;
        std::string bytes;
    } cases[] = {
        {"empty", ""},
        {"line endings", "a\r\nb\rc\nd\r\r\n\n\r"},
        {"ASCII around every block size", std::string(15, 'a') + "\n" + std::string(16, 'b') +
                                              "\n" + std::string(17, 'c') + "\r\n" +
                                              std::string(31, 'd') + "\r" + std::string(33, 'e')},
        {"CR LF across a block", std::string(15, 'x') + "\r\n" + std::string(14, 'y') + "\r\nz"},
        {"NUL", std::string("ab\0cd\0", 7) + run},
        {"well formed", run + "\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80" + run + "\xE6\x97\xA5\n"},
        {"stray continuations", run + "\x80" + run + "\xBF\n\x80"},
        {"leads that start nothing", "a\xF8" + run + "\xFF\xFE\n\xC0\x80\xC1\xBF\xF5\x80\x80\x80z"},
        {"malformed sequences", "\xE0\x80\x80\xED\xA0\x80\xF4\x90\x80\x80\xC3(" + run},
        {"leads take line ends", "\xE2\n\n" + run + "\xF0\r\n\r\n\xC3\r\n"},
        {"cut by the end", run + "\xF0\x9F\x98"},
        {"CR at the end", run + "\r"},
        {"one long line", std::string(5000, 'l') + "\xC3\xA9" + std::string(3000, 'm')},
    };
    for (const auto& c : cases) {
        for (size_t chunk : chunks) {
            SCOPED_TRACE(std::string(c.name) + ", chunk " + std::to_string(chunk));
            EXPECT_EQ(line_disagreement(c.bytes, chunk), "");
        }
    }

    // Random texts from pieces that matter to a line: every way a line ends,
    // runs across the 16-byte blocks, and good, bad and cut characters.
    const std::string pieces[] = {"a",
                                  "xyz",
                                  " ",
                                  "abcdefghijklmnop",
                                  run,
                                  "\n",
                                  "\r",
                                  "\r\n",
                                  std::string(1, '\0'),
                                  "\xC3\xA9",
                                  "\xE2\x82\xAC",
                                  "\xF0\x9F\x98\x80",
                                  "\x80",
                                  "\xBF",
                                  "\xC0\x80",
                                  "\xC1",
                                  "\xC3",
                                  "\xE2\x82",
                                  "\xF0\x9F",
                                  "\xF0\x9F\x98",
                                  "\xED\xA0\x80",
                                  "\xF4\x90\x80\x80",
                                  "\xF5",
                                  "\xF8",
                                  "\xFF"};
    const size_t kinds = sizeof(pieces) / sizeof(pieces[0]);
    std::mt19937 rng(14u);
    for (int round = 0; round < 400; ++round) {
        std::string bytes;
        for (int n = std::uniform_int_distribution<int>(0, 40)(rng); n > 0; --n)
            bytes += pieces[std::uniform_int_distribution<size_t>(0, kinds - 1)(rng)];
        for (size_t chunk : chunks) {
            const std::string why = line_disagreement(bytes, chunk);
            if (!why.empty()) {
                ADD_FAILURE() << "round " << round << ", chunk " << chunk << ": " << why;
                return;
            }
        }
    }
}
