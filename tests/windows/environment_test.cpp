#include "ovra/ovEnvironmentVariables.h"
#include "ovra/ovSystemOperations.h"

#include <gtest/gtest.h>

#include <string>

namespace {

std::string text(const ovString& s) {
    const char* p = s.convert(ovSTRING_UTF8);
    return p ? p : "(null)";
}

TEST(ovEnvironmentVariables, DefaultInstancesShareTheProcessEnvironmentAndItsRefusals) {
    const ovString name = OVSTRING("OVRA_ENV_TEST_SHARED");
    ASSERT_TRUE(ovEnvironmentVariables(nullptr).put(name, OVSTRING("one two")));
    EXPECT_EQ("one two", text(ovEnvironmentVariables(nullptr).get(name)));
    ASSERT_TRUE(ovEnvironmentVariables(nullptr).put(name, OVSTRING("caf\xC3\xA9")));
    EXPECT_EQ("caf\xC3\xA9", text(ovEnvironmentVariables(nullptr).get(name)));
    EXPECT_EQ("", text(ovEnvironmentVariables(nullptr).get(OVSTRING("OVRA_ENV_TEST_UNSET"))));

    // The operations' refusals come through.
    ovEnvironmentVariables env(nullptr);
    EXPECT_FALSE(env.put(OVSTRING(""), OVSTRING("x")));
    EXPECT_FALSE(env.put(OVSTRING("A=B"), OVSTRING("x")));
    EXPECT_EQ("", text(env.get(OVSTRING(""))));
}

// Stands in for an application's own environment, to show the given one is used.
class RecordingEnvironment final : public ovIProcessEnvironmentOperations {
public:
    bool put(const ovString& name, const ovString& value) override {
        last = text(name) + "=" + text(value);
        return answer;
    }
    ovString get(const ovString& name) override {
        last = text(name);
        return OVSTRING("recorded");
    }
    ovPathName current_directory() override { return ovPathName(); }
    std::string last;
    bool answer = false;
};

TEST(ovEnvironmentVariables, AGivenOperationsObjectIsUsed) {
    RecordingEnvironment own;
    ovEnvironmentVariables env(&own);
    EXPECT_FALSE(env.put(OVSTRING("K"), OVSTRING("V")));
    EXPECT_EQ("K=V", own.last);
    own.answer = true;
    EXPECT_TRUE(env.put(OVSTRING("K"), OVSTRING("W")));
    EXPECT_EQ("recorded", text(env.get(OVSTRING("Q"))));
    EXPECT_EQ("Q", own.last);
    EXPECT_EQ("", text(ovEnvironmentVariables(nullptr).get(OVSTRING("K"))));
}

// A byte-wise cipher (xor), optionally with a block size its lengths must fill.
class XorCrypt : public ovICrypt {
public:
    explicit XorCrypt(int block = 1, bool works = true) : m_block(block), m_works(works) {}
    int encrypt_buffer(char* buffer, int length) override { return apply(buffer, length); }
    int decrypt_buffer(char* buffer, int length) override { return apply(buffer, length); }
    int num_encryptable(int length) const override {
        return m_block == 1 ? ovICrypt::num_encryptable(length) : length / m_block * m_block;
    }
    int seen = -1;

private:
    int apply(char* buffer, int length) {
        seen = length;
        if (!m_works)
            return 0;
        for (int i = 0; i < length; ++i)
            buffer[i] = static_cast<char>(buffer[i] ^ 0x5A);
        return 1;
    }
    int m_block;
    bool m_works;
};

TEST(ovICrypt, PadsToWhatTheCipherTakesAndStripsAfter) {
    const struct {
        int block;
        std::string plain;
        size_t encrypted;
    } cases[] = {{1, "thirteen byte", 13},
                 {8, "thirteen byte", 16},
                 {8, "sixteen bytes!!!", 16},
                 {8, "", 0},
                 {5, "x", 5}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.plain + " / " + std::to_string(c.block));
        XorCrypt crypt(c.block);
        std::string s = c.plain;
        ASSERT_TRUE(crypt.encrypt_string(s));
        EXPECT_EQ(c.encrypted, s.size());
        EXPECT_EQ(static_cast<int>(c.encrypted), crypt.seen);
        if (!c.plain.empty()) {
            EXPECT_NE(c.plain, s.substr(0, c.plain.size()));
        }
        ASSERT_TRUE(crypt.decrypt_string(s));
        EXPECT_EQ(c.plain, s);
    }
}

// Padding and content are not told apart: trailing zeros of the text go too, unless
// the text is nothing but zeros.
TEST(ovICrypt, DecryptingStripsEveryTrailingZero) {
    XorCrypt crypt;
    std::string s("ab\0\0", 4);
    ASSERT_TRUE(crypt.encrypt_string(s));
    ASSERT_TRUE(crypt.decrypt_string(s));
    EXPECT_EQ("ab", s);
    std::string zeros(3, '\0');
    ASSERT_TRUE(crypt.encrypt_string(zeros));
    ASSERT_TRUE(crypt.decrypt_string(zeros));
    EXPECT_EQ(std::string(3, '\0'), zeros);
}

TEST(ovICrypt, FailuresOfTheCipherAreReportedAndChangeNothing) {
    XorCrypt broken(8, false);
    std::string s("abc");
    EXPECT_FALSE(broken.encrypt_string(s));
    std::string t("abc\0", 4);
    EXPECT_FALSE(broken.decrypt_string(t));
    EXPECT_EQ(std::string("abc\0", 4), t); // nothing stripped

    // A cipher that accepts no length at all gives up instead of searching forever.
    class Never final : public XorCrypt {
    public:
        int num_encryptable(int length) const override { return length - 1; }
    } never;
    std::string u("abc");
    EXPECT_FALSE(never.encrypt_string(u));
    EXPECT_EQ("abc", u);
    EXPECT_EQ(-1, never.seen);
}

TEST(ovICrypt, DefaultSizesAreTheLengthGiven) {
    XorCrypt crypt;
    for (int n : {0, 1, 13, 1 << 20}) {
        EXPECT_EQ(n, crypt.num_encryptable(n));
        EXPECT_EQ(n, crypt.num_decryptable(n));
        EXPECT_EQ(n, crypt.num_needed_to_decrypt(n));
    }
}

} // namespace
