#include "ovra/ovHostUser.h"

#include "procedural_test_support.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <climits>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <filesystem>
#include <regex>
#include <string>
#include <vector>

namespace {

// A buffer of `size` characters for the function under test, followed by
// guard bytes that must survive.
struct Guarded {
    explicit Guarded(int size, char fill = '#') : size(size), bytes(size + 8, fill) {}
    char* data() { return bytes.data(); }
    std::string text() const { return std::string(bytes.data(), size); }
    bool guard_intact(char fill = '#') const {
        return std::count(bytes.begin() + size, bytes.end(), fill) == 8;
    }
    int size;
    std::vector<char> bytes;
};

std::string owned(char* text) {
    std::string s = text ? text : "<null>";
    ov_free_string(text);
    return s;
}

} // namespace

TEST(ncha, CountsUpToTheLastNonBlank) {
    struct Case {
        const char* text;
        int len;
        int expected;
    } cases[] = {
        {"", 0, 0},        {"     ", 5, 0},    {"abc  ", 5, 3}, {"a b ", 4, 3},
        {"\tab\t ", 5, 4}, {"abc  xyz", 5, 3}, {"abc", -3, 0},  {" x", 2, 2},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(std::string("'") + c.text + "' len " + std::to_string(c.len));
        EXPECT_EQ(ncha(c.text, c.len), c.expected);
    }
    EXPECT_EQ(ncha(nullptr, 5), 0);
}

