#include "ovra/ovFileUtils.h"
#include "ovra/ovIOWrap.h"

#include "procedural_test_support.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <climits>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <string>

using proc_test::ScopedEnv;
using proc_test::ScratchDir;
using proc_test::TableGuard;

namespace {

std::string expand(const std::string& in, int n = INT_MIN) {
    char out[1025];
    std::memset(out, 'Z', sizeof out);
    fc_env_variable(in.data(), n == INT_MIN ? static_cast<int>(in.size()) : n, out);
    return out;
}

std::string prepared(const std::string& in) {
    char out[1025];
    fc_process_pathname(in.data(), static_cast<int>(in.size()), out);
    return out;
}

// Fortran-style calls: the name, its hidden length, then the count.
void sta(const std::string& name, int* id, int* type, int& ierr) {
    const int n = static_cast<int>(name.size());
    fcusta(name.data(), n, &n, id, type, &ierr);
}
void del(const std::string& name, int is_file, int& ierr) {
    const int n = static_cast<int>(name.size());
    fcudel(name.data(), n, &n, &is_file, &ierr);
}
void mkd(const std::string& name, int& ierr) {
    const int n = static_cast<int>(name.size());
    fcumkd(name.data(), n, &n, &ierr);
}
void dat(const std::string& name, int which, int* date, int& ierr) {
    const int n = static_cast<int>(name.size());
    fcudat(name.data(), n, &n, &which, date, &ierr);
}

bool exists(const std::string& path) {
    return std::filesystem::exists(std::filesystem::u8path(path));
}

class ExpansionOn : public testing::Test {
protected:
    void SetUp() override { fc_allow_env_in_paths(1); }
    void TearDown() override { fc_allow_env_in_paths(1); }
};

} // namespace

TEST(fc_env_variable, ExpandsReferencesAtTheStartAndLogicalNames) {
    const std::string big(3000, 'v'), long_name = "p" + std::string(2000, 'q');
    ScopedEnv home("HOME", "/home/me");
    ScopedEnv data("OVRA_T_DATA", "/srv/data");
    ScopedEnv no("OVRA_T_NONE", nullptr);
    ScopedEnv homeuser("HOMEuser", "/u");
    ScopedEnv a("OVRA_T_A", "OVRA_T_B");
    ScopedEnv b("OVRA_T_B", "OVRA_T_C");
    ScopedEnv c("OVRA_T_C", "/end");
    ScopedEnv d("OVRA_T_D", "OVRA_T_E");
    ScopedEnv e("OVRA_T_E", "X");
    ScopedEnv loop1("OVRA_T_L1", "OVRA_T_L2");
    ScopedEnv loop2("OVRA_T_L2", "OVRA_T_L1");
    ScopedEnv v("OVRA_T_BIG", big.c_str());
    ScopedEnv s("OVRA_T_S", "/s");
    struct Case {
        std::string in, expected;
        int n = INT_MIN; // the whole input
    } const cases[] = {
        {"", ""},
        {"$OVRA_T_DATA/x/y", "/srv/data/x/y"},
        {"$OVRA_T_DATA", "/srv/data"},
        {"$OVRA_T_NONE/x", "/x"},
        {"$OVRA_T_NONE", ""},
        {"$", ""},
        {"~", "/home/me"},
        {"~/data", "/home/me/data"},
        {"~user/data", "/u/data"},
        {"$OVRA_T_DATA\\x/y", "/y"}, // a backslash belongs to the name
        {"plain/path", "plain/path"},
        {"C:\\dir\\f", "C:\\dir\\f"}, // expansion alone keeps backslashes
        // The count limits the input; zero or less gives nothing.
        {"$OVRA_T_DATA/abc", "", 0},
        {"$OVRA_T_DATA/abc", "", -5},
        {"$OVRA_T_DATA/abc", "/srv/data/ab", 15},
        {"$OVRA_T_DATAXX", "/srv/data", 12},
        {"OVRA_T_A", "OVRA_T_", 7}, // "OVRA_T_" is no variable
        // An embedded NUL ends the name.
        {std::string("$OVRA_T_DATA/a\0bc", 17), "/srv/data/a"},
        {std::string("ab\0cd", 5), "ab"},
        // Chains stop at a one-character value; a loop after a fixed number of
        // levels: 63 lookups from L1 end on L2.
        {"OVRA_T_A", "/end"},
        {"OVRA_T_D", "OVRA_T_E"},
        {"OVRA_T_L1", "OVRA_T_L2"},
        // Long values are cut at 1024.
        {"$OVRA_T_BIG", big.substr(0, 1024)},
        {"$OVRA_T_BIG/tail", big.substr(0, 1024)},
        {"OVRA_T_BIG", big.substr(0, 1024)},
        {long_name, long_name.substr(0, 1024)},
        {"$OVRA_T_S/" + std::string(2000, 'r'), "/s/" + std::string(1021, 'r')},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::Message() << c.in.substr(0, 40) << " n " << c.n);
        EXPECT_EQ(expand(c.in, c.n), c.expected);
    }
}

