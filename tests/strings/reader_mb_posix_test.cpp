// The multibyte reader in a UTF-8 locale, which only POSIX reads (Windows'
// reader takes at most a lead byte and one more).
#include "ovra/ovStringReader.h"

#include "string_test_util.h"

#include <gtest/gtest.h>

#include <clocale>
#include <sstream>
#include <string>

using namespace ovtest;

TEST(ovStringReaderMB, ReadsUtf8LocalesWholeCharacters) {
    const std::string old = std::setlocale(LC_CTYPE, nullptr);
    if (!std::setlocale(LC_CTYPE, "C.UTF-8") && !std::setlocale(LC_CTYPE, "C.utf8"))
        GTEST_SKIP() << "no UTF-8 locale here";
    struct Case {
        const char* name;
        const char* bytes;
        std::string line;
        int status;
    } const cases[] = {
        {"two to four bytes", "\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80\r\n",
         "\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80", 0},
        {"cut by the end", "a\xE2\x82", "a", 1},
        {"rejected byte", "a\xFFz", "a", 1},
        {"stray continuation", "a\x80z", "a", 1},
    };
    ovStringReaderMB reader;
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        std::istringstream is(c.bytes);
        int st = -1;
        EXPECT_EQ(utf8_of(reader.read_line(is, st)), c.line);
        EXPECT_EQ(st, c.status);
    }
    std::setlocale(LC_CTYPE, old.c_str());
}
