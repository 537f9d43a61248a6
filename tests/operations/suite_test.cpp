// The conformance suite against the platform's operations, against the portable
// bodies, and against broken implementations it must catch.
#include "ovra/ovFileOpsTester.h"
#include "ovra/ovFrustrumChooser.h"

#include "../support/scratch_dir.h"
#include "delegating_file_operations.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <functional>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

using namespace ovtest;

namespace {

std::string failures_of(const utUnitTest& suite) {
    std::string out;
    for (size_t i = 0; i < suite.failure_count(); ++i)
        out += std::string(suite.failure(i).expression) + "\n";
    return out;
}

const ovIFileOperations* platform() {
    return ovFrustrumChooser(nullptr).file_operations();
}

} // namespace

TEST(ovFileOpsTester, PlatformOperationsPass) {
    ScratchDir dir;
    ovFileOpsTester suite(platform(), dir.path());
    EXPECT_TRUE(suite.execute()) << failures_of(suite);
    EXPECT_GT(suite.passed(), 60);
    suite.report(stdout);
    // The suite cleans up after itself.
    EXPECT_TRUE(std::filesystem::is_empty(dir.native()));
}

TEST(ovFileOpsTester, PortableBodiesAndRelativeScratchDirectoryPass) {
    ScratchDir dir;
    const DelegatingFileOperations portable(platform());
    ovFileOpsTester on_portable(&portable, dir.path());
    EXPECT_TRUE(on_portable.execute()) << failures_of(on_portable);
    // The tests run in the output folder, which is writable.
    ovFileOpsTester relative(platform(), ovPathName(utf8_text(".")));
    EXPECT_TRUE(relative.execute()) << failures_of(relative);
}

TEST(ovFileOpsTester, NullOperationsFailOnce) {
    ovFileOpsTester suite(nullptr, ovPathName(utf8_text(".")));
    EXPECT_FALSE(suite.execute());
    ASSERT_EQ(suite.failed(), 1);
    EXPECT_STREQ(suite.failure(0).expression, "m_file_operations != nullptr");
}

namespace {

// One deliberate fault in otherwise working operations.
class BrokenFileOperations final : public DelegatingFileOperations {
public:
    enum Fault {
        REMOVES_NOTHING,
        DIRECTORIES_LOOK_LIKE_FILES,
        WRITES_SHORT,
        MOVE_KEEPS_SOURCE,
        LISTS_NOTHING,
        NO_OS_FORM,
        RENAME_DOES_NOTHING,
        READ_IS_EMPTY,
        EVERYTHING_IS_A_FILE,
        LISTING_THROWS,
    };
    BrokenFileOperations(const ovIFileOperations* real, Fault fault)
        : DelegatingFileOperations(real), m_fault(fault) {}

    int remove_file(const ovPathName& p) const override {
        return m_fault == REMOVES_NOTHING ? 1 : m_real->remove_file(p);
    }
    ovPathType type_of_path(const ovPathName& p) const override {
        if (m_fault == EVERYTHING_IS_A_FILE)
            return ovPATH_FILE;
        const ovPathType t = m_real->type_of_path(p);
        return m_fault == DIRECTORIES_LOOK_LIKE_FILES && t == ovPATH_DIRECTORY ? ovPATH_FILE : t;
    }
    ovStatus write_file(const ovPathName& p, const ovByteArray& data) const override {
        if (m_fault != WRITES_SHORT || data.length() == 0)
            return ovIFileOperations::write_file(p, data);
        return ovIFileOperations::write_file(p, ovByteArray(data.get_ptr(), data.length() - 1));
    }
    ovStatus move_file(const ovPathName& from, const ovPathName& to) const override {
        if (m_fault != MOVE_KEEPS_SOURCE)
            return ovIFileOperations::move_file(from, to);
        ovByteArray data;
        return ovStatus(read_file(from, data) && write_file(to, data));
    }
    ovIFileIteratorcoPrf iterator(const ovPathName& p) const override {
        if (m_fault == LISTING_THROWS)
            throw std::runtime_error("no listing today");
        return m_fault == LISTS_NOTHING ? ovIFileIteratorcoPrf() : m_real->iterator(p);
    }
    ovString os_style_path(const ovPathName& p) const override {
        return m_fault == NO_OS_FORM ? ovString() : m_real->os_style_path(p);
    }
    ovStatus rename_directory(const ovPathName& d, const ovFileName& n) const override {
        return m_fault == RENAME_DOES_NOTHING ? ovStatus(1)
                                              : ovIFileOperations::rename_directory(d, n);
    }
    ovStatus read_file(const ovPathName& p, ovByteArray& data) const override {
        if (m_fault != READ_IS_EMPTY)
            return ovIFileOperations::read_file(p, data);
        data = ovByteArray("", 0);
        return ovStatus(1);
    }

private:
    Fault m_fault;
};

} // namespace

TEST(ovFileOpsTester, ReportsEachBrokenOperation) {
    const struct {
        BrokenFileOperations::Fault fault;
        const char* expected; // one of the checks that must fail
    } cases[] = {
        {BrokenFileOperations::REMOVES_NOTHING,
         "m_file_operations->type_of_path(file_path) == ovPATH_DOESNT_EXIST"},
        {BrokenFileOperations::DIRECTORIES_LOOK_LIKE_FILES,
         "m_file_operations->type_of_path(dir_path) == ovPATH_DIRECTORY"},
        {BrokenFileOperations::WRITES_SHORT, "m_file_operations->file_size(file_path) == 6"},
        {BrokenFileOperations::MOVE_KEEPS_SOURCE,
         "!m_file_operations->check_file_exists(file_path1)"},
        {BrokenFileOperations::LISTS_NOTHING, "!finder.invalid()"},
        {BrokenFileOperations::NO_OS_FORM, "!os_form.invalid()"},
        {BrokenFileOperations::RENAME_DOES_NOTHING, "!dir1.directory_exists()"},
        {BrokenFileOperations::READ_IS_EMPTY, "array2 == array"},
        // Fresh names cannot be found: the suite must fail, not hang.
        {BrokenFileOperations::EVERYTHING_IS_A_FILE, "!m_file_operations->check_file_exists(path)"},
        // An exception from the operations fails the suite, not the program.
        {BrokenFileOperations::LISTING_THROWS, "no listing today"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.expected);
        ScratchDir dir;
        const BrokenFileOperations ops(platform(), c.fault);
        ovFileOpsTester suite(&ops, dir.path());
        EXPECT_FALSE(suite.execute());
        EXPECT_NE(failures_of(suite).find(std::string(c.expected) + "\n"), std::string::npos)
            << failures_of(suite);
    }
}