TEST(ccase, ChangesAsciiLettersOnly) {
    struct Case {
        const char* text;
        int mode;
        const char* expected;
    } cases[] = {
        {"abc XYZ 123!?", 1, "ABC XYZ 123!?"},
        {"abc XYZ 123!?", 2, "abc xyz 123!?"},
        {"abc XYZ 123!?", 0, "abc xyz 123!?"},
        {"abc XYZ 123!?", -1, "abc xyz 123!?"},
        {"@[`{az", 1, "@[`{AZ"},
        {"@[`{AZ", 2, "@[`{az"},
        // Latin-1 and UTF-8 bytes of accented letters are not ASCII letters.
        {"\xe9\xc9\xff\x80\xc3\xa9zA", 1, "\xe9\xc9\xff\x80\xc3\xa9ZA"},
        {"\xe9\xc9\xff\x80\xc3\x89zA", 2, "\xe9\xc9\xff\x80\xc3\x89za"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(std::string(c.text) + " mode " + std::to_string(c.mode));
        std::string text = c.text;
        ccase(&text[0], static_cast<int>(text.size()), &c.mode);
        EXPECT_EQ(text, c.expected);
    }
    // Only the hidden length is touched.
    std::string text = "abcdef";
    const int up = 1;
    ccase(&text[0], 3, &up);
    EXPECT_EQ(text, "ABCdef");
    ccase(&text[0], -2, &up);
    ccase(nullptr, 3, &up);
    ccase(&text[0], 6, nullptr);
    EXPECT_EQ(text, "ABCdef");
}

TEST(ovghnm, BlankPaddedHostNameAndTypeInAnyBufferSize) {
    const char* host = ov_gethostname();
    ASSERT_NE(host, nullptr) << "the host has a name";
    EXPECT_EQ(ov_gethostname(), host) << "the first copy is kept";
    const int length = static_cast<int>(std::strlen(host));
    EXPECT_GT(length, 0);
    for (int size : {0, 1, length - 1, length, length + 5, 300}) {
        if (size < 0)
            continue;
        SCOPED_TRACE(size);
        Guarded buf(size);
        int len = -5;
        ovghnm(buf.data(), size, &len);
        const int n = size < length ? size : length;
        EXPECT_EQ(len, n);
        EXPECT_EQ(buf.text(), std::string(host, n) + std::string(size - n, ' '));
        EXPECT_TRUE(buf.guard_intact());
    }
    int len = -5;
    ovghnm(nullptr, 10, &len);
    EXPECT_EQ(len, 0);
    Guarded negative(0);
    ovghnm(negative.data(), -4, &len);
    EXPECT_EQ(len, 0);
    EXPECT_TRUE(negative.guard_intact());
    ovghnm(negative.data(), 0, nullptr);

    EXPECT_EQ(ov_gethosttype(), nullptr) << "the host type is never set";
    for (int size : {0, 1, 8}) {
        SCOPED_TRACE(size);
        Guarded buf(size);
        len = -5;
        ovghtp(buf.data(), size, &len);
        EXPECT_EQ(len, 0);
        EXPECT_EQ(buf.text(), std::string(size, ' '));
        EXPECT_TRUE(buf.guard_intact());
    }
}

TEST(ovgetuser, LoginAndFullNameAgreeAndCutToBuffers) {
    char* uid = nullptr;
    ovgetuid(&uid);
    const std::string login = owned(uid);
    EXPECT_NE(login, "<null>");
    EXPECT_NE(login, "USERERROR") << "the process's user has a login name";

    char* user = nullptr;
    char* full = nullptr;
    ovgetuser(&user, &full);
    EXPECT_EQ(owned(user), login);
    const std::string full_name = owned(full);
    EXPECT_FALSE(full_name.empty());
    EXPECT_NE(full_name, "NAMEERROR");

    // Either output alone.
    user = nullptr;
    ovgetuser(&user, nullptr);
    EXPECT_EQ(owned(user), login);
    full = nullptr;
    ovgetuser(nullptr, &full);
    EXPECT_EQ(owned(full), full_name);
    ovgetuid(nullptr);

    // ovgtun: a name that does not fit keeps one trailing blank; every size
    // stays inside its buffer.
    const auto expected = [](const std::string& name, int size) {
        int n = static_cast<int>(name.size());
        if (n > size)
            n = size > 0 ? size - 1 : 0;
        return name.substr(0, n) + std::string(size - n, ' ');
    };
    const int n_login = static_cast<int>(login.size());
    for (int size : {0, 1, 2, n_login - 1, n_login, n_login + 1, 64}) {
        if (size < 0)
            continue;
        SCOPED_TRACE(size);
        Guarded u(size), f(size);
        ovgtun(u.data(), size, f.data(), size);
        EXPECT_EQ(u.text(), expected(login, size));
        EXPECT_EQ(f.text(), expected(full_name, size));
        EXPECT_TRUE(u.guard_intact());
        EXPECT_TRUE(f.guard_intact());
    }
    if (n_login >= 2) {
        Guarded u(n_login - 1), f(1);
        ovgtun(u.data(), n_login - 1, f.data(), 1);
        EXPECT_EQ(u.text().back(), ' ') << "a cut name ends with one blank";
    }
    Guarded none(0);
    ovgtun(none.data(), -3, nullptr, 10);
    EXPECT_TRUE(none.guard_intact());
}

TEST(ovIsLocalLogonNT, ComparesServerAndComputerIgnoringCase) {
    struct Case {
        const char* server;
        const char* computer;
        int expected;
    } cases[] = {
        {"\\\\HOST1", "host1", 1},  {"//Host1", "HOST1", 1},   {"\\/\\host1", "host1", 1},
        {"HOST1", "host1", 1},      {"\\\\HOST1", "host2", 0}, {"\\\\HOST1", "host1x", 0},
        {"\\\\HOST1X", "host1", 0}, {nullptr, "host1", 0},     {"\\\\HOST1", nullptr, 0},
        {nullptr, nullptr, 0},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(std::string(c.server ? c.server : "<unset>") + " / " +
                     (c.computer ? c.computer : "<unset>"));
        proc_test::ScopedEnv server("LOGONSERVER", c.server);
        proc_test::ScopedEnv computer("COMPUTERNAME", c.computer);
        EXPECT_EQ(ovIsLocalLogonNT(), c.expected);
    }
}

class ArgumentStore : public ::testing::Test {
protected:
    void SetUp() override { argsgi(static_cast<int>(m_argv.size()) - 1, m_argv.data()); }
    void TearDown() override { argsgi(0, nullptr); }
    char m_prog[5] = "prog", m_alpha[6] = "alpha", m_empty[1] = "";
    std::vector<char*> m_argv{m_prog, m_alpha, m_empty, nullptr};
};

TEST_F(ArgumentStore, ArggetCopiesWithItsNulWhenItFits) {
    struct Case {
        int index;
        int size;
        std::string expected; // the bytes written, NUL included when it fits
        int len;
    } cases[] = {
        {0, 16, std::string("prog\0", 5), 4},
        {1, 16, std::string("alpha\0", 6), 5},
        {2, 16, std::string("\0", 1), 0},
        {1, 6, std::string("alpha\0", 6), 5},
        {1, 5, "alpha", 5},
        {1, 3, "alp", 3},
        {1, 1, "a", 1},
        {1, 0, "", 0},
        {3, 16, std::string("\0", 1), 0}, // the count itself
        {3, 1, std::string("\0", 1), 0},
        {3, 0, "", 0},
        {-1, 16, std::string("\0", 1), 0},
        {INT_MIN, 16, std::string("\0", 1), 0},
        {INT_MAX, 16, std::string("\0", 1), 0},
        {INT_MAX, 0, "", 0},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE("index " + std::to_string(c.index) + " size " + std::to_string(c.size));
        Guarded buf(c.size, '#');
        int len = -5;
        argget(&c.index, buf.data(), c.size, &len);
        EXPECT_EQ(len, c.len);
        EXPECT_EQ(std::string(buf.data(), c.expected.size()), c.expected);
        // Nothing beyond what was written: the rest of the buffer is not padded.
        for (int i = static_cast<int>(c.expected.size()); i < c.size + 8; ++i)
            EXPECT_EQ(buf.bytes[i], '#') << "byte " << i;
    }
}

TEST_F(ArgumentStore, GivesBackTheStoreAndArggetCopesWithoutPointers) {
    int argc = -5;
    EXPECT_EQ(argsge(&argc), m_argv.data());
    EXPECT_EQ(argc, 3);
    EXPECT_EQ(argsge(nullptr), m_argv.data());
    EXPECT_EQ(get_argc(), 3);
    EXPECT_EQ(get_argv(), m_argv.data());
    int n = -5;
    nargq(&n);
    EXPECT_EQ(n, 3);
    nargq(nullptr);

    const int one = 1;
    int len = -5;
    argget(&one, nullptr, 16, &len);
    EXPECT_EQ(len, 0);
    char buf[8] = "xxxxxxx";
    argget(nullptr, buf, 8, &len);
    EXPECT_STREQ(buf, "");
    EXPECT_EQ(len, 0);
    argget(&one, buf, 8, nullptr);
    EXPECT_STREQ(buf, "alpha");
    // A count with no vector behind it reads as no arguments.
    argsgi(4, nullptr);
    argget(&one, buf, 8, &len);
    EXPECT_STREQ(buf, "");
    EXPECT_EQ(len, 0);
}

TEST(timedp, SecondsSinceTheEpochWithMilliseconds) {
    const double before = static_cast<double>(std::time(nullptr));
    double t = -1;
    timedp(&t);
    const double after = static_cast<double>(std::time(nullptr)) + 1;
    EXPECT_GE(t, before);
    EXPECT_LE(t, after);
    timedp(nullptr);
}

TEST(ovdate, AsctimeTextAndDdateCutToTheBuffer) {
    Guarded full(26);
    ovdate(full.data(), 26);
    EXPECT_EQ(full.bytes[25], '\0');
    const std::regex layout(
        "(Sun|Mon|Tue|Wed|Thu|Fri|Sat) (Jan|Feb|Mar|Apr|May|Jun|Jul|Aug|Sep|"
        "Oct|Nov|Dec) [ 123][0-9] [0-9]{2}:[0-9]{2}:[0-9]{2} 20(2[4-9]|[3-9][0-9])\n");
    EXPECT_TRUE(std::regex_match(std::string(full.data(), 25), layout)) << full.data();
    EXPECT_TRUE(full.guard_intact());

    for (int size : {0, 1, 10, 19, 24}) {
        SCOPED_TRACE(size);
        Guarded cut(size), upper(size, 'x');
        ovdate(cut.data(), size);
        ddate(upper.data(), size);
        EXPECT_TRUE(cut.guard_intact());
        EXPECT_TRUE(upper.guard_intact('x'));
    }
    Guarded wide(40);
    ovdate(wide.data(), 40);
    EXPECT_EQ(wide.bytes[25], '\0');
    EXPECT_EQ(std::string(wide.data() + 26, 14), std::string(14, '#')) << "nothing after the NUL";
    ovdate(nullptr, 26);
}

TEST(ddate, TwentyUpperCaseCharacters) {
    Guarded buf(30, 'x');
    char asc[26];
    ovdate(asc, 26);
    ddate(buf.data(), 30);
    const std::string s(buf.data(), 20);
    EXPECT_TRUE(std::regex_match(
        s, std::regex("[ 0-9][0-9] [A-Z]{3} [0-9]{4} [0-9]{2}\\.[0-9]{2}\\.[0-9]{2}")))
        << s;
    EXPECT_EQ(s.substr(0, 2), std::string(asc + 8, 2));
    std::string month(asc + 4, 3);
    for (char& c : month)
        c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
    EXPECT_EQ(s.substr(3, 3), month);
    EXPECT_EQ(s.substr(7, 4), std::string(asc + 20, 4));
    // The rest of the hidden length is only upper-cased.
    EXPECT_EQ(std::string(buf.data() + 20, 10), std::string(10, 'X'));
    EXPECT_TRUE(buf.guard_intact('x'));
}

TEST(ovwait, SleepsTheGivenMilliseconds) {
    const auto start = std::chrono::steady_clock::now();
    const int ms = 30;
    ovwait(&ms);
    EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(25));
    for (int none : {0, -1, INT_MIN})
        ovwait(&none);
    ovwait(nullptr);
}

