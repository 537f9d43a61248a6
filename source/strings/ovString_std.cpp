// The C++ standard library's text types in and out of ovString. Everything
// goes through the NUL-terminated UTF-8 reader, so the rules for bad text stay
// in one place.
#include "ovra/ovString.h"

#include "utf_codec.h"

#include <cstring>

ovString::ovString(ovStringUTF8, const char* s, size_t n, int& status) : ovString() {
    if (s) {
        if (std::memchr(s, 0, n)) {
            init_failed(ovra_internal::kFailedUtf8);
        } else {
            const std::string text(s, n);
            init_utf8(text.c_str());
        }
    }
    status = m_failed;
}

ovString::ovString(ovStringUTF8, std::string_view s, int& status)
    : ovString(ovSTRING_UTF8, s.data() ? s.data() : "", s.size(), status) {}

ovString::ovString(ovStringUTF8, std::string_view s) : ovString() {
    int status = 0;
    ovString(ovSTRING_UTF8, s, status).swap(*this);
}

std::string ovString::to_utf8() const {
    const char* text = convert(ovSTRING_UTF8);
    return text ? std::string(text) : std::string();
}
