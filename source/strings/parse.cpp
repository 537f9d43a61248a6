// Results, the locale-free parsers and ovStringParser.
#include "ovra/ovStringParse.h"

#include "strings/utf_codec.h"

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstdint>
#include <cwchar>

ovStringParseResultBase::ovStringParseResultBase(const ovString& original, int success,
                                                 const ovStringPos& position)
    : m_original(original), m_success(success), m_position(position) {}

ovStringParseIntResult::ovStringParseIntResult(const ovString& original, int success, int result,
                                               const ovStringPos& position)
    : ovStringParseResultBase(original, success, position), m_result(result) {}

ovStringParseDoubleResult::ovStringParseDoubleResult(const ovString& original, int success,
                                                     double result, const ovStringPos& position)
    : ovStringParseResultBase(original, success, position), m_result(result) {}

ovStringParseAsciiResult::ovStringParseAsciiResult(const ovString& original, const utString& ascii,
                                                   const ovStringPos& position)
    : ovStringParseResultBase(original, 1, position), m_ascii(ascii) {}

ovIStringToIntParser::~ovIStringToIntParser() = default;
ovIStringToDoubleParser::~ovIStringToDoubleParser() = default;

namespace {

// p moved on by n code points; ovStringPos only steps by int.
ovStringPos advance(ovStringPos p, size_t n) {
    for (; n > static_cast<size_t>(INT_MAX); n -= static_cast<size_t>(INT_MAX))
        p += INT_MAX;
    return p + static_cast<int>(n);
}

// The code points of s after its leading white space, with a cursor.
struct Scan {
    explicit Scan(const ovString& s)
        : start(s.first_non_matching_character(ovSTRING_SPACE_CHARS)),
          text(s.convert(ovSTRING_UTF32)), length(s.length()), i(start.index()) {}

    bool at(unsigned int c) const { return i < length && text[i] == c; }
    bool at_digit() const { return i < length && ovra_internal::is_ascii_digit(text[i]); }
    unsigned int digit() { return text[i++] - '0'; }

    // Takes an optional sign; -1 for "-".
    int sign() {
        if (at('-')) {
            ++i;
            return -1;
        }
        if (at('+'))
            ++i;
        return 1;
    }

    ovStringPos stop() const { return advance(start, i - start.index()); }

    ovStringPos start;
    const unsigned int* text;
    size_t length;
    size_t i;
};

} // namespace

ovStringParseIntResult ovStringHandIntParser::parse(const ovString& s) const {
    Scan scan(s);
    const int sign = scan.sign();
    // Unsigned, so that overflow wraps modulo 2^32 without undefined behaviour.
    uint32_t value = 0;
    bool any = false;
    while (scan.at_digit()) {
        value = value * 10u + scan.digit();
        any = true;
    }
    if (sign < 0)
        value = 0u - value;
    return ovStringParseIntResult(s, any ? 1 : 0, static_cast<int>(value), scan.stop());
}

ovStringParseDoubleResult ovStringSimpleDoubleParser::parse(const ovString& s) const {
    Scan scan(s);
    const int sign = scan.sign();
    double value = 0.0;
    bool any = false;
    while (scan.at_digit()) {
        value = value * 10.0 + scan.digit();
        any = true;
    }
    if (scan.at(',') || scan.at('.')) {
        ++scan.i;
        double factor = 1.0;
        while (scan.at_digit()) {
            factor /= 10.0;
            value += factor * scan.digit();
            any = true;
        }
    }
    return ovStringParseDoubleResult(s, any ? 1 : 0, value * sign, scan.stop());
}

ovStringParser::ovStringParser(const ovIStringToIntParsercoPrf& ints,
                               const ovIStringToDoubleParsercoPrf& doubles)
    : m_ints(ints), m_doubles(doubles) {}

ovStringParseIntResult ovStringParser::parse_int(const ovString& s) const {
    if (m_ints.empty())
        return ovStringParseIntResult(s, 0, 0, s.begin());
    return m_ints->parse(s);
}

ovStringParseDoubleResult ovStringParser::parse_double(const ovString& s) const {
    if (m_doubles.empty())
        return ovStringParseDoubleResult(s, 0, 0.0, s.begin());
    return m_doubles->parse(s);
}

ovStringParseAsciiResult ovStringAsciiParser::parse(const ovString& s) const {
    const unsigned int* text = s.convert(ovSTRING_UTF32);
    size_t n = 0;
    while (n < s.length() && text[n] >= 1 && text[n] <= 127)
        ++n;
    const ovStringPos stop = advance(s.begin(), n);
    const ovString run = s.left(stop);
    return ovStringParseAsciiResult(s, utString(run.convert(ovSTRING_UTF8)), stop);
}

// ---- the C runtime's conversions ----------------------------------------------

namespace {

// The wide form of s for the runtime; the null string reads as "".
const wchar_t* wide_text(const ovString& s) {
    const wchar_t* w = s.convert(ovSTRING_WCS);
    return w ? w : L"";
}

// The position after `units` wide units of s's wide form. wchar_t is UTF-16
// on Windows and UTF-32 on POSIX; a code point counts only when all of its
// units were consumed.
ovStringPos after_units(const ovString& s, size_t units) {
    const unsigned int* text = s.convert(ovSTRING_UTF32);
    const bool utf16 = sizeof(wchar_t) == 2;
    size_t n = 0;
    while (n < s.length()) {
        const size_t width = (utf16 && text[n] >= 0x10000) ? 2 : 1;
        if (width > units)
            break;
        units -= width;
        ++n;
    }
    return advance(s.begin(), n);
}

} // namespace

ovStringParseIntResult ovStringLocaleIntParser::parse(const ovString& s) const {
    const wchar_t* w = wide_text(s);
    wchar_t* stop = nullptr;
    // errno is the caller's: the runtime sets it on overflow, which we report
    // by clamping instead.
    const int saved = errno;
    const long value = std::wcstol(w, &stop, 10);
    errno = saved;
    const size_t used = static_cast<size_t>(stop - w);
    // Where long is wider than int (POSIX), clamp as Windows' wcstol does at
    // long's limits.
    const long clamped = std::clamp<long>(value, INT_MIN, INT_MAX);
    return ovStringParseIntResult(s, used > 0 ? 1 : 0, static_cast<int>(clamped),
                                  after_units(s, used));
}

ovStringParseDoubleResult ovStringLocaleDoubleParser::parse(const ovString& s) const {
    const wchar_t* w = wide_text(s);
    wchar_t* stop = nullptr;
    const int saved = errno;
    const double value = std::wcstod(w, &stop);
    errno = saved;
    const size_t used = static_cast<size_t>(stop - w);
    return ovStringParseDoubleResult(s, used > 0 ? 1 : 0, value, after_units(s, used));
}
