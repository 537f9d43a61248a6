#include "ovra/ovFileOperations.h"
#include "ovra/ovFrustrumChooser.h"
#include "ovra/ovPath.h"
#include "ovra/ovStringEncoding.h"

#include "../support/scratch_dir.h"

#include <gtest/gtest.h>

#include <fstream>

using namespace ovtest;
namespace fs = std::filesystem;

namespace {

const ovIFileOperations* platform() {
    return ovFrustrumChooser(nullptr).file_operations();
}

std::string narrow(const utString& s) {
    return s.is_null() ? "<null>" : s.c_str();
}

ovPathName failed_path() {
    int st = 0;
    return ovPathName(ovString(ovSTRING_UTF8, "bad\xC3\x28", st));
}

// A mode that must not be asked.
class RefusingMode final : public ovIFileMode {
public:
    FILE* file_open(const ovPathName&) const override {
        ++calls;
        return nullptr;
    }
    mutable int calls = 0;
};

} // namespace

TEST(ovPath, Construction) {
    const ovPath none;
    EXPECT_TRUE(none.invalid_ut());
    EXPECT_EQ(utf8_of(none.path_ov()), "");
    EXPECT_EQ(narrow(none.path()), "");
    EXPECT_EQ(none.file_operations(), platform());
    EXPECT_EQ(none.encoding(), ovStringEncodingChooser().ut_encoding());

    const struct {
        const char* text;
        const char* path;
        bool absolute;
    } cases[] = {
        {"a\\b\\", "a/b", false},    {"", ".", false},
        {"/x//y/", "/x/y", true},    {"C:\\dir", "C:/dir", true},
        {"C:name", "C:name", false}, {"//srv//share", "//srv/share", true},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.text);
        const ovPath from_text(utf8_text(c.text), nullptr, nullptr);
        EXPECT_EQ(utf8_of(from_text.path_ov()), c.path);
        EXPECT_EQ(narrow(from_text.path()), c.path);
        EXPECT_FALSE(from_text.invalid_ut());
        EXPECT_EQ(from_text.absolute_path() != 0, c.absolute);
        const ovPath from_narrow{utString(c.text)};
        EXPECT_EQ(utf8_of(from_narrow.path_ov()), c.path);
        EXPECT_EQ(from_narrow.file_operations(), platform());
    }

    // A path name is taken as it is.
    const ovPathName raw;
    EXPECT_EQ(utf8_of(ovPath(raw, nullptr, nullptr).path_ov()), "");

    // Text that has no narrow form.
    EXPECT_TRUE(ovPath(failed_path(), nullptr, nullptr).invalid_ut());
    EXPECT_TRUE(ovPath(utString("bad\xC3\x28")).invalid_ut());
    EXPECT_TRUE(ovPath(utString()).invalid_ut());
    const ovStringCPEncoding latin1(1252);
    const ovPath cjk(utf8_text("\xE6\x97\xA5"), nullptr, &latin1);
    EXPECT_TRUE(cjk.invalid_ut());
    EXPECT_FALSE(cjk.invalid());
}

TEST(ovPath, DerivedPathsKeepOperationsAndEncoding) {
    const ovStringCPEncoding latin1(1252);
    const ovPath p(utf8_text("dir/caf\xC3\xA9.d/name.tar.gz"), nullptr, &latin1);
    EXPECT_EQ(p.path(), "dir/caf\xE9.d/name.tar.gz");
    const ovPath derived[] = {p.dirname_ov(), p.adjoin_ov(ovFileName(utf8_text("x"))), p.combine(p),
                              p.adjoin(utString("y"))};
    for (const ovPath& d : derived) {
        SCOPED_TRACE(utf8_of(d.path_ov()));
        EXPECT_EQ(d.encoding(), &latin1);
        EXPECT_EQ(d.file_operations(), platform());
    }
    EXPECT_EQ(utf8_of(p.dirname_ov().path_ov()), "dir/caf\xC3\xA9.d");
    EXPECT_EQ(narrow(p.dirname()), "dir/caf\xE9.d");
    EXPECT_EQ(utf8_of(p.adjoin(utString("\xE9")).path_ov()),
              "dir/caf\xC3\xA9.d/name.tar.gz/\xC3\xA9");
    EXPECT_EQ(utf8_of(p.basename_ov().string()), "name.tar.gz");
    EXPECT_EQ(narrow(p.basename()), "name.tar.gz");
    EXPECT_EQ(utf8_of(p.basename_no_ext_ov()), "name.tar");
    EXPECT_EQ(narrow(p.basename_no_ext()), "name.tar");
}

