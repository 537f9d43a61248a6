#include "ovra/ovStringCompare.h"

#include "ovra/ovNarrow.h"
#include "ovra/ovStringEncoding.h"

#include <algorithm>

namespace {

// A null string has no buffer and length 0, so it compares as "".
int compare_code_points(const ovString& a, const ovString& b) noexcept {
    const unsigned int* p = a.convert(ovSTRING_UTF32);
    const unsigned int* q = b.convert(ovSTRING_UTF32);
    const size_t na = a.length();
    const size_t nb = b.length();
    const size_t n = std::min(na, nb);
    for (size_t i = 0; i < n; ++i) {
        if (p[i] != q[i])
            return p[i] > q[i] ? 1 : -1;
    }
    return na == nb ? 0 : (na < nb ? -1 : 1);
}

const char* text_or_empty(const utString& s) noexcept {
    return s.is_null() ? "" : s.c_str();
}

} // namespace

ovIStringCompare::~ovIStringCompare() = default;

int ovStringCompareNumeric::equal(const ovString& a, const ovString& b) const {
    return a == b ? 1 : 0;
}

int ovStringCompareNumeric::compare(const ovString& a, const ovString& b) const {
    return compare_code_points(a, b);
}

ovStringCompareInsensitive::ovStringCompareInsensitive(const ovIStringEncoding* encoding)
    : m_encoding(encoding ? encoding : ovStringEncodingChooser().ut_encoding()) {}

int ovStringCompareInsensitive::equal(const ovString& a, const ovString& b) const {
    return compare(a, b) == 0 ? 1 : 0;
}

int ovStringCompareInsensitive::compare(const ovString& a, const ovString& b) const {
    int status_a = 0;
    int status_b = 0;
    const utString narrow_a = m_encoding->out(a, status_a);
    const utString narrow_b = m_encoding->out(b, status_b);
    if (status_a != 0 || status_b != 0)
        return compare_code_points(a, b);
    return ov_stricmp(text_or_empty(narrow_a), text_or_empty(narrow_b));
}
