// The platform's file operations beyond the conformance suite: the behaviours kept on
// purpose, bad input, and the disk changing under a listing.
#include "ovra/ovFileOperations.h"
#include "ovra/ovFileOpsTester.h"
#include "ovra/ovFrustrumChooser.h"

#include "../support/scratch_dir.h"

#include <gtest/gtest.h>

#include <fstream>
#include <set>
#include <string>

using namespace ovtest;
namespace fs = std::filesystem;

namespace {

const ovIFileOperations* ops() {
    return ovFrustrumChooser(nullptr).file_operations();
}

ovByteArray bytes(const std::string& s) {
    return ovByteArray(s.data(), s.size());
}

std::string contents(const fs::path& p) {
    std::ifstream in(p, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

void put(const fs::path& p, const std::string& s) {
    std::ofstream(p, std::ios::binary) << s;
}

ovFileName name(const char* s) {
    return ovFileName(utf8_text(s));
}

ovPathName invalid_path() {
    int st = 0;
    return ovPathName(ovString(ovSTRING_UTF8, "bad\xC3\x28", st));
}

// Advances and entries as a finder sees them.
struct Walk : ovFileOpsTester {
    using ovFileOpsTester::advance;
    using ovFileOpsTester::entry;
};

std::multiset<std::string> list_all(ovIFileIterator& it) {
    std::multiset<std::string> names;
    while (Walk::advance(it))
        names.insert(utf8_of(Walk::entry(it).string()));
    return names;
}

} // namespace

TEST(FileOperations, DotIsADirectory) {
    EXPECT_EQ(ops()->type_of_path(ovPathName(utf8_text("."))), ovPATH_DIRECTORY);
    // The empty text is "." once it is a path name.
    EXPECT_EQ(ops()->type_of_path(ovPathName(ovString(ovSTRING_EMPTY))), ovPATH_DIRECTORY);
    EXPECT_TRUE(ops()->check_directory_exists(ovPathName(utf8_text("."))));
}

TEST(FileOperations, FileSizeOfWhatCannotBeReadIsZero) {
    ScratchDir dir;
    put(dir.native("empty"), "");
    put(dir.native("seven"), "1234567");
    fs::create_directory(dir.native("sub"));
    const struct {
        const char* name;
        int64_t size;
    } cases[] = {{"empty", 0}, {"seven", 7}, {"missing", 0}, {"sub", 0}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(ops()->file_size(dir.path(c.name)), c.size);
    }
}

TEST(FileOperations, WholeFiles) {
    ScratchDir dir;
    const ovPathName file = dir.path("data.bin");
    std::string binary(100000, '\0');
    for (size_t i = 0; i < binary.size(); ++i)
        binary[i] = static_cast<char>(i * 7);
    ASSERT_TRUE(ops()->write_file(file, bytes(binary)));
    EXPECT_EQ(contents(dir.native("data.bin")), binary);

    ovByteArray back;
    ASSERT_TRUE(ops()->read_file(file, back));
    EXPECT_EQ(std::string(back.get_ptr(), back.length()), binary);

    // Writing truncates; an empty array leaves an empty file.
    ASSERT_TRUE(ops()->write_file(file, ovByteArray()));
    EXPECT_TRUE(fs::exists(dir.native("data.bin")));
    EXPECT_EQ(fs::file_size(dir.native("data.bin")), 0u);
    ASSERT_TRUE(ops()->read_file(file, back));
    EXPECT_FALSE(back.invalid());
    EXPECT_TRUE(back.empty());

    // A directory is neither written nor read, and the array is kept.
    fs::create_directory(dir.native("sub"));
    const ovByteArray kept = bytes("kept");
    back = kept;
    EXPECT_FALSE(ops()->write_file(dir.path("sub"), kept));
    EXPECT_FALSE(ops()->read_file(dir.path("sub"), back));
    EXPECT_EQ(back.get_ptr(), kept.get_ptr());
    // Nor into a missing directory.
    EXPECT_FALSE(ops()->write_file(dir.path("nowhere/data.bin"), kept));
}

TEST(FileOperations, RenameFileChecksNothing) {
    ScratchDir dir;
    // Not even that the source is a file: a directory is renamed as well.
    fs::create_directory(dir.native("d"));
    put(dir.native("d/inside"), "x");
    EXPECT_TRUE(ops()->rename_file(dir.path("d"), name("e")));
    EXPECT_TRUE(fs::is_directory(dir.native("e")));
    EXPECT_EQ(contents(dir.native("e/inside")), "x");
    // A missing source is left to the system, which refuses.
    EXPECT_FALSE(ops()->rename_file(dir.path("missing"), name("f")));
    EXPECT_FALSE(fs::exists(dir.native("f")));
}

TEST(FileOperations, RenamesRefuseNamesThatAreNotOneComponent) {
    ScratchDir dir;
    put(dir.native("a"), "a");
    fs::create_directory(dir.native("d"));
    fs::create_directory(dir.native("sub"));
    const ovString names[] = {utf8_text("sub/b"), utf8_text("sub\\b"), ovString(ovSTRING_EMPTY),
                              ovString()};
    for (const ovString& n : names) {
        SCOPED_TRACE(utf8_of(n));
        EXPECT_FALSE(ops()->rename_file(dir.path("a"), ovFileName(n)));
        EXPECT_FALSE(ops()->rename_directory(dir.path("d"), ovFileName(n)));
    }
    EXPECT_EQ(contents(dir.native("a")), "a");
    EXPECT_TRUE(fs::is_directory(dir.native("d")));
    EXPECT_TRUE(fs::is_empty(dir.native("sub")));
}

TEST(FileOperations, MoveAndRenameDirectoryNeverOverwrite) {
    ScratchDir dir;
    put(dir.native("from"), "from");
    put(dir.native("to"), "to");
    fs::create_directory(dir.native("d1"));
    fs::create_directory(dir.native("d2"));
    EXPECT_FALSE(ops()->move_file(dir.path("from"), dir.path("to")));
    EXPECT_FALSE(ops()->move_file(dir.path("from"), dir.path("d1")));
    EXPECT_FALSE(ops()->move_file(dir.path("d1"), dir.path("d3")));
    EXPECT_FALSE(ops()->move_file(dir.path("missing"), dir.path("d3")));
    EXPECT_FALSE(ops()->rename_directory(dir.path("d1"), name("d2")));
    EXPECT_FALSE(ops()->rename_directory(dir.path("d1"), name("to")));
    EXPECT_FALSE(ops()->rename_directory(dir.path("from"), name("d3")));
    EXPECT_EQ(contents(dir.native("from")), "from");
    EXPECT_EQ(contents(dir.native("to")), "to");
    EXPECT_TRUE(fs::is_directory(dir.native("d1")));
    EXPECT_FALSE(fs::exists(dir.native("d3")));

    EXPECT_TRUE(ops()->move_file(dir.path("from"), dir.path("d1/moved")));
    EXPECT_EQ(contents(dir.native("d1/moved")), "from");
    EXPECT_TRUE(ops()->rename_directory(dir.path("d1"), name("d3")));
    EXPECT_EQ(contents(dir.native("d3/moved")), "from");
}

TEST(FileOperations, RemoveAndDeleteTouchOnlyTheirKind) {
    ScratchDir dir;
    put(dir.native("f"), "f");
    fs::create_directory(dir.native("empty"));
    fs::create_directory(dir.native("full"));
    put(dir.native("full/x"), "x");

    EXPECT_FALSE(ops()->remove_file(dir.path("empty")));
    EXPECT_FALSE(ops()->delete_directory(dir.path("f")));
    EXPECT_FALSE(ops()->delete_directory(dir.path("full")));
    EXPECT_FALSE(ops()->remove_file(dir.path("missing")));
    EXPECT_FALSE(ops()->delete_directory(dir.path("missing")));
    EXPECT_FALSE(ops()->create_directory(dir.path("full")));
    EXPECT_FALSE(ops()->create_directory(dir.path("a/b")));
    EXPECT_TRUE(fs::is_directory(dir.native("empty")));
    EXPECT_EQ(contents(dir.native("f")), "f");
    EXPECT_EQ(contents(dir.native("full/x")), "x");
    EXPECT_FALSE(fs::exists(dir.native("a")));

    // A read-only file is removed all the same.
    fs::permissions(dir.native("f"), fs::perms::owner_read);
    EXPECT_TRUE(ops()->remove_file(dir.path("f")));
    EXPECT_FALSE(fs::exists(dir.native("f")));
    EXPECT_TRUE(ops()->delete_directory(dir.path("empty")));
    EXPECT_FALSE(fs::exists(dir.native("empty")));
}

TEST(FileOperations, IteratorListsEveryEntryAndRestartsAfterItsEnd) {
    ScratchDir dir;
    put(dir.native("a"), "");
    put(dir.native("b.txt"), "");
    fs::create_directory(dir.native("sub"));
    ovIFileIteratorcoPrf it = ops()->iterator(dir.path());
    ASSERT_FALSE(it.empty());
    EXPECT_FALSE(it->invalid());
    EXPECT_TRUE(it->undefined());
    const std::multiset<std::string> expected = {"a", "b.txt", "sub"};
    EXPECT_EQ(list_all(*it), expected);
    EXPECT_TRUE(it->undefined());
    // The entry stays that of the last success.
    EXPECT_FALSE(Walk::entry(*it).string().empty());
    // Advancing after the end starts again from the first entry.
    EXPECT_EQ(list_all(*it), expected);

    // The raw entries include "." and ".."; the advance never shows them.
    std::multiset<std::string> raw;
    while (it->get_next_file())
        raw.insert(utf8_of(Walk::entry(*it).string()));
    EXPECT_EQ(raw.count("."), 1u);
    EXPECT_EQ(raw.count(".."), 1u);
    EXPECT_EQ(raw.size(), 5u);
}

TEST(FileOperations, IteratorOnWhatIsNotADirectoryListsNothing) {
    ScratchDir dir;
    put(dir.native("f"), "");
    const ovPathName cases[] = {dir.path("f"), dir.path("missing"), ovPathName(), invalid_path()};
    for (const ovPathName& p : cases) {
        SCOPED_TRACE(utf8_of(p.string()));
        ovIFileIteratorcoPrf it = ops()->iterator(p);
        ASSERT_FALSE(it.empty());
        EXPECT_TRUE(it->invalid());
        EXPECT_FALSE(Walk::advance(*it));
        EXPECT_FALSE(it->get_next_file());
        EXPECT_TRUE(it->undefined());
    }
}

TEST(FileOperations, DiskChangingUnderAListing) {
    ScratchDir dir;
    for (int i = 0; i < 200; ++i)
        put(dir.native("f" + std::to_string(i)), "");
    ovIFileIteratorcoPrf it = ops()->iterator(dir.path());
    ASSERT_TRUE(Walk::advance(*it));
    EXPECT_EQ(utf8_of(Walk::entry(*it).string()).substr(0, 1), "f");
    for (int i = 0; i < 200; ++i)
        fs::remove(dir.native("f" + std::to_string(i)));
    int more = 0;
    while (Walk::advance(*it))
        ++more;
    EXPECT_LT(more, 200);
    EXPECT_TRUE(it->undefined());
    // Listing again sees the empty directory.
    EXPECT_FALSE(Walk::advance(*it));

    // A listed directory removed before the listing starts lists nothing.
    fs::create_directory(dir.native("sub"));
    put(dir.native("sub/x"), "");
    it = ops()->iterator(dir.path("sub"));
    EXPECT_FALSE(it->invalid());
    fs::remove_all(dir.native("sub"));
    EXPECT_FALSE(Walk::advance(*it));
    EXPECT_FALSE(it->invalid()); // fixed when the iterator was made
}

TEST(FileOperations, BadPathNamesFailAndTouchNothing) {
    ScratchDir dir;
    put(dir.native("f"), "f");
    std::string deep;
    for (int i = 0; i < 300; ++i)
        deep += "/abcdefghijklmnopq";
    const struct {
        const char* what;
        ovPathName path;
    } cases[] = {
        {"invalid", invalid_path()},
        {"empty", ovPathName()},
        {"component too long", dir.path(std::string(300, 'n'))},
        {"path too long", ovPathName(utf8_text(dir.native().generic_u8string() + deep))},
    };
    ASSERT_TRUE(cases[0].path.invalid());
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        const ovPathName& bad = c.path;
        EXPECT_FALSE(ops()->check_file_exists(bad));
        EXPECT_FALSE(ops()->check_directory_exists(bad));
        EXPECT_EQ(ops()->type_of_path(bad), ovPATH_DOESNT_EXIST);
        EXPECT_FALSE(ops()->remove_file(bad));
        EXPECT_FALSE(ops()->create_directory(bad));
        EXPECT_FALSE(ops()->delete_directory(bad));
        EXPECT_FALSE(ops()->write_file(bad, bytes("x")));
        ovByteArray kept = bytes("kept");
        const char* before = kept.get_ptr();
        EXPECT_FALSE(ops()->read_file(bad, kept));
        EXPECT_EQ(kept.get_ptr(), before);
        EXPECT_EQ(ops()->file_size(bad), 0);
        EXPECT_EQ(ops()->read_mode().file_open(bad), nullptr);
        EXPECT_EQ(ops()->rw_mode().file_open(bad), nullptr);
        EXPECT_EQ(ops()->write_mode().file_open(bad), nullptr);
        EXPECT_TRUE(ops()->iterator(bad)->invalid());
        EXPECT_FALSE(ops()->move_file(bad, dir.path("g")));
        EXPECT_FALSE(ops()->move_file(dir.path("f"), bad));
        EXPECT_FALSE(ops()->rename(dir.path("f"), bad));
        EXPECT_FALSE(ops()->rename_file(bad, name("g")));
        EXPECT_FALSE(ops()->rename_directory(bad, name("g")));
    }
    const std::set<fs::path> left(fs::directory_iterator(dir.native()), fs::directory_iterator());
    EXPECT_EQ(left, std::set<fs::path>{dir.native("f")});
    EXPECT_EQ(contents(dir.native("f")), "f");
    // What cannot be encoded has no full path either.
    EXPECT_FALSE(ops()->check_encoding(cases[0].path));
    EXPECT_TRUE(ops()->full_path(cases[0].path).string().empty());
}

TEST(FileOperations, ModesOpenWhatTheyPromise) {
    ScratchDir dir;
    put(dir.native("f"), "abcdef");
    // Reading never creates.
    EXPECT_EQ(ops()->read_mode().file_open(dir.path("missing")), nullptr);
    EXPECT_FALSE(fs::exists(dir.native("missing")));
    // Writing truncates.
    FILE* f = ops()->write_mode().file_open(dir.path("f"));
    ASSERT_NE(f, nullptr);
    std::fclose(f);
    EXPECT_EQ(contents(dir.native("f")), "");
    // Reading and writing keeps what it does not overwrite.
    put(dir.native("f"), "abcdef");
    f = ops()->rw_mode().file_open(dir.path("f"));
    ASSERT_NE(f, nullptr);
    char first = 0;
    EXPECT_EQ(std::fread(&first, 1, 1, f), 1u);
    EXPECT_EQ(first, 'a');
    std::fseek(f, 0, SEEK_CUR);
    EXPECT_EQ(std::fwrite("XY", 1, 2, f), 2u);
    std::fclose(f);
    EXPECT_EQ(contents(dir.native("f")), "aXYdef");
    // No mode opens a directory.
    fs::create_directory(dir.native("sub"));
    EXPECT_EQ(ops()->read_mode().file_open(dir.path("sub")), nullptr);
    EXPECT_EQ(ops()->rw_mode().file_open(dir.path("sub")), nullptr);
    EXPECT_EQ(ops()->write_mode().file_open(dir.path("sub")), nullptr);
}

TEST(FileOperations, FullPathOfARelativePathIsAbsoluteFoldedAndWhole) {
    const ovPathName here = ops()->full_path(ovPathName(utf8_text(".")));
    ASSERT_FALSE(here.string().empty());
    EXPECT_FALSE(here.relative_path());
    const ovPathName child = ops()->full_path(ovPathName(utf8_text("x/./y/../z")));
    EXPECT_EQ(utf8_of(child.string()), utf8_of(here.adjoin(name("x")).adjoin(name("z")).string()));
    EXPECT_EQ(utf8_of(ops()->full_path(ovPathName(utf8_text("x/.."))).string()),
              utf8_of(here.string()));

    std::string rel;
    for (int i = 0; i < 40; ++i)
        rel += "component" + std::to_string(i) + "/";
    rel += "end";
    const std::string text = utf8_of(ops()->full_path(ovPathName(utf8_text(rel))).string());
    ASSERT_GT(text.size(), 300u);
    EXPECT_EQ(text.substr(text.size() - rel.size()), rel);
}
