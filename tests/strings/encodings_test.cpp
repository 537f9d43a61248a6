#include "ovra/ovStringEncoding.h"

#include "string_test_util.h"

#include <gtest/gtest.h>

#include <cwchar>
#include <string>

using namespace ovtest;

namespace {

const char kBadUtf8Message[] = "Failed to construct string from UTF8 string.";

std::string text_of(const utString& u) {
    return u.is_null() ? "<null>" : u.c_str();
}

// Wide text of the platform's own encoding, from UTF-8.
std::wstring wide(const char* utf8) {
    const ovString s = from_utf8(utf8);
    return s.convert(ovSTRING_WCS);
}

} // namespace

TEST(ovStringEncoding, ChoosersHandOutOneLastingInstanceEach) {
    const ovStringEncodingChooser chooser;
    const ovIStringEncoding* ut = chooser.ut_encoding();
    ASSERT_NE(ut, nullptr);
    EXPECT_EQ(ut, ovStringEncodingChooser().ut_encoding());
    EXPECT_NE(dynamic_cast<const ovStringUTF8Encoding*>(ut), nullptr);
    const ovIStringEncoding* mb = chooser.mb_encoding();
    EXPECT_EQ(mb, ovStringEncodingChooser().mb_encoding());
    EXPECT_NE(dynamic_cast<const ovStringCRTEncoding*>(mb), nullptr);

    const ovIStringOsEncoding* os = ovStringOsEncodingChooser().os_encoding();
    ASSERT_NE(os, nullptr);
    EXPECT_EQ(os, ovStringOsEncodingChooser().os_encoding());

    int st = -1;
    const std::wstring w = wide("gr\xC3\xBC\xC3\x9F \xF0\x9F\x98\x80");
    const ovString s = os->in(w.c_str(), st);
    EXPECT_EQ(st, 0);
    EXPECT_EQ(utf8_of(s), "gr\xC3\xBC\xC3\x9F \xF0\x9F\x98\x80");
    const ovBuffer<wchar_t> back = os->out(s, st);
    EXPECT_EQ(st, 0);
    EXPECT_EQ(std::wstring(back.text(), back.length()), w.c_str());
}

TEST(ovStringEncoding, HandlesOwnOrBorrowEncodings) {
    const ovIStringEncoding* fixed = ovStringEncodingChooser().ut_encoding();
    ovIStringEncodingcoPrf borrowed(fixed, coPRF_EXTERN);
    EXPECT_TRUE(borrowed.external());
    borrowed.reset(); // must leave the process-wide default alone
    EXPECT_EQ(ovStringEncodingChooser().ut_encoding(), fixed);

    ovIStringEncodingcoPrf owned(new ovStringUTF8Encoding());
    const ovIStringEncodingcoPrf copy = owned;
    EXPECT_EQ(copy.use_count(), 2);
    int st = -1;
    EXPECT_EQ(utf8_of(copy->in("\xC3\xA9t\xC3\xA9", st)), "\xC3\xA9t\xC3\xA9");
    EXPECT_EQ(st, 0);
}

TEST(ovStringEncoding, Utf8AndCrtEncodings) {
    const ovStringUTF8Encoding utf8;
    int st = -1;
    const ovString bad = utf8.in("ok\xC3", st);
    EXPECT_EQ(st, 1);
    EXPECT_TRUE(bad.failed()) << "built in place, so still failed";
    EXPECT_EQ(utf8_of(bad), kBadUtf8Message);
    EXPECT_EQ(text_of(utf8.out(from_utf8("\xE2\x82\xAC"), st)), "\xE2\x82\xAC");
    EXPECT_EQ(st, 0);

    // Tests run in the "C" locale, where plain ASCII converts and CJK does not.
    const ovStringCRTEncoding crt;
    EXPECT_EQ(text_of(crt.out(crt.in("plain ASCII 123", st), st)), "plain ASCII 123");
    EXPECT_EQ(st, 0);
    EXPECT_EQ(text_of(crt.out(from_utf8("\xE6\x97\xA5"), st)), "Failed to convert string to MB");
    EXPECT_EQ(st, 1);

    // Null text: the null result, not a crash.
    for (const ovIStringEncoding* e : {static_cast<const ovIStringEncoding*>(&utf8),
                                       static_cast<const ovIStringEncoding*>(&crt)}) {
        st = -1;
        EXPECT_TRUE(e->in(nullptr, st).invalid());
        EXPECT_TRUE(e->out(ovString(), st).is_null());
        EXPECT_EQ(st, 0);
    }
}

