// Against the registry of the test prefix: keys are made under a name of this process's
// own and removed at the end.
#include "ovra/ovRegistry.h"

#include "common/win32.h"

#include <sddl.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace {

typedef std::unique_ptr<utStringcoPageArr> List;

std::vector<std::string> names(const List& list) {
    std::vector<std::string> out;
    if (list)
        for (int i = 0; i < list->size(); ++i)
            out.push_back((*list)[i].c_str());
    return out;
}

std::wstring wide(const std::string& s) {
    return std::wstring(s.begin(), s.end());
}

// Whether the key is there in exactly the view given (KEY_WOW64_32KEY or _64KEY).
bool in_view(HKEY root, const std::string& path, REGSAM view) {
    HKEY key;
    if (RegOpenKeyExW(root, wide(path).c_str(), 0, KEY_READ | view, &key) != ERROR_SUCCESS)
        return false;
    RegCloseKey(key);
    return true;
}

// Writes a value past the library, in exactly the view given (0: the default one).
void set_raw(HKEY root, const std::string& path, REGSAM view, const wchar_t* name, DWORD type,
             const void* data, DWORD size) {
    HKEY key;
    ASSERT_EQ(ERROR_SUCCESS,
              RegOpenKeyExW(root, wide(path).c_str(), 0, KEY_SET_VALUE | view, &key));
    RegSetValueExW(key, name, 0, type, static_cast<const BYTE*>(data), size);
    RegCloseKey(key);
}

class RegistryTest : public testing::Test {
protected:
    void SetUp() override {
        base_ = "Software\\ovraTest-" + std::to_string(GetCurrentProcessId()) + "-" +
                std::to_string(GetTickCount());
    }
    void TearDown() override {
        RegDeleteTreeW(HKEY_CURRENT_USER, wide(base_).c_str());
        for (REGSAM view : {KEY_WOW64_32KEY, KEY_WOW64_64KEY}) {
            HKEY software;
            if (RegOpenKeyExW(HKEY_LOCAL_MACHINE, L"Software", 0, KEY_ALL_ACCESS | view,
                              &software) == ERROR_SUCCESS) {
                RegDeleteTreeW(software, wide(base_.substr(9)).c_str());
                RegCloseKey(software);
            }
        }
    }
    utString at(const std::string& tail = "") const {
        return utString((tail.empty() ? base_ : base_ + "\\" + tail).c_str());
    }
    std::string base_;
};

TEST_F(RegistryTest, ValuesGoInAndComeBackByType) {
    ovRegistry reg(ovHKEY_CURRENT_USER);
    ASSERT_EQ(1, reg.set_value_data(at(), "s", ovREG_STRING, "caf\xC3\xA9"));
    ASSERT_EQ(1, reg.set_value_data(at(), "e", ovREG_EXPAND_STRING, "%WINDIR%\\x"));
    ASSERT_EQ(1, reg.set_value_data(at(), "i", ovREG_INT, "-42"));
    const BYTE blob[3] = {1, 2, 3};
    set_raw(HKEY_CURRENT_USER, base_, 0, L"b", REG_BINARY, blob, sizeof blob);

    const struct {
        const char* name;
        ovValueType type;
        int exists;
    } cases[] = {{"s", ovREG_STRING, 1},
                 {"e", ovREG_EXPAND_STRING, 1},
                 {"i", ovREG_INT, 1},
                 {"b", ovREG_OTHER, 1},
                 {"missing", ovREG_OTHER, 0}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(c.type, reg.value_type(at(), c.name));
        ovValueType type = ovREG_OTHER;
        EXPECT_EQ(c.exists, reg.value_exists(at(), c.name, type));
        if (c.exists) {
            EXPECT_EQ(c.type, type);
        }
    }

    utString text;
    EXPECT_EQ(1, reg.value_data(at(), "s", text));
    EXPECT_EQ("caf\xC3\xA9", text);
    EXPECT_EQ(1, reg.value_data(at(), "e", text));
    EXPECT_EQ("%WINDIR%\\x", text); // as stored: nothing expanded
    EXPECT_EQ(1, reg.value_data_utf8(at(), "s", text));
    EXPECT_EQ("caf\xC3\xA9", text);
    int number = 0;
    EXPECT_EQ(1, reg.value_data(at(), "i", number));
    EXPECT_EQ(-42, number);

    // The wrong kind fails and leaves the variable alone.
    number = 5;
    text = "kept";
    EXPECT_EQ(0, reg.value_data(at(), "s", number));
    EXPECT_EQ(0, reg.value_data(at(), "b", number));
    EXPECT_EQ(0, reg.value_data(at(), "i", text));
    EXPECT_EQ(0, reg.value_data(at(), "b", text));
    EXPECT_EQ(0, reg.value_data_utf8(at(), "i", text));
    EXPECT_EQ(0, reg.value_data(at(), "missing", text));
    EXPECT_EQ(5, number);
    EXPECT_EQ("kept", text);

    EXPECT_EQ(1, reg.remove_value(at(), "s"));
    EXPECT_EQ(0, reg.remove_value(at(), "s"));
    EXPECT_EQ(ovREG_OTHER, reg.value_type(at(), "s"));
}

