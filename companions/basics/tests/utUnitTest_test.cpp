#include "ut/utUnitTest.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <stdexcept>
#include <string>

namespace {

class Mixed : public utUnitTest {
public:
    Mixed() : utUnitTest("mixed") {}
    void run() override {
        int two = 2;
        UT_CHECK(two == 2);
        UT_CHECK(two == 3);
        UT_CHECK(two > 1);
    }
};

class Throwing : public utUnitTest {
public:
    explicit Throwing(bool std_exception) : utUnitTest(nullptr), m_std(std_exception) {}
    void run() override {
        UT_CHECK(true);
        if (m_std)
            throw std::runtime_error("disk gone");
        throw 42;
    }

private:
    bool m_std;
};

std::string read_all(std::FILE* f) {
    std::rewind(f);
    std::string text;
    char buf[256];
    size_t n;
    while ((n = std::fread(buf, 1, sizeof buf, f)) > 0)
        text.append(buf, n);
    return text;
}

TEST(utUnitTest, CountsChecksAndKeepsFailedExpressionWithItsPlace) {
    Mixed suite;
    EXPECT_FALSE(suite.execute());
    EXPECT_EQ(suite.passed(), 2);
    EXPECT_EQ(suite.failed(), 1);
    ASSERT_EQ(suite.failure_count(), 1u);
    utUnitTestFailure f = suite.failure(0);
    EXPECT_STREQ(f.expression, "two == 3");
    EXPECT_NE(std::string(f.file).find("utUnitTest_test.cpp"), std::string::npos);
    EXPECT_GT(f.line, 0);

    // Out of range is a harmless placeholder.
    utUnitTestFailure none = suite.failure(7);
    EXPECT_STREQ(none.expression, "?");
    EXPECT_EQ(none.line, 0);

    // A second run adds to the counts; reset starts again.
    EXPECT_FALSE(suite.execute());
    EXPECT_EQ(suite.passed(), 4);
    suite.reset();
    EXPECT_EQ(suite.passed(), 0);
    EXPECT_EQ(suite.failed(), 0);
}

TEST(utUnitTest, ExceptionsFromRunBecomeFailures) {
    Throwing std_suite(true);
    EXPECT_FALSE(std_suite.execute());
    EXPECT_EQ(std_suite.passed(), 1);
    ASSERT_EQ(std_suite.failed(), 1);
    EXPECT_STREQ(std_suite.failure(0).expression, "exception from run(): disk gone");
    EXPECT_STREQ(std_suite.name(), "");

    Throwing other(false);
    EXPECT_FALSE(other.execute());
    EXPECT_STREQ(other.failure(0).expression, "unknown exception from run()");
}

TEST(utUnitTest, ReportListsFailuresThenTotals) {
    Mixed suite;
    suite.execute();
    suite.check(false, nullptr, nullptr, 9);
    std::FILE* out = std::tmpfile();
    ASSERT_NE(out, nullptr);
    suite.report(out);
    const std::string text = read_all(out);
    std::fclose(out);
    EXPECT_NE(text.find("): check failed: two == 3\n"), std::string::npos) << text;
    EXPECT_NE(text.find("?(9): check failed: ?\n"), std::string::npos) << text;
    EXPECT_NE(text.find("mixed: 2 passed, 2 failed\n"), std::string::npos) << text;
    suite.report(nullptr); // writes nothing, does not crash
}

} // namespace