TEST(ovStringEncoding, CodePagesRoundTrip) {
    struct Case {
        int code_page;
        std::string bytes;
        const char* utf8;
    };
    const Case cases[] = {
        {1252, "Gr\xFC\xDF\x65 \x80",
         "Gr\xC3\xBC\xC3\x9F"
         "e \xE2\x82\xAC"},
        {1250, "\xB9\xE8", "\xC4\x85\xC4\x8D"},
        {1251, "\xCF\xF0\xE8", "\xD0\x9F\xD1\x80\xD0\xB8"},
        {437, "\xC9\xCD", "\xE2\x95\x94\xE2\x95\x90"},
        {850, "\x82", "\xC3\xA9"},
        {932, "\x93\xFA\x96\x7B", "\xE6\x97\xA5\xE6\x9C\xAC"},
        {936, "\xD6\xD0", "\xE4\xB8\xAD"},
        {949, "\xC7\xD1", "\xED\x95\x9C"},
        {950, "\xA4\xA4", "\xE4\xB8\xAD"},
        {65001, "\xE2\x82\xAC", "\xE2\x82\xAC"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::Message() << "code page " << c.code_page);
        const ovStringCPEncoding cp(c.code_page);
        EXPECT_EQ(cp.code_page(), c.code_page);
        int st = -1;
        const ovString s = cp.in(c.bytes.c_str(), st);
        EXPECT_EQ(st, 0);
        EXPECT_EQ(utf8_of(s), c.utf8);
        if (c.code_page == 65001)
            continue; // refused on the way out; see below
        st = -1;
        EXPECT_EQ(text_of(cp.out(s, st)), c.bytes);
        EXPECT_EQ(st, 0);
    }
}

TEST(ovStringEncoding, CodePageFailuresAndDefaultCharacters) {
    int st = -1;
    // A character the page lacks becomes "?" and is reported, text kept.
    const utString lossy = ovStringCPEncoding(1252).out(from_utf8("a\xE6\x97\xA5z"), st);
    EXPECT_EQ(st, 1);
    EXPECT_EQ(text_of(lossy), "a?z");

    // Invalid bytes refuse the whole text with an ordinary string.
    st = -1;
    const ovString refused = ovStringCPEncoding(932).in("ok\x81\x20", st);
    EXPECT_EQ(st, 1);
    EXPECT_FALSE(refused.failed());
    EXPECT_EQ(utf8_of(refused), "Failed to convert to ovString.");

    // An unknown page fails both ways; the UTF pages cannot report default
    // characters, so `out` refuses them; null text is refused like any other.
    const struct {
        int page;
        const char* in;
        ovString out;
    } refusals[] = {{12345, "abc", from_utf8("abc")},
                    {65001, nullptr, from_utf8("abc")},
                    {1252, nullptr, ovString()}};
    for (const auto& c : refusals) {
        SCOPED_TRACE(c.page);
        const ovStringCPEncoding cp(c.page);
        st = -1;
        EXPECT_EQ(utf8_of(cp.in(c.in, st)), "Failed to convert to ovString.");
        EXPECT_EQ(st, 1);
        st = -1;
        EXPECT_EQ(text_of(cp.out(c.out, st)), "Failed to convert to 8-bit encoding.");
        EXPECT_EQ(st, 1);
    }
}

