// POSIX: wchar_t is 32-bit and wide text is UTF-32. It is validated on the way
// in like UTF-16 is on Windows (and fails with the same message, so callers
// see one behaviour), and copied out into a cache of its own.
#include "ovra/ovStringEncoding.h"

#include "common/immortal.h"
#include "strings/utf_codec.h"

#include <cstdint>
#include <cwchar>

void ovString::init_l(const wchar_t* p) {
    init_null();
    if (!p)
        return;
    const size_t n = std::wcslen(p);
    unsigned int* buf = init_text(n);
    for (size_t i = 0; i < n; ++i) {
        const uint32_t c = static_cast<uint32_t>(p[i]);
        if ((c >= 0xD800 && c <= 0xDFFF) || c > 0x10FFFF) {
            init_failed(ovra_internal::kFailedUtf16); // drops the text begun
            return;
        }
        buf[i] = c;
    }
}

const wchar_t* ovString::convert(ovStringWcs) const {
    const unsigned int* text = internal_string();
    if (!text)
        return nullptr;
    if (!m_wide) {
        wchar_t* w = new wchar_t[m_length + 1];
        for (size_t i = 0; i <= m_length; ++i)
            w[i] = static_cast<wchar_t>(text[i]);
        m_wide = w;
    }
    return m_wide;
}

ovString ovStringUTF32OsEncoding::in(const wchar_t* text, int& status) const {
    // Built in place so that a failed string stays failed.
    return ovString(ovSTRING_WCS, text, status);
}

ovBuffer<wchar_t> ovStringUTF32OsEncoding::out(const ovString& s, int& status) const {
    status = 0;
    return ovBuffer<wchar_t>(s.convert(ovSTRING_WCS));
}

const ovIStringOsEncoding* ovStringOsEncodingChooser::os_encoding() const {
    static const ovra_internal::Immortal<ovStringUTF32OsEncoding> the_os_encoding;
    return &the_os_encoding.value;
}