TEST_F(RegistryTest, NumbersAreTruncatedAndBadInputWritesNothing) {
    ovRegistry reg(ovHKEY_CURRENT_USER);
    const struct {
        const char* text;
        int stored;
    } good[] = {
        {"12.9", 12}, {"-3.7", -3}, {" 7 ", 7}, {"4294967297", 1}, {"2147483648", INT32_MIN},
        {"1e3", 1000}};
    for (const auto& c : good) {
        SCOPED_TRACE(c.text);
        EXPECT_EQ(1, reg.set_value_data(at(), "n", ovREG_INT, c.text));
        int number = 0;
        EXPECT_EQ(1, reg.value_data(at(), "n", number));
        EXPECT_EQ(c.stored, number);
    }
    ASSERT_EQ(1, reg.set_value_data(at(), "n", ovREG_INT, "5"));
    for (const char* text : {"abc", "12abc", "", "1e999"}) {
        SCOPED_TRACE(text);
        EXPECT_EQ(0, reg.set_value_data(at(), "n", ovREG_INT, text));
        EXPECT_EQ(0, reg.set_value_data(at("fresh"), "n", ovREG_INT, text));
        int number = 0;
        EXPECT_EQ(1, reg.value_data(at(), "n", number));
        EXPECT_EQ(5, number); // untouched
    }
    EXPECT_EQ(0, reg.key_exists(at("fresh"))); // not even the key was made

    // Unknown kinds and malformed text write nothing either.
    EXPECT_EQ(0, reg.set_value_data(at(), "v", ovREG_OTHER, "x"));
    EXPECT_EQ(0, reg.set_value_data(at(), "v", static_cast<ovValueType>(9), "x"));
    EXPECT_EQ(0, reg.set_value_data(at(), "v", ovREG_STRING, "bad \xFF"));
    EXPECT_EQ(0, reg.set_value_data(at(), "bad \xFF", ovREG_STRING, "x"));
    EXPECT_EQ(std::vector<std::string>{"n"}, names(List(reg.value_list(at()))));
}

// A string of 1024 bytes or more does not fit the read buffer: it exists but cannot
// be read, and reading never runs past the buffer.
TEST_F(RegistryTest, LongStringsCountAsMissing) {
    ovRegistry reg(ovHKEY_CURRENT_USER);
    for (size_t length : {1022u, 1023u, 1024u, 5000u}) {
        SCOPED_TRACE(length);
        const std::string text(length, 'x');
        ASSERT_EQ(1, reg.set_value_data(at(), "long", ovREG_STRING, text.c_str()));
        const int fits = length < 1024 ? 1 : 0;
        ovValueType type = ovREG_OTHER;
        EXPECT_EQ(fits, reg.value_exists(at(), "long", type));
        EXPECT_EQ(ovREG_STRING, reg.value_type(at(), "long"));
        utString back("kept");
        EXPECT_EQ(fits, reg.value_data(at(), "long", back));
        EXPECT_EQ(fits ? text.c_str() : "kept", back);
    }
}

