// Windows: wide text is UTF-16, so the wide forms are the UTF-16 ones.
#include "ovra/ovStringEncoding.h"

#include "common/immortal.h"

void ovString::init_l(const wchar_t* p) {
    init_utf16(p, length_utf16(p));
}

const wchar_t* ovString::convert(ovStringWcs) const {
    return convert(ovSTRING_UTF16);
}

ovString ovStringUTF16OsEncoding::in(const wchar_t* text, int& status) const {
    // Built in place so that a failed string stays failed.
    return ovString(ovSTRING_UTF16, text, status);
}

ovBuffer<wchar_t> ovStringUTF16OsEncoding::out(const ovString& s, int& status) const {
    status = 0;
    return ovBuffer<wchar_t>(s.convert(ovSTRING_UTF16));
}

const ovIStringOsEncoding* ovStringOsEncodingChooser::os_encoding() const {
    static const ovra_internal::Immortal<ovStringUTF16OsEncoding> the_os_encoding;
    return &the_os_encoding.value;
}
