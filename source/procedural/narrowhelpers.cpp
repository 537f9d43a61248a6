#include "ovra/ovNarrowHelpers.h"

#include "ut/utString.h"

#include <cctype>
#include <cstdarg>
#include <cstring>
#include <new>

namespace {

char lowered(char c) {
    const unsigned char u = static_cast<unsigned char>(c);
    return std::isupper(u) ? static_cast<char>(std::tolower(u)) : c;
}

} // namespace

OV_API void ovstrrep(char* text, int first, int last, const char* replacement) {
    if (!text || !replacement)
        return;
    const long long length = static_cast<long long>(std::strlen(text));
    if (first < 0 || first > length || last < first - 1 || last >= length)
        return;
    const size_t with = std::strlen(replacement);
    // The tail, terminator included, moves as one block; memmove copies in the
    // right direction for either sign of the change.
    char* tail = text + last + 1;
    std::memmove(text + first + with, tail, length - static_cast<size_t>(last + 1) + 1);
    std::memcpy(text + first, replacement, with);
}

OV_API int ovchcasecmp(char a, char b) {
    a = lowered(a);
    if (a != '\0')
        b = lowered(b);
    if (a != '\0' && b != '\0') {
        const signed char sa = static_cast<signed char>(a);
        const signed char sb = static_cast<signed char>(b);
        return sa == sb ? 0 : (sa < sb ? -1 : 1);
    }
    return a != '\0' ? 1 : -1;
}

OV_API int ovstrncasecmp(const char* a, const char* b, int n) {
    if (!a || !b)
        return 0;
    for (int i = 0; i < n && (a[i] != '\0' || b[i] != '\0'); ++i) {
        const int r = ovchcasecmp(a[i], b[i]);
        if (r != 0)
            return r;
    }
    return 0;
}

OV_API int ovstrcasecmp(const char* a, const char* b) {
    if (!a || !b)
        return 0;
    for (;; ++a, ++b) {
        if (*a == '\0' && *b == '\0')
            return 0;
        if (*a == *b)
            continue;
        const signed char la =
            static_cast<signed char>(std::tolower(static_cast<unsigned char>(*a)));
        const signed char lb =
            static_cast<signed char>(std::tolower(static_cast<unsigned char>(*b)));
        if (la != '\0' && lb != '\0' && la == lb)
            continue;
        if (la == '\0')
            return -1;
        if (lb == '\0')
            return 1;
        return la > lb ? 1 : -1;
    }
}

OV_API int ovpos(const char* needle, const char* haystack) {
    if (!needle || !haystack)
        return 0;
    const char* p = haystack;
    int mismatched = 0;
    for (;;) {
        // Answers the flag, not 0: a candidate that failed at the very end
        // leaves 1. Callers have long relied on it.
        if (*p == '\0')
            return mismatched;
        const char* hit = std::strchr(p, needle[0]);
        if (!hit)
            return 0;
        size_t i = 0;
        while (needle[i] != '\0' && hit[i] == needle[i])
            ++i;
        if (needle[i] == '\0')
            return static_cast<int>(hit - haystack + static_cast<ptrdiff_t>(i));
        p = hit + 1;
        mismatched = 1;
    }
}

OV_API void ovgsub(char* text, char from, char to) {
    if (!text || from == to)
        return;
    for (; *text; ++text) {
        if (*text == from)
            *text = to;
    }
}

OV_API void ovgsub(utString& text, char from, char to) {
    if (text.is_null() || from == to)
        return;
    size_t at = text.find(from);
    if (at == utString::npos)
        return;
    char* data = text.modify();
    const size_t length = text.length();
    for (; at < length; ++at) {
        if (data[at] == from)
            data[at] = to;
    }
}

extern "C" OV_API char* ovconcat(int count, const char* first, ...) {
    va_list args;
    va_start(args, first);
    size_t total = 0;
    {
        va_list sizes;
        va_copy(sizes, args);
        for (int i = 0; i < count; ++i) {
            const char* s = i == 0 ? first : va_arg(sizes, const char*);
            total += s ? std::strlen(s) : 0;
        }
        va_end(sizes);
    }
    char* result = static_cast<char*>(::operator new(total + 1, std::nothrow));
    if (result) {
        char* end = result;
        for (int i = 0; i < count; ++i) {
            const char* s = i == 0 ? first : va_arg(args, const char*);
            const size_t k = s ? std::strlen(s) : 0;
            std::memcpy(end, s ? s : "", k);
            end += k;
        }
        *end = '\0';
    }
    va_end(args);
    return result;
}