TEST_F(RegistryTest, ListsNamesAndCutsLongOnes) {
    ovRegistry reg(ovHKEY_CURRENT_USER);
    EXPECT_EQ(nullptr, List(reg.key_list(at()))); // missing key
    ASSERT_EQ(1, reg.create_key(at()));
    EXPECT_EQ(nullptr, List(reg.key_list(at())));   // no sub-keys
    EXPECT_EQ(nullptr, List(reg.value_list(at()))); // no values
    for (const char* child : {"b", "a", "\xC3\xA9t\xC3\xA9"})
        ASSERT_EQ(1, reg.create_key(at(child)));
    const std::vector<std::string> keys = names(List(reg.key_list(at())));
    EXPECT_EQ(3u, keys.size());
    for (const char* child : {"a", "b", "\xC3\xA9t\xC3\xA9"})
        EXPECT_NE(keys.end(), std::find(keys.begin(), keys.end(), child)) << child;

    const std::string long_name(1500, 'n');
    ASSERT_EQ(1, reg.set_value_data(at(), "v", ovREG_STRING, "1"));
    ASSERT_EQ(1, reg.set_value_data(at(), long_name.c_str(), ovREG_STRING, "2"));
    std::vector<std::string> values = names(List(reg.value_list(at())));
    std::sort(values.begin(), values.end());
    ASSERT_EQ(2u, values.size());
    EXPECT_EQ(std::string(1023, 'n'), values[0]); // cut to the buffer
    EXPECT_EQ("v", values[1]);
}

TEST_F(RegistryTest, KeysDeletedAfterListingReadAsMissing) {
    ovRegistry reg(ovHKEY_CURRENT_USER);
    ASSERT_EQ(1, reg.set_value_data(at("gone"), "v", ovREG_STRING, "x"));
    const List list(reg.key_list(at()));
    ASSERT_EQ(std::vector<std::string>{"gone"}, names(list));
    ASSERT_EQ(ERROR_SUCCESS, RegDeleteTreeW(HKEY_CURRENT_USER, wide(base_ + "\\gone").c_str()));
    utString text("kept");
    EXPECT_EQ(0, reg.key_exists(at((*list)[0].c_str())));
    EXPECT_EQ(0, reg.value_data(at((*list)[0].c_str()), "v", text));
    EXPECT_EQ(ovREG_OTHER, reg.value_type(at((*list)[0].c_str()), "v"));
    EXPECT_EQ(0, reg.remove_key(at((*list)[0].c_str())));
    EXPECT_EQ("kept", text);
}

TEST_F(RegistryTest, RemoveKeyTakesTheWholeTreeAndNothingBeside) {
    ovRegistry reg(ovHKEY_CURRENT_USER);
    for (const char* leaf : {"t\\a\\x", "t\\a\\y", "t\\b", "t2\\keep", "tX"})
        ASSERT_EQ(1, reg.create_key(at(leaf)));
    ASSERT_EQ(1, reg.set_value_data(at("t\\a"), "v", ovREG_STRING, "x"));
    EXPECT_EQ(1, reg.remove_key(at("t")));
    EXPECT_EQ(0, reg.key_exists(at("t")));
    EXPECT_EQ(1, reg.key_exists(at("t2\\keep")));
    EXPECT_EQ(1, reg.key_exists(at("tX")));
    EXPECT_EQ(0, reg.remove_key(at("t"))); // nothing left to remove

    // Separators the system may or may not accept: whatever it says, the siblings stay.
    ASSERT_EQ(1, reg.create_key(at("u\\v")));
    for (const char* odd : {"u\\", "u\\\\v", "\\u"}) {
        SCOPED_TRACE(odd);
        reg.key_exists(at(odd));
        reg.remove_key(at(odd));
        EXPECT_EQ(1, reg.key_exists(at("t2\\keep")));
        EXPECT_EQ(1, reg.key_exists(at("tX")));
    }
}

// A leaf nobody may delete keeps its parents; its siblings still go.
TEST_F(RegistryTest, AProtectedLeafKeepsItsParents) {
    ovRegistry reg(ovHKEY_CURRENT_USER);
    for (const char* leaf : {"p\\open1", "p\\locked", "p\\open2"})
        ASSERT_EQ(1, reg.create_key(at(leaf)));
    PSECURITY_DESCRIPTOR deny = nullptr;
    ASSERT_TRUE(ConvertStringSecurityDescriptorToSecurityDescriptorW(
        L"D:(D;;SD;;;WD)(A;;KA;;;WD)", SDDL_REVISION_1, &deny, nullptr));
    HKEY locked;
    ASSERT_EQ(ERROR_SUCCESS, RegOpenKeyExW(HKEY_CURRENT_USER, wide(base_ + "\\p\\locked").c_str(),
                                           0, WRITE_DAC, &locked));
    const LONG set = RegSetKeySecurity(locked, DACL_SECURITY_INFORMATION, deny);
    RegCloseKey(locked);
    LocalFree(deny);
    ASSERT_EQ(ERROR_SUCCESS, set);

    const int removed = reg.remove_key(at("p"));
    if (!reg.key_exists(at("p\\locked")))
        GTEST_SKIP() << "Wine's registry does not enforce the DELETE right of a key's DACL";
    EXPECT_EQ(0, removed);
    EXPECT_EQ(1, reg.key_exists(at("p")));
    EXPECT_EQ(0, reg.key_exists(at("p\\open1")));
    EXPECT_EQ(0, reg.key_exists(at("p\\open2")));
}