TEST(ovchdir, ChangesToTheDirectoryOrHome) {
    const std::filesystem::path original = std::filesystem::current_path();
    proc_test::ScratchDir scratch;
    std::filesystem::create_directory(scratch.at("sub"));
    const auto same = [](const std::filesystem::path& a, const std::string& b) {
        return std::filesystem::equivalent(a, std::filesystem::u8path(b));
    };

    EXPECT_EQ(ovchdir(scratch.at("sub").c_str()), 0);
    EXPECT_TRUE(same(std::filesystem::current_path(), scratch.at("sub")));
    EXPECT_EQ(ovchdir(".."), 0);
    EXPECT_TRUE(same(std::filesystem::current_path(), scratch.at()));
    EXPECT_EQ(ovchdir(scratch.at("missing").c_str()), -1);
    EXPECT_TRUE(same(std::filesystem::current_path(), scratch.at()));
    {
        proc_test::ScopedEnv home("HOME", scratch.at("sub").c_str());
        EXPECT_EQ(ovchdir(nullptr), 0);
        EXPECT_TRUE(same(std::filesystem::current_path(), scratch.at("sub")));
    }
    {
        proc_test::ScopedEnv home("HOME", nullptr);
        EXPECT_EQ(ovchdir(nullptr), -1);
    }
    std::filesystem::current_path(original);
}

