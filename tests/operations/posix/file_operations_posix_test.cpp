// What only the POSIX file operations do: lexical full paths, links,
// permissions, and rename replacing a target.
#include "ovra/ovFileOperations.h"
#include "ovra/ovFileOpsTester.h"
#include "ovra/ovFrustrumChooser.h"

#include "../../support/scratch_dir.h"

#include <gtest/gtest.h>

#include <fstream>
#include <functional>
#include <set>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace ovtest;
namespace fs = std::filesystem;

namespace {

const ovIFileOperations* ops() {
    return ovFrustrumChooser(nullptr).file_operations();
}

void put(const fs::path& p, const std::string& s) {
    std::ofstream(p, std::ios::binary) << s;
}

std::string contents(const fs::path& p) {
    std::ifstream in(p, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

struct Walk : ovFileOpsTester {
    using ovFileOpsTester::advance;
};

constexpr uid_t kNobody = 65534;

// Runs `body` where permissions are enforced: here for an ordinary user, in a child
// process that drops to "nobody" when the tests run as root. The scratch directory is
// handed to that user first. Returns the body's failure count (or 100 when the child
// could not run it).
// Entries named in `keep` stay root's.
int with_permissions_enforced(const ScratchDir& dir, const std::function<int()>& body,
                              const std::set<std::string>& keep = {}) {
    if (::geteuid() != 0)
        return body();
    for (const auto& e : fs::recursive_directory_iterator(dir.native()))
        if (!keep.count(e.path().filename().string()) &&
            ::lchown(e.path().c_str(), kNobody, kNobody) != 0)
            return 100;
    if (::chown(dir.native().c_str(), kNobody, kNobody) != 0)
        return 100;
    // The scratch directory's parent must be searchable by that user too.
    const pid_t pid = ::fork();
    if (pid == 0) {
        if (::setgid(kNobody) != 0 || ::setuid(kNobody) != 0)
            ::_exit(100);
        ::_exit(body());
    }
    int status = 0;
    if (pid < 0 || ::waitpid(pid, &status, 0) != pid || !WIFEXITED(status))
        return 100;
    return WEXITSTATUS(status);
}

} // namespace

TEST(ovPosixFileOperations, FullPathIsLexicalAndDoesNotResolveLinks) {
    ScratchDir dir;
    fs::create_directory(dir.native("real"));
    fs::create_directory_symlink(dir.native("real"), dir.native("link"));
    const std::string cwd = fs::current_path().generic_u8string();
    const std::string scratch = dir.native().generic_u8string();
    const struct {
        std::string in;
        std::string out;
    } cases[] = {
        {"/a/b/../c/./d", "/a/c/d"},
        {"/..", "/"},
        {"/../../x", "/x"},
        {"/", "/"},
        {".", cwd},
        {"no/such/../thing", cwd + "/no/thing"},
        {"C:/x", cwd + "/C:/x"},
        {scratch + "/link/f", scratch + "/link/f"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.in);
        EXPECT_EQ(utf8_of(ops()->full_path(ovPathName(utf8_text(c.in))).string()), c.out);
    }
}

TEST(ovPosixFileOperations, OsStyleIsTheTextUnchanged) {
    for (const char* p : {"a/b/c", "abc", "/x/y", "a\\b"}) {
        SCOPED_TRACE(p);
        const ovPathName path(utf8_text(p));
        EXPECT_EQ(ops()->os_style_path(path), path.string());
    }
}

TEST(ovPosixFileOperations, RenameFileReplacesAnExistingTarget) {
    ScratchDir dir;
    put(dir.native("a"), "a");
    put(dir.native("b"), "b");
    EXPECT_TRUE(ops()->rename_file(dir.path("a"), ovFileName(utf8_text("b"))));
    EXPECT_FALSE(fs::exists(dir.native("a")));
    EXPECT_EQ(contents(dir.native("b")), "a");
}

TEST(ovPosixFileOperations, LinksAreFollowedForTypesButNeverChanged) {
    ScratchDir dir;
    put(dir.native("target"), "t");
    fs::permissions(dir.native("target"), fs::perms::owner_read);
    fs::create_symlink(dir.native("target"), dir.native("link"));
    fs::create_symlink(dir.native("gone"), dir.native("dangling"));
    EXPECT_EQ(ops()->type_of_path(dir.path("link")), ovPATH_FILE);
    EXPECT_EQ(ops()->type_of_path(dir.path("dangling")), ovPATH_DOESNT_EXIST);
    // Removing the link leaves the target, its permissions included.
    EXPECT_TRUE(ops()->remove_file(dir.path("link")));
    EXPECT_FALSE(fs::is_symlink(dir.native("link")));
    EXPECT_EQ(fs::status(dir.native("target")).permissions(), fs::perms::owner_read);
    EXPECT_TRUE(ops()->remove_file(dir.path("dangling")));
}

TEST(ovPosixFileOperations, FailedDeletionLeavesPermissionsNoWider) {
    ScratchDir dir;
    fs::create_directory(dir.native("full"));
    put(dir.native("full/x"), "x");
    fs::permissions(dir.native("full"), fs::perms::owner_read | fs::perms::owner_exec);
    EXPECT_FALSE(ops()->delete_directory(dir.path("full")));
    // Still searchable, and only the owner's write was added.
    EXPECT_EQ(fs::status(dir.native("full")).permissions(), fs::perms::owner_all);
    EXPECT_EQ(contents(dir.native("full/x")), "x");
}

TEST(ovPosixFileOperations, DirectoriesWithoutPermission) {
    ScratchDir dir;
    fs::create_directory(dir.native("locked"));
    put(dir.native("locked/f"), "secret");
    fs::create_directory(dir.native("locked/sub"));
    put(dir.native("others"), "others");
    put(dir.native("public"), "public");
    fs::permissions(dir.native(), fs::perms::owner_all | fs::perms::others_exec);
    if (::geteuid() == 0 && ::access(dir.native().parent_path().c_str(), X_OK) != 0)
        GTEST_SKIP() << "the temporary directory is not searchable by an ordinary user";
    // Made by another user when the tests run as root: only "public" may be read.
    fs::permissions(dir.native("others"), fs::perms::owner_read);
    fs::permissions(dir.native("public"), fs::perms::owner_read | fs::perms::others_read);
    const bool as_root = ::geteuid() == 0;
    const int failures = with_permissions_enforced(
        dir,
        [&dir, as_root]() {
            int bad = 0;
            fs::permissions(dir.native("locked"), fs::perms::none);
            const ovPathName locked = dir.path("locked");
            // The directory itself is seen; what is inside it is not.
            bad += ops()->type_of_path(locked) != ovPATH_DIRECTORY;
            bad += ops()->type_of_path(dir.path("locked/f")) != ovPATH_DOESNT_EXIST;
            bad += ops()->file_size(dir.path("locked/f")) != 0;
            // A file the user may not read has no size; one the user owns and may read has.
            put(dir.native("mine"), "1234");
            bad += ops()->file_size(dir.path("mine")) != 4;
            fs::permissions(dir.native("mine"), fs::perms::owner_write);
            bad += ops()->file_size(dir.path("mine")) != 0;
            if (as_root) {
                bad += ops()->file_size(dir.path("others")) != 0;
                bad += ops()->file_size(dir.path("public")) != 6;
            }
            bad += ops()->read_mode().file_open(dir.path("locked/f")) != nullptr;
            bad += ops()->remove_file(dir.path("locked/f")) != 0;
            bad += ops()->create_directory(dir.path("locked/new")) != 0;
            bad += ops()->delete_directory(dir.path("locked/sub")) != 0;
            bad += ops()->delete_directory(locked) != 0; // not empty, and stays unreadable
            ovIFileIteratorcoPrf it = ops()->iterator(locked);
            bad += it->invalid() != 0;      // it is a directory
            bad += Walk::advance(*it) != 0; // that cannot be listed
            bad += it->undefined() != 1;
            bad += fs::status(dir.native("locked")).permissions() != fs::perms::owner_write;
            fs::permissions(dir.native("locked"), fs::perms::owner_all);
            return bad;
        },
        {"others", "public"});
    EXPECT_EQ(failures, 0);
    EXPECT_EQ(contents(dir.native("locked/f")), "secret");
    // Root reads what the bits refuse, so it sees the size.
    if (as_root) {
        fs::permissions(dir.native("others"), fs::perms::none);
        EXPECT_EQ(ops()->file_size(dir.path("others")), 6);
    }
    EXPECT_TRUE(fs::is_directory(dir.native("locked/sub")));
}

TEST(ovPosixFileOperations, DotNeedsNoSystemCall) {
    // Resolving "." needs search permission on the current directory; the answer for
    // "." itself must not depend on it.
    ScratchDir dir;
    fs::create_directory(dir.native("cwd"));
    fs::permissions(dir.native(), fs::perms::owner_all | fs::perms::others_exec);
    if (::geteuid() == 0 && ::access(dir.native().parent_path().c_str(), X_OK) != 0)
        GTEST_SKIP() << "the temporary directory is not searchable by an ordinary user";
    const fs::path saved = fs::current_path();
    const int failures = with_permissions_enforced(dir, [&dir]() {
        fs::current_path(dir.native("cwd"));
        fs::permissions(dir.native("cwd"), fs::perms::owner_write);
        int bad = 0;
        bad += ops()->type_of_path(ovPathName(utf8_text("."))) != ovPATH_DIRECTORY;
        // Spelt any other way, the system is asked, and refuses.
        bad += ops()->type_of_path(ovPathName(utf8_text("./."))) != ovPATH_DOESNT_EXIST;
        fs::permissions(dir.native("cwd"), fs::perms::owner_all);
        return bad;
    });
    fs::current_path(saved);
    EXPECT_EQ(failures, 0);
}