// HKEY_CURRENT_USER\Software is one key in both views, so both listings agree and the
// merged list names each key once.
TEST_F(RegistryTest, SharedKeysAreListedOnce) {
    ovRegistry6432 reg(ovHKEY_CURRENT_USER);
    ASSERT_EQ(1, reg.create_key_32(at("k1")));
    ASSERT_EQ(1, reg.create_key_64(at("k2")));
    std::vector<std::string> keys = names(List(reg.key_list(at())));
    std::sort(keys.begin(), keys.end());
    EXPECT_EQ((std::vector<std::string>{"k1", "k2"}), keys);
}

// The views differ under HKEY_LOCAL_MACHINE\Software, where Wow64 redirects 32-bit keys.
class ViewsTest : public RegistryTest {
protected:
    void SetUp() override {
        RegistryTest::SetUp();
        ovRegistry6432 reg(ovHKEY_LOCAL_MACHINE);
        if (!reg.create_key_64(at()))
            GTEST_SKIP() << "HKEY_LOCAL_MACHINE\\Software cannot be written by this user";
        ASSERT_EQ(1, reg.create_key_32(at()));
        ASSERT_EQ(1, reg.create_key_32(at("only32\\child")));
        ASSERT_EQ(1, reg.create_key_64(at("only64")));
        ASSERT_EQ(1, reg.create_key_32(at("both")));
        ASSERT_EQ(1, reg.create_key_64(at("both")));
        ASSERT_TRUE(in_view(HKEY_LOCAL_MACHINE, base_ + "\\only32", KEY_WOW64_32KEY));
        if (in_view(HKEY_LOCAL_MACHINE, base_ + "\\only32", KEY_WOW64_64KEY))
            GTEST_SKIP() << "the system keeps one view of HKEY_LOCAL_MACHINE\\Software";
    }
};

TEST_F(ViewsTest, KeysOfOneViewAreFoundAndListedWhereTheyLive) {
    ovRegistry plain(ovHKEY_LOCAL_MACHINE);
    ovRegistry6432 both(ovHKEY_LOCAL_MACHINE);
    EXPECT_EQ(0, plain.key_exists(at("only32")));
    EXPECT_EQ(1, plain.key_exists(at("only64")));
    EXPECT_EQ(1, both.key_exists(at("only32")));
    EXPECT_EQ(0, both.key_exists_64(at("only32")));
    EXPECT_EQ(1, both.key_exists_64(at("only64")));

    // The plain listing falls back, but only once key_exists has found the key.
    EXPECT_EQ(nullptr, List(plain.key_list(at("only32"))));
    plain.set_look_in_wow64_area(1);
    EXPECT_EQ(1, plain.key_exists(at("only32")));
    EXPECT_EQ(std::vector<std::string>{"child"}, names(List(plain.key_list(at("only32")))));
    EXPECT_EQ(std::vector<std::string>{"child"}, names(List(both.key_list(at("only32")))));

    // The merged list has the 64-bit names first and each name once.
    const std::vector<std::string> keys = names(List(both.key_list(at())));
    ASSERT_EQ(3u, keys.size());
    std::vector<std::string> first(keys.begin(), keys.begin() + 2);
    std::sort(first.begin(), first.end());
    EXPECT_EQ((std::vector<std::string>{"both", "only64"}), first);
    EXPECT_EQ("only32", keys[2]);
    EXPECT_EQ(nullptr, List(both.key_list(at("missing"))));
}