TEST(ovPath, ExtensionSearchesTheWholeText) {
    const struct {
        const char* path;
        const char* ext;
        const char* no_ext;
    } cases[] = {
        {"dir.d/file", ".d/file", "file"}, {"a/b.txt", ".txt", "b"}, {"plain", "", "plain"},
        {".profile", ".profile", ""},      {"/", "", "/"},           {"a/..", ".", "."},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.path);
        const ovPath p(utf8_text(c.path), nullptr, nullptr);
        EXPECT_EQ(utf8_of(p.extension_with_dot()), c.ext);
        EXPECT_EQ(utf8_of(p.basename_no_ext_ov()), c.no_ext);
    }
}

TEST(ovPath, QuestionsAndActions) {
    ScratchDir dir;
    std::ofstream(dir.native("f")) << "f";
    const ovPath d(dir.path(), nullptr, nullptr);
    const ovPath f = d.adjoin_ov(ovFileName(utf8_text("f")));
    const ovPath missing = d.adjoin_ov(ovFileName(utf8_text("missing")));
    EXPECT_TRUE(d.is_directory() && d.exists() && !d.is_file());
    EXPECT_TRUE(f.is_file() && f.exists() && !f.is_directory());
    EXPECT_FALSE(missing.exists() || missing.is_file() || missing.is_directory());

    // Already in the wanted state: success without doing anything.
    EXPECT_TRUE(missing.delete_file());
    EXPECT_TRUE(missing.delete_directory());
    EXPECT_TRUE(d.create_directory());
    EXPECT_TRUE(f.delete_directory());
    EXPECT_TRUE(fs::exists(dir.native("f")));
    EXPECT_FALSE(f.create_directory());

    EXPECT_TRUE(f.delete_file());
    EXPECT_FALSE(fs::exists(dir.native("f")));
    EXPECT_TRUE(missing.create_directory());
    EXPECT_TRUE(fs::is_directory(dir.native("missing")));
    EXPECT_TRUE(missing.delete_directory());
    EXPECT_FALSE(fs::exists(dir.native("missing")));
    EXPECT_FALSE(ovPath(failed_path(), nullptr, nullptr).create_directory());
}

TEST(ovPath, CreateDirectoryFull) {
    ScratchDir dir;
    const ovPath top(dir.path(), nullptr, nullptr);
    const ovPath deep = top.adjoin(utString("a/b/c/d"));
    EXPECT_TRUE(deep.create_directory_full());
    EXPECT_TRUE(fs::is_directory(dir.native("a/b/c/d")));
    EXPECT_TRUE(deep.create_directory_full()); // it exists
    for (const char* existing : {".", "", "/"}) {
        SCOPED_TRACE(existing);
        EXPECT_EQ(ovPath(utf8_text(existing), nullptr, nullptr).create_directory_full(), 1);
    }
    // A root that is not there, an invalid path, a file on the way.
    EXPECT_FALSE(ovPath(ovPathName(), nullptr, nullptr).create_directory_full());
    EXPECT_FALSE(ovPath(failed_path(), nullptr, nullptr).create_directory_full());
    std::ofstream(dir.native("file")) << "x";
    EXPECT_FALSE(top.adjoin(utString("file/sub/more")).create_directory_full());
    EXPECT_FALSE(fs::exists(dir.native("file/sub")));
}

TEST(ovPath, FileOpenNeedsAnExistingParent) {
    ScratchDir dir;
    const ovPath top(dir.path(), nullptr, nullptr);
    RefusingMode mode;
    EXPECT_EQ(top.adjoin(utString("nowhere/f")).file_open(mode), nullptr);
    EXPECT_EQ(mode.calls, 0);
    EXPECT_EQ(top.adjoin(utString("f")).file_open(mode), nullptr);
    EXPECT_EQ(mode.calls, 1);

    FILE* f = top.adjoin(utString("g")).file_open(top.write_mode());
    ASSERT_NE(f, nullptr);
    std::fclose(f);
    EXPECT_TRUE(fs::exists(dir.native("g")));
    EXPECT_EQ(&top.read_mode(), &platform()->read_mode());
    EXPECT_EQ(&top.rw_mode(), &platform()->rw_mode());
}
