#include "ovra/ovIO.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstring>
#include <ostream>
#include <string>
#include <vector>

namespace {

std::vector<std::string> the_pieces;

void collect(const char* text) {
    the_pieces.push_back(text);
}

std::string joined() {
    std::string all;
    for (const std::string& p : the_pieces)
        all += p;
    return all;
}

std::string file_text(const char* name) {
    std::string text;
    if (std::FILE* f = std::fopen(name, "rb")) {
        char buf[256];
        size_t n;
        while ((n = std::fread(buf, 1, sizeof buf, f)) > 0)
            text.append(buf, n);
        std::fclose(f);
    }
    return text;
}

// Every object of a test writes to a scratch global output and reads from a scratch
// global input; print functions are cleared afterwards.
class IOTest : public testing::Test {
protected:
    void SetUp() override {
        the_pieces.clear();
        m_in = std::tmpfile();
        m_out = std::tmpfile();
        ASSERT_NE(m_in, nullptr);
        ASSERT_NE(m_out, nullptr);
        ovIO::setglobalio(m_in, m_out);
    }
    void TearDown() override {
        ovIO::set_the_print_function(nullptr);
        ovIO::setglobalio(stdin, stdout);
        std::fclose(m_in);
        std::fclose(m_out);
        for (const std::string& name : m_files)
            std::remove(name.c_str());
    }
    // What the global output stream received.
    std::string output() {
        std::fflush(m_out);
        std::rewind(m_out);
        std::string text;
        char buf[256];
        size_t n;
        while ((n = std::fread(buf, 1, sizeof buf, m_out)) > 0)
            text.append(buf, n);
        return text;
    }
    void give_input(const std::string& text) {
        std::fwrite(text.data(), 1, text.size(), m_in);
        std::rewind(m_in);
    }
    const char* scratch(const char* stem) {
        m_files.push_back(std::string("ovio_io_") + stem + ".txt");
        std::remove(m_files.back().c_str());
        return m_files.back().c_str();
    }

