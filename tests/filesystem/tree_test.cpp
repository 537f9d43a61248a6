#include "ovra/ovFileFinder.h"
#include "ovra/ovFileOperations.h"
#include "ovra/ovFileSystem.h"
#include "ovra/ovFrustrumChooser.h"

#include "../operations/delegating_file_operations.h"
#include "../support/scratch_dir.h"
#include "dir_link.h"

#include <gtest/gtest.h>

#include <fstream>
#include <set>
#include <sstream>
#include <string>

using namespace ovtest;
namespace fs = std::filesystem;

namespace {

const ovIFileOperations* platform() {
    return ovFrustrumChooser(nullptr).file_operations();
}

void write_file(const fs::path& p, const std::string& text) {
    std::ofstream(p, std::ios::binary) << text;
}

std::string read_text(const fs::path& p) {
    std::ifstream in(p, std::ios::binary);
    std::stringstream s;
    s << in.rdbuf();
    return s.str();
}

ovFileName name(const char* n) {
    return ovFileName(utf8_text(n));
}

std::string where(const ovFileSystemComponent& c) {
    return utf8_of(c.path_name().string());
}

ovByteArray bytes(const std::string& s) {
    return ovByteArray(s.data(), s.size());
}

// Every file under `root`, relative, with its contents.
std::set<std::string> files_under(const fs::path& root) {
    std::set<std::string> out;
    if (!fs::exists(root))
        return out;
    for (const auto& e : fs::recursive_directory_iterator(root))
        if (e.is_regular_file())
            out.insert(fs::relative(e.path(), root).generic_u8string() + "=" + read_text(e.path()));
    return out;
}

// A small tree: a.txt, b.dat, sub/c.txt, sub/deep/d.txt.
void make_tree(const fs::path& root) {
    fs::create_directories(root / "sub" / "deep");
    write_file(root / "a.txt", "A");
    write_file(root / "b.dat", "B");
    write_file(root / "sub" / "c.txt", "C");
    write_file(root / "sub" / "deep" / "d.txt", "D");
}

// Lets a set number of writes or moves through, then fails the rest.
class FailingLater final : public DelegatingFileOperations {
public:
    FailingLater(int writes, int moves)
        : DelegatingFileOperations(platform()), m_writes(writes), m_moves(moves) {}
    ovStatus write_file(const ovPathName& p, const ovByteArray& d) const override {
        if (m_writes-- <= 0)
            return ovStatus(0);
        return ovIFileOperations::write_file(p, d);
    }
    ovStatus move_file(const ovPathName& from, const ovPathName& to) const override {
        if (m_moves-- <= 0)
            return ovStatus(0);
        return ovIFileOperations::move_file(from, to);
    }

private:
    mutable int m_writes;
    mutable int m_moves;
};

} // namespace

TEST(ovFile, WholeFileOperations) {
    ScratchDir dir;
    ovFile f(dir.path("f.bin"), nullptr);
    EXPECT_EQ(f.file_operations(), platform());
    EXPECT_FALSE(f.file_exists());
    EXPECT_FALSE(f.something_exists());
    EXPECT_EQ(f.size(), 0);
    EXPECT_FALSE(f.rename(name("other")).ok());
    EXPECT_EQ(where(f), utf8_of(dir.path("f.bin").string())); // a failed rename keeps the path
    ASSERT_TRUE(f.write_file(bytes("hello")).ok());
    EXPECT_TRUE(f.file_exists());
    EXPECT_FALSE(f.is_directory());
    EXPECT_EQ(f.size(), 5);
    ovByteArray back;
    ASSERT_TRUE(f.read_file(back).ok());
    EXPECT_EQ(back, bytes("hello"));

    ASSERT_TRUE(f.rename(name("g.bin")).ok());
    EXPECT_EQ(where(f), utf8_of(dir.path("g.bin").string()));
    EXPECT_TRUE(fs::exists(dir.native("g.bin")));

    const ovFile copy(dir.path("copy.bin"), nullptr);
    ASSERT_TRUE(f.copy_to(copy).ok());
    EXPECT_EQ(read_text(dir.native("copy.bin")), "hello");
    write_file(dir.native("copy.bin"), "other");
    EXPECT_FALSE(f.copy_to(copy).ok()); // never overwrites
    EXPECT_EQ(read_text(dir.native("copy.bin")), "other");
    EXPECT_FALSE(ovFile(dir.path("none"), nullptr).copy_to(ovFile(dir.path("n2"), nullptr)).ok());
    EXPECT_FALSE(fs::exists(dir.native("n2")));

    EXPECT_FALSE(f.move_to(copy).ok());
    EXPECT_TRUE(fs::exists(dir.native("g.bin")));
    const ovFile moved(dir.path("moved.bin"), nullptr);
    ASSERT_TRUE(f.move_to(moved).ok());
    EXPECT_EQ(where(f), utf8_of(dir.path("moved.bin").string()));
    EXPECT_FALSE(fs::exists(dir.native("g.bin")));

    ASSERT_TRUE(f.delete_file().ok());
    EXPECT_FALSE(fs::exists(dir.native("moved.bin")));
    EXPECT_FALSE(f.delete_file().ok());
}