class BreakProtocol : public ::testing::Test {
protected:
    void SetUp() override { reset(); }
    void TearDown() override { reset(); }
    static void reset() {
        const int zero = 0;
        ovbrks(&zero);
        OvBreakHandler(nullptr);
        ovbrkc();
        seen().clear();
    }
    static std::vector<int>& seen() {
        static std::vector<int> calls;
        return calls;
    }
    static void record(int count) { seen().push_back(count); }
    static int count() {
        int n = -99;
        ovbrkn(&n);
        return n;
    }
};

TEST_F(BreakProtocol, SettingCountingAndTellingTheHandler) {
    OvBreakHandler(record);
    const int five = 5, zero = 0, minus_two = -2;
    ovbrks(&five);
    EXPECT_EQ(count(), 5);
    EXPECT_EQ(seen(), std::vector<int>{5});
    ovbrks(&zero);
    EXPECT_EQ(count(), 0);
    EXPECT_EQ(seen(), std::vector<int>{5}) << "0 acknowledges without a call";
    ovra_interrupt(SIGINT);
    ovra_interrupt(0);
    EXPECT_EQ(count(), 2);
    EXPECT_EQ(seen(), (std::vector<int>{5, 1, 2}));
    ovbrks(&minus_two);
    EXPECT_EQ(count(), -2) << "only -1 counts up";
    EXPECT_EQ(seen(), (std::vector<int>{5, 1, 2}));
    ovbrks(nullptr);
    EXPECT_EQ(count(), -2);

    OvBreakHandler(nullptr);
    ovra_interrupt(SIGINT);
    EXPECT_EQ(count(), -1);
    EXPECT_EQ(seen().size(), 3u) << "no handler, no call";
}

