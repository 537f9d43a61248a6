#include "ovra/ovStringEncoding.h"

#include "common/immortal.h"
#include "strings/utf_codec.h"

#include <cstdlib>
#include <cwchar>
#include <vector>

using ovra_internal::unfailed;

ovIStringEncoding::~ovIStringEncoding() = default;
ovIStringOsEncoding::~ovIStringOsEncoding() = default;

// ---- UTF-8 ------------------------------------------------------------------

ovString ovStringUTF8Encoding::in(const char* text, int& status) const {
    // Built in place so that a failed string stays failed.
    return ovString(ovSTRING_UTF8, text, status);
}

utString ovStringUTF8Encoding::out(const ovString& s, int& status) const {
    status = 0;
    return utString(utCOPY, s.convert(ovSTRING_UTF8));
}

// ---- C runtime locale ---------------------------------------------------------

namespace {
// The runtime functions are given this bound rather than SIZE_MAX, as the
// 32-bit count the platform's runtime is built around.
constexpr size_t kCrtLimit = 0x7FFFFFFF;
} // namespace

ovString ovStringCRTEncoding::in(const char* text, int& status) const {
    status = 0;
    if (!text)
        return ovString();
    const size_t n = std::mbstowcs(nullptr, text, kCrtLimit);
    if (n == static_cast<size_t>(-1)) {
        status = 1;
        return ovString(ovSTRING_L, L"Failed to construct string from MB string.");
    }
    std::vector<wchar_t> wide(n + 1);
    std::mbstowcs(wide.data(), text, n + 1);
    return unfailed(ovString(ovSTRING_WCS, wide.data(), status));
}

utString ovStringCRTEncoding::out(const ovString& s, int& status) const {
    status = 0;
    const wchar_t* w = s.convert(ovSTRING_WCS);
    if (!w)
        return utString();
    // One pass into the most room the locale can need. Measuring first is not
    // portable: Wine's runtime stops at the bound even without a destination,
    // and measures text it then refuses to convert.
    const size_t n = std::wcslen(w) * MB_CUR_MAX;
    std::vector<char> narrow(n + 1);
    if (std::wcstombs(narrow.data(), w, n + 1) == static_cast<size_t>(-1)) {
        status = 1;
        return utString("Failed to convert string to MB");
    }
    return utString(utCOPY, narrow.data());
}

// ---- choosers -----------------------------------------------------------------

const ovIStringEncoding* ovStringEncodingChooser::ut_encoding() const {
    static const ovra_internal::Immortal<ovStringUTF8Encoding> the_ut_encoding;
    return &the_ut_encoding.value;
}

const ovIStringEncoding* ovStringEncodingChooser::mb_encoding() const {
    static const ovra_internal::Immortal<ovStringCRTEncoding> the_mb_encoding;
    return &the_mb_encoding.value;
}

// ---- converters ---------------------------------------------------------------

namespace {

const ovIStringOsEncoding* os_or_default(const ovIStringOsEncoding* os) {
    return os ? os : ovStringOsEncodingChooser().os_encoding();
}

const ovIStringEncoding* ut_or_default(const ovIStringEncoding* ut) {
    return ut ? ut : ovStringEncodingChooser().ut_encoding();
}

// The status of a conversion in steps: it starts at 0 and each step's nonzero
// status overwrites it, so the last failure is the one reported. A step that
// fails still hands on what it made (a failed string converts as its message).
class Steps {
public:
    explicit Steps(int& status) : m_status(status) { m_status = 0; }
    // Runs step(int& st) and returns its result.
    template <class F> auto operator()(F&& step) {
        int st = 0;
        auto result = step(st);
        if (st)
            m_status = st;
        return result;
    }

private:
    int& m_status;
};

} // namespace

ovOsWcsStringConverter::ovOsWcsStringConverter(const ovIStringOsEncoding* os)
    : m_os(os_or_default(os)) {}

ovBuffer<wchar_t> ovOsWcsStringConverter::convert_TSTR_to_wcs(const wchar_t* tstr,
                                                              int& status) const {
    Steps steps(status);
    const ovString s = steps([&](int& st) { return m_os->in(tstr, st); });
    return ovBuffer<wchar_t>(s.convert(ovSTRING_WCS));
}

ovBuffer<wchar_t> ovOsWcsStringConverter::convert_wcs_to_TSTR(const wchar_t* wcs,
                                                              int& status) const {
    Steps steps(status);
    const ovString s = steps([&](int& st) { return ovString(ovSTRING_WCS, wcs, st); });
    return steps([&](int& st) { return m_os->out(s, st); });
}

ovOsUtStringConverter::ovOsUtStringConverter(const ovIStringEncoding* ut,
                                             const ovIStringOsEncoding* os)
    : m_ut(ut_or_default(ut)), m_os(os_or_default(os)) {}

utString ovOsUtStringConverter::convert_TSTR_to_utString(const wchar_t* tstr, int& status) const {
    Steps steps(status);
    const ovString s = steps([&](int& st) { return m_os->in(tstr, st); });
    return steps([&](int& st) { return m_ut->out(s, st); });
}

ovBuffer<wchar_t> ovOsUtStringConverter::convert_utString_to_TSTR(const utString& u,
                                                                  int& status) const {
    Steps steps(status);
    const ovString s = steps([&](int& st) { return m_ut->in(u.c_str(), st); });
    return steps([&](int& st) { return m_os->out(s, st); });
}

ovOsUTF16StringConverter::ovOsUTF16StringConverter(const ovIStringOsEncoding* os)
    : m_os(os_or_default(os)) {}

ovBuffer<ovChar16> ovOsUTF16StringConverter::convert_TSTR_to_UTF16(const wchar_t* tstr,
                                                                   int& status) const {
    Steps steps(status);
    const ovString s = steps([&](int& st) { return m_os->in(tstr, st); });
    return ovBuffer<ovChar16>(s.convert(ovSTRING_UTF16));
}

ovBuffer<wchar_t> ovOsUTF16StringConverter::convert_UTF16_to_TSTR(const ovChar16* utf16,
                                                                  int& status) const {
    Steps steps(status);
    const ovString s = steps([&](int& st) { return ovString(ovSTRING_UTF16, utf16, st); });
    return steps([&](int& st) { return m_os->out(s, st); });
}

ovUTF16UtStringConverter::ovUTF16UtStringConverter(const ovIStringEncoding* ut)
    : m_ut(ut_or_default(ut)) {}

utString ovUTF16UtStringConverter::convert_UTF16_to_utString(const ovChar16* utf16,
                                                             int& status) const {
    Steps steps(status);
    const ovString s = steps([&](int& st) { return ovString(ovSTRING_UTF16, utf16, st); });
    return steps([&](int& st) { return m_ut->out(s, st); });
}

ovBuffer<ovChar16> ovUTF16UtStringConverter::convert_utString_to_UTF16(const utString& u,
                                                                       int& status) const {
    Steps steps(status);
    const ovString s = steps([&](int& st) { return m_ut->in(u.c_str(), st); });
    return ovBuffer<ovChar16>(s.convert(ovSTRING_UTF16));
}

ovMBSToWCSP::ovMBSToWCSP(const char* s) {
    int ignored;
    m_text = ovStringEncodingChooser().ut_encoding()->in(s, ignored);
}

const ovChar16* ovMBSToWCSP::wcs16() const {
    return m_text.convert(ovSTRING_UTF16);
}

const wchar_t* ovMBSToWCSP::wcs() const {
    return m_text.convert(ovSTRING_WCS);
}