TEST(ovDirectory, ListingAndCounts) {
    ScratchDir dir;
    make_tree(dir.native("t"));
    const ovDirectory t(dir.path("t"), nullptr);
    EXPECT_TRUE(t.directory_exists());
    EXPECT_FALSE(t.empty());
    EXPECT_EQ(t.number_of_files(), 2);
    EXPECT_EQ(t.number_of_directories(), 1);
    EXPECT_TRUE(t.file(name("a.txt")).file_exists());
    EXPECT_TRUE(t.directory(name("sub")).directory_exists());

    std::set<std::string> seen;
    ovDirectoryIterator it = t.iterator();
    while (++it)
        seen.insert(utf8_of(it().path_name().basename().string()));
    EXPECT_EQ(seen, (std::set<std::string>{"a.txt", "b.dat", "sub"}));
    it.reset();
    ASSERT_TRUE(++it);
    EXPECT_TRUE(it().something_exists());

    ovDirectory e(dir.path("e"), nullptr);
    ASSERT_TRUE(e.create().ok());
    EXPECT_TRUE(e.empty());
    EXPECT_FALSE(e.create().ok());
    ASSERT_TRUE(e.rename(name("e2")).ok());
    EXPECT_TRUE(fs::is_directory(dir.native("e2")));
    EXPECT_EQ(where(e), utf8_of(dir.path("e2").string()));
    EXPECT_FALSE(t.delete_empty_directory().ok());
    EXPECT_TRUE(e.delete_empty_directory().ok());
}

TEST(ovDirectory, CreateDirectoryTree) {
    ScratchDir dir;
    const ovDirectory top(dir.path("x"), nullptr);
    ASSERT_TRUE(top.create_directory_tree(ovPathName(utf8_text("a/b/c"))).ok());
    EXPECT_TRUE(fs::is_directory(dir.native("x/a/b/c")));
    // An existing directory succeeds at once and creates nothing.
    const ovDirectory existing(dir.path("x"), nullptr);
    EXPECT_TRUE(existing.create_directory_tree(ovPathName(utf8_text("new/one"))).ok());
    EXPECT_FALSE(fs::exists(dir.native("x/new")));
    const ovDirectory fresh(dir.path("y/z"), nullptr);
    EXPECT_TRUE(fresh.create_directory_tree(ovPathName(utf8_text("."))).ok());
    EXPECT_TRUE(fs::is_directory(dir.native("y/z")));
}

TEST(ovDirectory, CopyMoveAndDeleteTrees) {
    ScratchDir dir;
    make_tree(dir.native("src"));
    const auto original = files_under(dir.native("src"));
    ovDirectory src(dir.path("src"), nullptr);

    ASSERT_TRUE(src.copy_to(ovDirectory(dir.path("copy"), nullptr)).ok());
    EXPECT_EQ(files_under(dir.native("copy")), original);
    EXPECT_EQ(files_under(dir.native("src")), original);

    // Onto an existing directory: refused before anything is copied.
    fs::create_directory(dir.native("busy"));
    EXPECT_FALSE(src.copy_to(ovDirectory(dir.path("busy"), nullptr)).ok());
    EXPECT_TRUE(fs::is_empty(dir.native("busy")));
    EXPECT_FALSE(src.move_to(ovDirectory(dir.path("busy"), nullptr)).ok());
    EXPECT_EQ(files_under(dir.native("src")), original);

    ASSERT_TRUE(src.move_to(ovDirectory(dir.path("moved"), nullptr)).ok());
    EXPECT_FALSE(fs::exists(dir.native("src")));
    EXPECT_EQ(files_under(dir.native("moved")), original);
    EXPECT_EQ(where(src), utf8_of(dir.path("moved").string()));

    ASSERT_TRUE(src.delete_tree().ok());
    EXPECT_FALSE(fs::exists(dir.native("moved")));
    EXPECT_FALSE(src.delete_tree().ok()); // a missing directory fails
}

TEST(ovDirectory, FailedCopyLeavesTheSourceWhole) {
    ScratchDir dir;
    make_tree(dir.native("src"));
    const auto original = files_under(dir.native("src"));
    for (int writes = 0; writes < 4; ++writes) {
        SCOPED_TRACE(writes);
        const FailingLater ops(writes, 100);
        const std::string target = "copy" + std::to_string(writes);
        const ovDirectory src(dir.path("src"), &ops);
        EXPECT_FALSE(src.copy_to(ovDirectory(dir.path(target), &ops)).ok());
        EXPECT_EQ(files_under(dir.native("src")), original);
        EXPECT_EQ(files_under(dir.native(target)).size(), static_cast<size_t>(writes));
    }
}