struct CheckerLog {
    int calls = 0;
    int querying_inside = -1;
    bool raise = false;
};

void checker(void* data) {
    CheckerLog* log = static_cast<CheckerLog*>(data);
    ++log->calls;
    log->querying_inside = ov_querying_break();
    if (log->raise) {
        const int one_more = -1;
        ovbrks(&one_more);
    }
}

TEST_F(BreakProtocol, CheckerRunsOnQueriesOnly) {
    CheckerLog log;
    log.raise = true;
    OvBreakChecker(checker, &log);
    int n = -5;
    ovbrkn(&n);
    EXPECT_EQ(n, 0);
    EXPECT_EQ(log.calls, 0) << "ovbrkn does not ask the checker";

    ovbrkq(&n);
    EXPECT_EQ(log.calls, 1);
    EXPECT_EQ(log.querying_inside, 0) << "ovbrkq is not ov_break_query";
    EXPECT_EQ(n, 1) << "the checker's break is counted before the answer";

    EXPECT_EQ(ov_break_query(), 2);
    EXPECT_EQ(log.calls, 2);
    EXPECT_EQ(log.querying_inside, 1);
    EXPECT_EQ(ov_querying_break(), 0);

    ovbrkc();
    ovbrkq(&n);
    EXPECT_EQ(n, 2) << "removing the checker keeps the count";
    EXPECT_EQ(ov_break_query(), 2);
    EXPECT_EQ(log.calls, 2);
    ovbrkq(nullptr);

    OvBreakChecker(nullptr, &log);
    EXPECT_EQ(ov_break_query(), 2);
    EXPECT_EQ(log.calls, 2);
}

// The C runtime's own signal delivery, on both targets.
TEST_F(BreakProtocol, InstalledAsTheInterruptSignalHandler) {
    OvBreakHandler(record);
    const auto previous = std::signal(SIGINT, ovra_interrupt);
    ASSERT_NE(previous, SIG_ERR);
    ASSERT_EQ(std::raise(SIGINT), 0);
    // The runtime may reset the handler to the default after one delivery.
    std::signal(SIGINT, ovra_interrupt);
    ASSERT_EQ(std::raise(SIGINT), 0);
    std::signal(SIGINT, previous);
    EXPECT_EQ(count(), 2);
    EXPECT_EQ(seen(), (std::vector<int>{1, 2}));
}

TEST(ov_random, BetweenZeroAndOneOverTheWholeRange) {
    std::srand(12345);
    double low = 1, high = 0;
    for (int i = 0; i < 20000; ++i) {
        const double r = ov_random();
        ASSERT_GE(r, 0.0);
        ASSERT_LE(r, 1.0);
        low = r < low ? r : low;
        high = r > high ? r : high;
    }
    EXPECT_LT(low, 0.01);
    EXPECT_GT(high, 0.99);
    // The runtime's own generator and RAND_MAX.
    std::srand(7);
    const double r = ov_random();
    std::srand(7);
    EXPECT_EQ(r, static_cast<double>(std::rand()) / RAND_MAX);
}

TEST(PlatformQueries, Sse2VersionAndRelease) {
    EXPECT_EQ(ov_sse2_support(), 1) << "every x86-64 processor has SSE2";
    EXPECT_EQ(ovWinVersion(), ovWIN_VERSION_NT);
    ov_free_string(nullptr);
}