TEST_F(ViewsTest, ValuesOfEitherViewAreRead) {
    ovRegistry6432 both(ovHKEY_LOCAL_MACHINE);
    set_raw(HKEY_LOCAL_MACHINE, base_ + "\\only32", KEY_WOW64_32KEY, L"v", REG_SZ, L"thirty-two",
            22);
    set_raw(HKEY_LOCAL_MACHINE, base_ + "\\only64", KEY_WOW64_64KEY, L"v", REG_SZ, L"sixty-four",
            22);

    utString text;
    EXPECT_EQ(1, both.value_data_utf8(at("only32"), "v", text));
    EXPECT_EQ("thirty-two", text);
    EXPECT_EQ(1, both.value_data_utf8(at("only64"), "v", text));
    EXPECT_EQ("sixty-four", text);
    ovValueType type = ovREG_OTHER;
    EXPECT_EQ(1, both.value_exists(at("only32"), "v", type));
    EXPECT_EQ(ovREG_STRING, type);
    ovRegistry plain(ovHKEY_LOCAL_MACHINE);
    EXPECT_EQ(1, plain.value_data_utf8(at("only32"), "v", text)); // always falls back
    EXPECT_EQ(0, plain.value_exists(at("only32"), "v", type));    // only with the flag
}

TEST_F(ViewsTest, DeletionsStayInTheirView) {
    ovRegistry6432 both(ovHKEY_LOCAL_MACHINE);
    for (const char* leaf : {"t\\a\\x", "t\\b", "t2", "tX"}) {
        ASSERT_EQ(1, both.create_key_32(at(leaf)));
        ASSERT_EQ(1, both.create_key_64(at(leaf)));
    }
    EXPECT_EQ(1, both.remove_key_32(at("t")));
    EXPECT_FALSE(in_view(HKEY_LOCAL_MACHINE, base_ + "\\t", KEY_WOW64_32KEY));
    EXPECT_TRUE(in_view(HKEY_LOCAL_MACHINE, base_ + "\\t\\a\\x", KEY_WOW64_64KEY));
    EXPECT_EQ(1, both.remove_key_64(at("t")));
    EXPECT_FALSE(in_view(HKEY_LOCAL_MACHINE, base_ + "\\t", KEY_WOW64_64KEY));
    for (REGSAM view : {KEY_WOW64_32KEY, KEY_WOW64_64KEY}) {
        EXPECT_TRUE(in_view(HKEY_LOCAL_MACHINE, base_ + "\\t2", view));
        EXPECT_TRUE(in_view(HKEY_LOCAL_MACHINE, base_ + "\\tX", view));
    }

    EXPECT_EQ(ERROR_SUCCESS, ov_reg_RegDeleteKeyEx(HKEY_LOCAL_MACHINE, at("t2"), KEY_WOW64_32KEY));
    EXPECT_FALSE(in_view(HKEY_LOCAL_MACHINE, base_ + "\\t2", KEY_WOW64_32KEY));
    EXPECT_TRUE(in_view(HKEY_LOCAL_MACHINE, base_ + "\\t2", KEY_WOW64_64KEY));
    EXPECT_NE(ERROR_SUCCESS, ov_reg_RegDeleteKeyEx(HKEY_LOCAL_MACHINE, at("t2"), KEY_WOW64_32KEY));
    EXPECT_EQ(ERROR_NO_UNICODE_TRANSLATION,
              ov_reg_RegDeleteKeyEx(HKEY_LOCAL_MACHINE, at("bad \xFF"), KEY_WOW64_32KEY));
}

TEST(ovRegistryHelpers, RootsAndViews) {
    EXPECT_EQ(1, ovRegistry::has_wow64());
    EXPECT_EQ(HKEY_CLASSES_ROOT, ov_reg_master_key(ovHKEY_CLASSES_ROOT));
    EXPECT_EQ(HKEY_CURRENT_USER, ov_reg_master_key(ovHKEY_CURRENT_USER));
    EXPECT_EQ(HKEY_LOCAL_MACHINE, ov_reg_master_key(ovHKEY_LOCAL_MACHINE));
    EXPECT_EQ(HKEY_USERS, ov_reg_master_key(ovHKEY_USERS));
    EXPECT_EQ(HKEY_LOCAL_MACHINE, ov_reg_master_key(static_cast<ovHKeyType>(-1)));
    HKEY key = nullptr;
    ASSERT_EQ(ERROR_SUCCESS,
              ov_reg_RegOpenKeyEx(HKEY_LOCAL_MACHINE, "Software", 0, KEY_READ, &key, 0));
    RegCloseKey(key);
    EXPECT_NE(ERROR_SUCCESS, ov_reg_RegOpenKeyEx(HKEY_LOCAL_MACHINE, "Software\\no such key", 0,
                                                 KEY_READ, &key, 1));
}

} // namespace