TEST(fc_env_variable, HomeUnsetGivesEmpty) {
    ScopedEnv home("HOME", nullptr);
    EXPECT_EQ(expand("~"), "");
    EXPECT_EQ(expand("~/x"), "/x");
}

TEST_F(ExpansionOn, ProcessPathnameTurnsBackslashesAfterExpansionOrCopiesWhenOff) {
    ScopedEnv none("C:\\dir\\f", nullptr);
    ScopedEnv data("OVRA_T_WIN", "D:\\work");
    ScopedEnv srv("OVRA_T_DATA", "/srv");
    EXPECT_EQ(prepared("C:\\dir\\f"), "C:/dir/f");
    EXPECT_EQ(prepared("$OVRA_T_WIN/a\\b"), "D:/work/a/b");

    // With expansion off the name is copied and clamped.
    EXPECT_EQ(fc_allow_env_in_paths(0), 0);
    EXPECT_EQ(prepared("$OVRA_T_DATA\\x"), "$OVRA_T_DATA/x");
    char out[1025 + 16];
    std::memset(out, 'G', sizeof out);
    const std::string huge(5000, 'h');
    fc_process_pathname(huge.data(), 5000, out);
    EXPECT_EQ(std::string(out), huge.substr(0, 1024));
    EXPECT_EQ(out[1025], 'G') << "nothing written past the 1025-byte buffer";
    fc_process_pathname(nullptr, 10, out);
    EXPECT_STREQ(out, "");
    fc_process_pathname("abc", -1, out);
    EXPECT_STREQ(out, "");
}

TEST(fcuerr, ClassifiesEveryRowOnEveryPlatform) {
    struct Row {
        int value, cls, code;
    } const rows[] = {
        {0, 0, 0},         {EPERM, 7, 72},        {ENOENT, 1, 11},      {EINTR, 0, 0},
        {EIO, 3, 35},      {EBADF, 1, 32},        {EAGAIN, 9, 91},      {EACCES, 7, 71},
        {EBUSY, 8, 84},    {EEXIST, 4, 41},       {ENODEV, 8, 85},      {ENOTDIR, 1, 13},
        {EISDIR, 1, 15},   {ENFILE, 9, 92},       {EMFILE, 3, 38},      {ENOSPC, 8, 82},
        {EROFS, 7, 74},    {ENAMETOOLONG, 1, 13}, {ENOTEMPTY, 2, 23},   {-1000, 20, 140},
        {999, 12, 120},    {-1, 12, 120},         {-999, 12, 120},      {EINVAL, 12, 120},
        {ENOSYS, 12, 120}, {EDEADLK, 12, 120},    {EOVERFLOW, 12, 120},
    };
    for (const Row& r : rows) {
        SCOPED_TRACE(r.value);
        int cls = -7, code = -7, only = -7;
        fcuerr(&r.value, &cls, &code);
        fcmcer(&r.value, &only);
        EXPECT_EQ(cls, r.cls);
        EXPECT_EQ(code, r.code);
        EXPECT_EQ(only, r.cls);
    }
    // The Windows runtime's EWOULDBLOCK is its own number; elsewhere it is EAGAIN.
    if (EWOULDBLOCK != EAGAIN) {
        int cls = 0, code = 0;
        const int e = EWOULDBLOCK;
        fcuerr(&e, &cls, &code);
        EXPECT_EQ(cls, 2);
        EXPECT_EQ(code, 21);
    }
}