    std::FILE* m_in = nullptr;
    std::FILE* m_out = nullptr;
    std::vector<std::string> m_files;
};

TEST_F(IOTest, PutSFormatsInTheLibrarysOwnLanguage) {
    ovIO io;
    io.set_print_function(&collect);
    struct Case {
        const char* format;
        const char* expected;
    };
    // One case per argument type.
    the_pieces.clear();
    io.put_s("%(8)d|%h|%(3)u!", 42, 7, 42u);
    EXPECT_EQ(joined(), "42      |7|42 !");
    EXPECT_EQ(io, ovIO_WRITE_OK);
    the_pieces.clear();
    io.put_s("%(4)D|%L|%(3)c|", 42L, 42UL, '*');
    EXPECT_EQ(joined(), "42  |42|*  |");
    const Case doubles[] = {{"%(+8.2)f|", "+3.14   |"},
                            {"%f", "4"}, // precision 0 by default
                            {"%(.3)F", "3.700"},
                            {"%(123456.78)f", "3.70000000"}};
    for (const Case& c : doubles) {
        SCOPED_TRACE(c.format);
        the_pieces.clear();
        io.put_s(c.format, std::strchr(c.format, '+') ? 3.14159 : 3.7);
        EXPECT_EQ(joined().substr(0, std::strlen(c.expected)), c.expected);
    }
    const Case texts[] = {
        {"100%%", "100%"},       {"%q and %", "%q and %"}, // unknown letter, lone "%"
        {"%(5", "%(5"},                                    // the format ends inside the parentheses
        {"[%(6)s]", "[ab    ]"}, {"[%s]", "[(null)]"},
    };
    for (const Case& c : texts) {
        SCOPED_TRACE(c.format);
        the_pieces.clear();
        io.put_s(c.format, std::strchr(c.format, ']') && std::strchr(c.format, '(')
                               ? "ab"
                               : static_cast<const char*>(nullptr));
        EXPECT_EQ(joined(), c.expected);
    }
    EXPECT_EQ(output(), "") << "everything went to the print function";
}

TEST_F(IOTest, VisibleStringsShowControlCharacters) {
    ovIO io;
    io.set_print_function(&collect);
    io.put_s("%r|", "a\tb\x01\n\r");
    EXPECT_EQ(joined(), "a\\tb<1>\\n\\r|");
    the_pieces.clear();
    io.put_s("%(8)R|", "x\x1f");
    EXPECT_EQ(joined(), "x<31>   |");

    // Long results go out in pieces as they fill, and the padding is dropped.
    const std::string tabs(600, '\t');
    the_pieces.clear();
    io.put_s("%(2000)r|", tabs.c_str());
    std::string expected;
    for (int i = 0; i < 600; ++i)
        expected += "\\t";
    EXPECT_EQ(joined(), expected + "|");
    EXPECT_GE(the_pieces.size(), 3u);
}

TEST_F(IOTest, ATenCharacterSpecifierEndsTheProcess) {
    testing::FLAGS_gtest_death_test_style = "threadsafe";
    ovIO io;
    io.set_print_function(&collect);
    io.put_s("%(123456789)d|", 1); // nine are fine
    EXPECT_EQ(joined().back(), '|');
    EXPECT_DEATH(io.put_s("%(1234567890)d", 1), "");
    // Unclosed: the scan copies as it goes, so an eleventh character is one too many.
    the_pieces.clear();
    io.put_s("%(1234567890");
    EXPECT_EQ(joined(), "%(1234567890");
    EXPECT_DEATH(io.put_s("%(12345678901"), "");
}

TEST_F(IOTest, PrintFunctionsCaptureOnlyTheGlobalOutput) {
    ovIO::set_the_print_function(&collect);
    ovIO global;
    global.put_s("to %s", "screen");
    global.printf("%d-%s", 7, "x");
    EXPECT_EQ(joined(), "to screen7-x");
    EXPECT_EQ(output(), "");

    ovIO unnamed("");
    unnamed.put_s("also");
    EXPECT_EQ(the_pieces.back(), "also");

    const char* name = scratch("w");
    {
        ovIO file(name, 'w');
        EXPECT_EQ(file, ovIO_OPENED);
        file.put_s("in file %d", 1);
        file.newline(1);
        // Streams get the same text as print functions, long visible strings included.
        file.put_s("%(3)c|%r|%(5)s|%q%", 'x', std::string(600, '\t').c_str(), "ab");
    }
    std::string tabs;
    for (int i = 0; i < 600; ++i)
        tabs += "\\t";
    EXPECT_EQ(file_text(name), "in file 1\nx  |" + tabs + "|ab   |%q%");
    EXPECT_EQ(the_pieces.back(), "also") << "file output is never captured";

    // put_c and long runs of line ends bypass every print function.
    the_pieces.clear();
    global.newline(3);
    ASSERT_EQ(the_pieces.size(), 1u);
    EXPECT_EQ(the_pieces[0], "\n\n\n");
    global.newline(40);
    global.put_c('!');
    EXPECT_EQ(the_pieces.size(), 1u);
    EXPECT_EQ(output(), std::string(40, '\n') + "!");

    ovprintf("%s=%d", "n", 3);
    ovoutstring("%(4)d|", 5);
    EXPECT_EQ(joined(), "\n\n\nn=35   |");
}

TEST_F(IOTest, StreamBufferWritesThroughAnIO) {
    ovIO::set_the_print_function(&collect);
    {
        ovStreamBuffer buffer;
        std::ostream os(&buffer);
        os << "hello " << 42;
        EXPECT_TRUE(the_pieces.empty()) << "gathered until flushed";
        os << std::flush;
        EXPECT_EQ(joined(), "hello 42");
        os << std::string(2000, 'z');
    }
    EXPECT_EQ(joined().size(), 8u + 2000u) << "the rest went out when the buffer went";
}

TEST_F(IOTest, GetSAndGetCGiveLinesWithOneLineFeed) {
    give_input("one\r\ntwo\n\nlast");
    ovIO io;
    char line[1024];
    EXPECT_EQ(io.get_s(line), ovIO_READ_OK);
    EXPECT_STREQ(line, "one\n");
    char c = 0;
    EXPECT_EQ(io.get_c(c), ovIO_READ_OK);
    EXPECT_EQ(c, 't');
    EXPECT_EQ(io.get_s(line), ovIO_READ_OK);
    EXPECT_STREQ(line, "wo\n");
    EXPECT_EQ(io.get_s(line), ovIO_READ_OK);
    EXPECT_STREQ(line, "\n");
    EXPECT_EQ(io.get_s(line), ovIO_READ_OK);
    EXPECT_STREQ(line, "last\n") << "a last line without a line end gets one";
    EXPECT_EQ(io.get_s(line), ovIO_READ_ERROR);
    EXPECT_EQ(io.get_c(c), ovIO_END_OF_FILE);

    // A long line comes in pieces that leave room for the added line feed.
    std::rewind(m_in);
    const std::string long_line(3000, 'x');
    std::fwrite(long_line.data(), 1, long_line.size(), m_in);
    std::rewind(m_in);
    ovIO reader;
    EXPECT_EQ(reader.get_s(line), ovIO_READ_OK);
    EXPECT_EQ(std::strlen(line), 1023u);
}

TEST_F(IOTest, ReadlineSplitsFieldsAndConvertsByLetter) {
    ovIO io;
    int32_t d = 0;
    double f = 0;
    char s[1024] = "";
    EXPECT_EQ(io.readline("12 3.5 abc", "dfs", &d, &f, s), 3);
    EXPECT_EQ(d, 12);
    EXPECT_EQ(f, 3.5);
    EXPECT_STREQ(s, "abc");

    char a[16] = "", b[16] = "";
    EXPECT_EQ(io.readline("a,b,c", "(,)s(,)s", a, b), 2);
    EXPECT_STREQ(a, "b");
    EXPECT_STREQ(b, "c");

    int16_t h = 0;
    uint16_t us = 0;
    uint32_t u = 0;
    int32_t l = 0;
    unsigned long big = 0;
    EXPECT_EQ(io.readline("\t-7.9  65536.5 4000000000 -12x 99\r\n", "hUulL", &h, &us, &u, &l, &big),
              5);
    EXPECT_EQ(h, -7) << "truncated toward zero";
    EXPECT_EQ(us, 0) << "taken modulo 2^16";
    EXPECT_EQ(u, 4000000000u);
    EXPECT_EQ(l, -12);
    EXPECT_EQ(big, 99u) << "the line end is not part of the field";

    EXPECT_EQ(io.readline("x y", "LL", &big, &big), 0) << "L counts only what converts";
    char rest[64] = "";
    EXPECT_EQ(io.readline("cmd the rest\tof it\n", "sr", s, rest), 2);
    EXPECT_STREQ(s, "cmd");
    EXPECT_STREQ(rest, "the rest\tof it") << "only the field's own end becomes a blank";
    EXPECT_EQ(io.readline("1 2", "?d", &d), 2) << "an unknown letter skips a field";
    EXPECT_EQ(d, 2);
    EXPECT_EQ(io.readline("", "d", &d), 0);
    EXPECT_EQ(io.readline("5", nullptr), 0);

    give_input("8 9\n");
    ovIO from_input;
    int32_t x = 0, y = 0;
    EXPECT_EQ(from_input.readline(nullptr, "dd", &x, &y), 2);
    EXPECT_EQ(x + y, 17);
}

TEST_F(IOTest, OpeningByModeAndExistence) {
    const char* name = scratch("modes");
    EXPECT_EQ(ovIO::exist_file(name, nullptr), 0);
    {
        ovIO reader(name, 'r');
        EXPECT_EQ(reader, ovIO_NO_FILE);
        EXPECT_EQ(reader.open_file('r'), 0);
    }
    {
        ovIO odd(name, 'x'); // inverted on purpose: created, yet not owned nor "opened"
        EXPECT_EQ(odd, ovIO_NOT_OPENED);
        odd.put_s("kept");
        std::fclose(odd.stream()); // the object does not own it
    }
    EXPECT_EQ(file_text(name), "kept");
    ovIO probe;
    EXPECT_EQ(ovIO::exist_file(name, &probe), 1);
    EXPECT_EQ(probe, ovIO_FILE_EXISTS);
    EXPECT_EQ(ovIO::exist_file(nullptr, &probe), 0);
    EXPECT_EQ(ovIO_NO_FILE, probe);

    ovIO reader(name, 'R');
    EXPECT_EQ(reader, ovIO_OPENED);
    char line[1024];
    EXPECT_EQ(reader.get_s(line), ovIO_READ_OK);
    EXPECT_STREQ(line, "kept\n");
    reader.put_s("nowhere");
    EXPECT_EQ(reader, ovIO_NO_OUTPUT);
    reader.put_c('x');
    EXPECT_EQ(reader, ovIO_NO_OUTPUT);

    ovIO writer(scratch("out"), 'W');
    char c;
    EXPECT_EQ(writer.get_c(c), ovIO_NO_INPUT);
    EXPECT_EQ(writer.get_s(line), ovIO_NO_INPUT);

    ovIO both(scratch("both"));
    EXPECT_EQ(both, ovIO_OPENED);
    both.put_s("%d", 5);
    ovIO failed("ovio_no_such_dir/x.txt");
    EXPECT_EQ(failed, ovIO_NOT_OPENED);
}

TEST(ovSpaceballInput, DispatchesToTheCallback) {
    EXPECT_EQ(ovSpaceballInput::dispatch_event(1, 2, 3), 0);
    ovSpaceballInput::set_callback([](unsigned m, unsigned long long w, long long l) {
        return static_cast<int>(m + w + static_cast<unsigned long long>(l));
    });
    EXPECT_EQ(ovSpaceballInput::dispatch_event(1, 2, 3), 6);
    ovSpaceballInput::set_callback(nullptr);
    int window;
    ovSpaceballInput::set_window(&window);
    EXPECT_EQ(ovSpaceballInput::get_window(), &window);
    ovSpaceballInput::set_window(nullptr);
}

} // namespace