TEST(ovStringEncoding, ConvertersChainTheirTwoSteps) {
    const char* utf8 = "na\xC3\xAFve \xF0\x9F\x98\x80";
    const std::wstring w = wide(utf8);
    const ovString s = from_utf8(utf8);
    const u16string units(s.convert(ovSTRING_UTF16));
    int st = -1;

    int any = 0; // every status of the good conversions, or-ed
    const ovOsWcsStringConverter wcs;
    EXPECT_EQ(std::wstring(wcs.convert_TSTR_to_wcs(w.c_str(), st).text()), w);
    any |= st;
    EXPECT_EQ(std::wstring(wcs.convert_wcs_to_TSTR(w.c_str(), st).text()), w);
    any |= st;
    const ovOsUtStringConverter ut;
    EXPECT_EQ(text_of(ut.convert_TSTR_to_utString(w.c_str(), st)), utf8);
    any |= st;
    EXPECT_EQ(std::wstring(ut.convert_utString_to_TSTR(utString(utf8), st).text()), w);
    any |= st;
    const ovOsUTF16StringConverter os16;
    EXPECT_EQ(u16string(os16.convert_TSTR_to_UTF16(w.c_str(), st).text()), units);
    any |= st;
    EXPECT_EQ(std::wstring(os16.convert_UTF16_to_TSTR(units.c_str(), st).text()), w);
    any |= st;
    const ovUTF16UtStringConverter ut16;
    EXPECT_EQ(text_of(ut16.convert_UTF16_to_utString(units.c_str(), st)), utf8);
    any |= st;
    EXPECT_EQ(u16string(ut16.convert_utString_to_UTF16(utString(utf8), st).text()), units);
    EXPECT_EQ(any | st, 0);

    // A failed first step: the second converts the message, status stays 1.
    st = -1;
    const ovBuffer<wchar_t> bad = ut.convert_utString_to_TSTR(utString("bad\xC3"), st);
    EXPECT_EQ(st, 1);
    EXPECT_EQ(std::wstring(bad.text()), wide(kBadUtf8Message));
    st = -1;
    const u16string lone = u16({'x', 0xDC00});
    EXPECT_EQ(text_of(ut16.convert_UTF16_to_utString(lone.c_str(), st)),
              "Failed to construct string from UTF16 string.");
    EXPECT_EQ(st, 1);

    // A chosen encoding is used instead of the default.
    const ovStringCPEncoding latin1(1252);
    const ovOsUtStringConverter to_1252(&latin1);
    EXPECT_EQ(text_of(to_1252.convert_TSTR_to_utString(wide("caf\xC3\xA9").c_str(), st)),
              "caf\xE9");
    EXPECT_EQ(st, 0);

    // Null in, null out, no failure.
    st = -1;
    EXPECT_TRUE(wcs.convert_TSTR_to_wcs(nullptr, st).is_null());
    EXPECT_TRUE(ut.convert_utString_to_TSTR(utString(), st).is_null());
    EXPECT_TRUE(ut.convert_TSTR_to_utString(nullptr, st).is_null());
    EXPECT_TRUE(os16.convert_UTF16_to_TSTR(nullptr, st).is_null());
    EXPECT_TRUE(ut16.convert_utString_to_UTF16(utString(), st).is_null());
    EXPECT_EQ(st, 0);
}

TEST(ovStringEncoding, BuffersShareOneCopy) {
    const ovBuffer<wchar_t> a(L"shared");
    EXPECT_EQ(a.length(), 6u);
    {
        const ovBuffer<wchar_t> b(a);
        EXPECT_EQ(b.text(), a.text());
        ovBuffer<wchar_t> c;
        c = b;
        EXPECT_EQ(c.text(), a.text());
        c = ovBuffer<wchar_t>(L"other");
    }
    EXPECT_EQ(std::wstring(a.text()), L"shared") << "still alive after the copies went";

    const ovBuffer<wchar_t> null(static_cast<const wchar_t*>(nullptr));
    EXPECT_TRUE(null.is_null());
    EXPECT_EQ(null.text(), nullptr);
    EXPECT_EQ(null.length(), 0u);
}

TEST(ovStringEncoding, MbsToWcspGivesWideArguments) {
    const ovMBSToWCSP arg("h\xC3\xA9llo");
    EXPECT_EQ(u16string(arg.wcs16()), u16({'h', 0xE9, 'l', 'l', 'o'}));
    EXPECT_EQ(std::wstring(arg.wcs()), L"h\u00E9llo");
    EXPECT_EQ(ovMBSToWCSP(nullptr).wcs16(), nullptr);
    EXPECT_EQ(u16string(ovMBSToWCSP("\xC3").wcs16()),
              u16string(from_utf8(kBadUtf8Message).convert(ovSTRING_UTF16)));
}