TEST_F(ExpansionOn, StatusOfDirectoryFileAndMissingName) {
    ScratchDir dir;
    const std::string file = dir.write("f.txt", "abc");
    int id[2] = {-5, -5}, type = -5, ierr = -5;
    sta(dir.at(), id, &type, ierr);
    EXPECT_EQ(ierr, 0);
    EXPECT_EQ(type, 0);
    sta(file, id, &type, ierr);
    EXPECT_EQ(ierr, 0);
    EXPECT_EQ(type, 1);
    sta(file, nullptr, nullptr, ierr);
    EXPECT_EQ(ierr, 0);

    id[0] = id[1] = type = -5;
    sta(dir.at("missing"), id, &type, ierr);
    EXPECT_EQ(ierr, ENOENT);
    EXPECT_EQ(id[0], -5);
    EXPECT_EQ(id[1], -5);
    EXPECT_EQ(type, -5);

    // The name arrives blank-padded, as Fortran stores it; n says what counts.
    // Counts beyond the path buffer are clamped: a plain failure, no overrun.
    const std::string huge = dir.at(std::string(3000, 'q'));
    const int big = static_cast<int>(huge.size());
    sta(huge, id, &type, ierr);
    EXPECT_NE(ierr, 0);
    fcusta(huge.data(), big, &big, nullptr, nullptr, &ierr);
    EXPECT_NE(ierr, 0);

    const std::string padded = file + "      ";
    const int n = static_cast<int>(file.size());
    fcusta(padded.data(), static_cast<int>(padded.size()), &n, id, &type, &ierr);
    EXPECT_EQ(ierr, 0);
    fcusta(file.data(), n, nullptr, id, &type, &ierr);
    EXPECT_EQ(ierr, -1);
}

TEST_F(ExpansionOn, SizeChecksItsCountAndClassifiesFailures) {
    ScratchDir dir;
    const std::string file = dir.write("s.bin", std::string(1234, 'x'));
    int size = -1, ierr = -1;
    fcusiz(file.data(), static_cast<int>(file.size()), static_cast<int>(file.size()), size, ierr);
    EXPECT_EQ(ierr, 0);
    EXPECT_EQ(size, 1234);

    const std::string missing = dir.at("none");
    fcusiz(missing.data(), 99, static_cast<int>(missing.size()), size, ierr);
    EXPECT_EQ(ierr, ENOENT);
    EXPECT_EQ(size, 0);

    struct Case {
        int n, hidden, expected;
    } const cases[] = {
        {static_cast<int>(file.size()), static_cast<int>(file.size()), 0},
        {0, 2000, -1},
        {-4, 2000, -1},
        {1024, 2000, -1},
        {1023, 1022, -1},
        {static_cast<int>(file.size()), static_cast<int>(file.size()) - 1, -1},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::Message() << "n " << c.n << " hidden " << c.hidden);
        std::string name = file;
        name.resize(2000, ' ');
        fcsize(name.data(), c.hidden, &c.n, &size, &ierr);
        EXPECT_EQ(ierr, c.expected);
    }
    const int n = static_cast<int>(missing.size());
    fcsize(missing.data(), n, &n, &size, &ierr);
    EXPECT_EQ(ierr, 1) << "class of ENOENT";
}

TEST_F(ExpansionOn, MakeAndDeleteDirectoriesAndFiles) {
    ScratchDir dir;
    const std::string sub = dir.at("sub");
    int ierr = -5;
    mkd(sub, ierr);
    EXPECT_EQ(ierr, 0);
    EXPECT_TRUE(std::filesystem::is_directory(sub));
    mkd(sub, ierr);
    EXPECT_EQ(ierr, EEXIST);
    mkd(dir.at("no/such/parent"), ierr);
    EXPECT_EQ(ierr, ENOENT);

    const std::string inner = dir.write("sub/inner.txt", "keep");
    del(sub, 0, ierr);
    EXPECT_NE(ierr, 0) << "a directory with contents stays";
    EXPECT_EQ(proc_test::read_all(inner), "keep");
    del(inner, 1, ierr);
    EXPECT_EQ(ierr, 0);
    EXPECT_FALSE(exists(inner));
    del(inner, 1, ierr);
    EXPECT_EQ(ierr, ENOENT);
    del(sub, 0, ierr);
    EXPECT_EQ(ierr, 0);
    EXPECT_FALSE(exists(sub));

    const int n = 3;
    fcudel("abc", 3, &n, nullptr, &ierr);
    EXPECT_EQ(ierr, -1);
}

TEST_F(ExpansionOn, DatesOfAFileAndCheckedArguments) {
    ScratchDir dir;
    const std::string file = dir.write("d.txt", "d");
    int date[7] = {-5, -5, -5, -5, -5, -5, -5};
    int ierr = -5;
    dat(file, 2, date, ierr);
    EXPECT_EQ(ierr, 0);
    EXPECT_GE(date[0], 2020);
    EXPECT_GE(date[1], 1);
    EXPECT_LE(date[1], 12);
    EXPECT_EQ(date[6], 0);
    int creation[7];
    dat(file, 3, creation, ierr); // any other value: creation time
    EXPECT_EQ(ierr, 0);
    EXPECT_EQ(creation[0], date[0]);

    const int n = static_cast<int>(file.size());
    const int bad_n = 0;
    for (int which : {0, 3, -1}) {
        SCOPED_TRACE(which);
        fcdate(file.data(), n, &n, nullptr, &which, date, &ierr);
        EXPECT_EQ(ierr, -1);
    }
    const int one = 1;
    fcdate(file.data(), n, &bad_n, nullptr, &one, date, &ierr);
    EXPECT_EQ(ierr, -1);
    fcdate(file.data(), n, &n, nullptr, &one, date, &ierr);
    EXPECT_EQ(ierr, 0);
    const std::string missing = dir.at("gone");
    const int m = static_cast<int>(missing.size());
    date[0] = -9;
    fcdate(missing.data(), m, &m, nullptr, &one, date, &ierr);
    EXPECT_EQ(ierr, 1);
    EXPECT_EQ(date[0], -9);
}