TEST(ovDirectory, FailedMoveLosesNothing) {
    ScratchDir dir;
    for (int moves = 0; moves < 4; ++moves) {
        SCOPED_TRACE(moves);
        const std::string from = "src" + std::to_string(moves);
        const std::string to = "dst" + std::to_string(moves);
        make_tree(dir.native(from));
        const auto original = files_under(dir.native(from));
        const FailingLater ops(100, moves);
        ovDirectory src(dir.path(from), &ops);
        EXPECT_FALSE(src.move_to(ovDirectory(dir.path(to), &ops)).ok());
        EXPECT_EQ(where(src), utf8_of(dir.path(from).string()));
        // Every file is at its old place or at its new one, none twice, none lost.
        std::set<std::string> both = files_under(dir.native(from));
        const auto there = files_under(dir.native(to));
        EXPECT_EQ(there.size(), static_cast<size_t>(moves));
        for (const auto& f : there)
            EXPECT_TRUE(both.insert(f).second) << f;
        EXPECT_EQ(both, original);
    }
}

TEST(DeleteTree, ReadOnlyFilesGoAndMissingPathsSucceed) {
    ScratchDir dir;
    make_tree(dir.native("t"));
    make_tree(dir.native("u"));
    for (const char* t : {"t", "u"})
        fs::permissions(dir.native(t) / "sub" / "c.txt", fs::perms::owner_write,
                        fs::perm_options::remove);
    EXPECT_EQ(ovPath(dir.path("t"), nullptr, nullptr).delete_tree(), 1);
    EXPECT_FALSE(fs::exists(dir.native("t")));
    EXPECT_TRUE(ovDirectory(dir.path("u"), nullptr).delete_tree().ok());
    EXPECT_FALSE(fs::exists(dir.native("u")));
    EXPECT_EQ(ovPath(dir.path("t"), nullptr, nullptr).delete_tree(), 1);
}

TEST(DeleteTree, LinksAreRemovedNeverFollowed) {
    ScratchDir dir;
    fs::create_directories(dir.native("outside/inner"));
    write_file(dir.native("outside/keep1.txt"), "1");
    write_file(dir.native("outside/inner/keep2.txt"), "2");
    const auto outside = files_under(dir.native("outside"));
    int trees = 0;
    for (const char* t : {"p", "d", "m"}) {
        SCOPED_TRACE(t);
        make_tree(dir.native(t));
        std::string why;
        if (!make_dir_link(dir.native("outside"), dir.native(t) / "sub" / "link", why))
            GTEST_SKIP() << why;
        ++trees;
    }
    EXPECT_EQ(ovPath(dir.path("p"), nullptr, nullptr).delete_tree(), 1);
    EXPECT_FALSE(fs::exists(dir.native("p")));
    EXPECT_TRUE(ovDirectory(dir.path("d"), nullptr).delete_tree().ok());
    EXPECT_FALSE(fs::exists(dir.native("d")));
    EXPECT_EQ(files_under(dir.native("outside")), outside);

    // A move takes the link along as a link.
    ovDirectory m(dir.path("m"), nullptr);
    ASSERT_TRUE(m.move_to(ovDirectory(dir.path("m2"), nullptr)).ok());
    EXPECT_FALSE(fs::exists(dir.native("m")));
#if !defined(_WIN32)
    // (Wine keeps its links as host links whose targets do not survive a move.)
    EXPECT_TRUE(fs::exists(dir.native("m2/sub/link/keep1.txt"))); // still points outside
#endif
    EXPECT_EQ(files_under(dir.native("outside")), outside);
    EXPECT_EQ(trees, 3);
}

#if !defined(_WIN32)
#include <unistd.h>

TEST(DeleteTree, ADirectoryThatCannotBeEnteredStopsTheWalk) {
    if (geteuid() == 0)
        GTEST_SKIP() << "running as root: every directory can be entered";
    ScratchDir dir;
    make_tree(dir.native("t"));
    fs::permissions(dir.native("t/sub"), fs::perms::owner_exec | fs::perms::owner_read,
                    fs::perm_options::remove);
    EXPECT_EQ(ovPath(dir.path("t"), nullptr, nullptr).delete_tree(), 0);
    fs::permissions(dir.native("t/sub"), fs::perms::owner_all, fs::perm_options::add);
    EXPECT_TRUE(fs::exists(dir.native("t/sub/c.txt")));
    EXPECT_TRUE(fs::exists(dir.native("t/sub/deep/d.txt")));
}
#endif