TEST_F(ExpansionOn, TreeDeletionRemovesOnlyTheNamedTree) {
    ScratchDir dir;
    dir.write("keep.txt", "k");
    std::filesystem::create_directories(dir.at("tree/a/b"));
    dir.write("tree/a/b/f.txt", "f");
    int ierr = -5;
    const std::string tree = dir.at("tree");
    const int n = static_cast<int>(tree.size());
    fcuddl(tree.data(), n, &n, &ierr);
    if (ierr != 0 && g_system("rm --version > /dev/null 2>&1") != 0)
        GTEST_SKIP() << "no rm command on this system's command interpreter";
    EXPECT_EQ(ierr, 0);
    EXPECT_FALSE(exists(tree));
    EXPECT_TRUE(exists(dir.at("keep.txt")));
}

// Faults the disk rarely gives on demand, injected through the I/O table: each
// file utility reports the failure and leaves the file as it was.
namespace {
int g_fault = 0;
template <class... A> int failing(A...) {
    errno = g_fault;
    return -1;
}
int failing_open(const char*, int, ...) {
    errno = g_fault;
    return -1;
}
} // namespace

TEST_F(ExpansionOn, InjectedFaultsAreReportedAndLoseNothing) {
    ScratchDir dir;
    const std::string file = dir.write("victim.txt", "precious");
    const int n = static_cast<int>(file.size());
    struct Fault {
        int value, cls;
    } const faults[] = {{EIO, 3}, {ENOSPC, 8}, {EACCES, 7}, {EINTR, 0}};
    for (const Fault& f : faults) {
        SCOPED_TRACE(f.value);
        TableGuard guard;
        g_fault = f.value;
        ov_the_stat_func = failing;
        ov_the_unlink_func = failing;
        ov_the_open_func = failing_open;
        ov_the_read_func = failing;
        ov_the_write_func = failing;

        int id[2] = {-5, -5}, type = -5, ierr = -5;
        sta(file, id, &type, ierr);
        EXPECT_EQ(ierr, f.value);
        EXPECT_EQ(id[0], -5);
        EXPECT_EQ(type, -5);

        int size = -5;
        fcusiz(file.data(), n, n, size, ierr);
        EXPECT_EQ(ierr, f.value);
        EXPECT_EQ(size, 0);
        fcsize(file.data(), n, &n, &size, &ierr);
        EXPECT_EQ(ierr, f.cls) << "EINTR classes as success";

        int date[7] = {-5, -5, -5, -5, -5, -5, -5};
        dat(file, 2, date, ierr);
        EXPECT_EQ(ierr, f.value);
        EXPECT_EQ(date[0], -5);
        const int one = 1;
        fcdate(file.data(), n, &n, nullptr, &one, date, &ierr);
        EXPECT_EQ(ierr, f.cls);
        EXPECT_EQ(date[0], -5);

        del(file, 1, ierr);
        EXPECT_EQ(ierr, f.value);

        errno = 0;
        EXPECT_EQ(ov_open2(file.c_str(), O_RDONLY), -1);
        EXPECT_EQ(errno, f.value);
        char buf[4];
        EXPECT_EQ(ov_read(0, buf, 4), -1);
        EXPECT_EQ(ov_write(1, "xx", 2), -1);
        EXPECT_EQ(errno, f.value);

        EXPECT_EQ(proc_test::read_all(file), "precious");
    }
}

// A stat that cannot describe the file (EOVERFLOW) is retried with the 64-bit
// record, which is not part of the replaceable table.
TEST_F(ExpansionOn, StatusRetriesOverflowWithTheWideRecord) {
    ScratchDir dir;
    const std::string file = dir.write("big.txt", "b");
    TableGuard guard;
    g_fault = EOVERFLOW;
    ov_the_stat_func = failing;
    int id[2] = {-5, -5}, type = -5, ierr = -5;
    sta(file, id, &type, ierr);
    EXPECT_EQ(ierr, 0);
    EXPECT_EQ(type, 1);
    sta(dir.at("absent"), id, &type, ierr);
    EXPECT_EQ(ierr, ENOENT);
}
