#include "ovra/ovString.h"

#include "co/coHash.h"
#include "common/immortal.h"
#include "strings/utf_codec.h"

#include <algorithm>
#include <atomic>
#include <climits>
#include <cstring>
#include <new>
#include <ostream>
#include <utility>
#include <vector>

namespace {

using ovra_internal::kFailedUtf16;
using ovra_internal::kFailedUtf8;
using ovra_internal::kUnsafeAscii;

// The use count of built text sits just before it; 8 bytes keep the text aligned.
typedef std::atomic<size_t> Uses;
static_assert(sizeof(Uses) % alignof(unsigned int) == 0, "text must stay aligned");

bool is_inline(const unsigned int* text, const void* uses) {
    return static_cast<const char*>(uses) + sizeof(Uses) == reinterpret_cast<const char*>(text);
}

} // namespace

ovStringText::ovStringText(const ovStringText& o) noexcept : m_text(o.m_text), m_uses(o.m_uses) {
    if (m_uses)
        static_cast<Uses*>(m_uses)->fetch_add(1, std::memory_order_relaxed);
}

ovStringText::~ovStringText() {
    if (!m_uses || static_cast<Uses*>(m_uses)->fetch_sub(1, std::memory_order_acq_rel) != 1)
        return;
    Uses* uses = static_cast<Uses*>(m_uses);
    if (!is_inline(m_text, uses))
        delete[] m_text;
    uses->~Uses();
    ::operator delete(uses);
}

ovStringText ovStringText::make(size_t n, unsigned int*& text) {
    if (n > (SIZE_MAX - sizeof(Uses)) / sizeof(unsigned int))
        throw std::bad_alloc();
    void* block = ::operator new(sizeof(Uses) + n * sizeof(unsigned int));
    ovStringText t;
    t.m_uses = new (block) Uses(1);
    t.m_text = reinterpret_cast<unsigned int*>(static_cast<char*>(block) + sizeof(Uses));
    text = t.m_text;
    return t;
}

ovStringText ovStringText::claim(unsigned int* array) {
    std::unique_ptr<unsigned int[]> owned(array);
    ovStringText t;
    if (array) {
        t.m_uses = new (::operator new(sizeof(Uses))) Uses(1);
        t.m_text = owned.release();
    }
    return t;
}

namespace {
const ovra_internal::Immortal<ovString> the_space_chars(ovSTRING_L, L"\t\n\r ");
}
const ovString& ovSTRING_SPACE_CHARS = the_space_chars.value;

// ---- construction --------------------------------------------------------

ovString::ovString() noexcept : m_length(0), m_failed(0), m_utf8(), m_utf16(), m_wide() {}

ovString::ovString(ovStringEmpty) : ovString() {
    init_text(0);
}

ovString::ovString(ovStringL, const wchar_t* s) : ovString() {
    init_l(s);
}

ovString::ovString(ovStringWcs, const wchar_t* s, int& status) : ovString() {
    init_l(s);
    status = m_failed;
}

ovString::ovString(ovStringUTF8, const char* s, int& status) : ovString() {
    init_utf8(s);
    status = m_failed;
}

ovString::ovString(ovStringUTF16, const ovChar16* s, int& status) : ovString() {
    init_utf16(s, length_utf16(s));
    status = m_failed;
}

ovString::ovString(ovStringUTF16, const ovChar16* s, size_t n, int& status) : ovString() {
    init_utf16(s, n);
    status = m_failed;
}

ovString::ovString(ovStringUTF32, const unsigned int* s, int& status) : ovString() {
    init_utf32(s, length_utf32(s));
    status = m_failed;
}

ovString::ovString(ovStringUTF32, const unsigned int* s, size_t n, int& status) : ovString() {
    init_utf32(s, n);
    status = m_failed;
}

ovString::ovString(ovStringUTF16LE, const unsigned char* bytes, size_t n, int& status)
    : ovString() {
    // Status stays 0 even when the text fails: callers of this form test
    // failed(), which is what existing callers rely on.
    status = 0;
    if (!bytes)
        return;
    std::vector<ovChar16> units((n + 1) / 2 + 1, 0);
    for (size_t i = 0; i < n; ++i) {
        const unsigned int b = bytes[i];
        const unsigned int shift = (i & 1) ? 8 : 0;
        units[i / 2] = static_cast<ovChar16>(static_cast<uint16_t>(units[i / 2]) | (b << shift));
    }
    init_utf16(units.data(), (n + 1) / 2);
}

ovString::ovString(ovStringSafeASCII, const char* s, int& status) : ovString() {
    if (is_safe_ascii(s))
        init_utf8(s);
    else
        init_failed(kUnsafeAscii);
    status = m_failed;
}

ovString::ovString(const ovString& o)
    : m_buffer(o.m_buffer), m_length(o.m_length), m_failed(0), m_utf8(), m_utf16(), m_wide() {}

ovString::ovString(utCopy, const ovString& o) : ovString() {
    if (o.invalid())
        return;
    copy(init_text(o.m_length), o.internal_string(), o.m_length);
    // Every cache now, so that reading the copy never writes to it.
    convert(ovSTRING_UTF8);
    convert(ovSTRING_UTF16);
    convert(ovSTRING_WCS);
}

ovString::ovString(ovString&& o) noexcept : ovString() {
    move(o);
}

ovString::ovString(utPtrClaim, const unsigned int* p) : ovString() {
    init(utPTR_CLAIM, p);
}

ovString::~ovString() {
    free_caches();
}

ovString& ovString::operator=(const ovString& o) {
    ovString tmp(o);
    swap(tmp);
    return *this;
}

ovString& ovString::operator=(ovString&& o) noexcept {
    if (this != &o) {
        ovString tmp(std::move(o));
        swap(tmp);
    }
    return *this;
}

void ovString::swap(ovString& o) noexcept {
    m_buffer.swap(o.m_buffer);
    std::swap(m_length, o.m_length);
    std::swap(m_failed, o.m_failed);
    std::swap(m_utf8, o.m_utf8);
    std::swap(m_utf16, o.m_utf16);
    std::swap(m_wide, o.m_wide);
}

ovString ovString::literal(const char* ascii) {
    int status;
    return ovString(ovSTRING_UTF8, ascii, status);
}

// ---- protected building blocks --------------------------------------------

void ovString::init_null() noexcept {
    m_buffer.reset();
    m_length = 0;
    m_failed = 0;
    m_utf8 = nullptr;
    m_utf16 = nullptr;
    m_wide = nullptr;
}

void ovString::init(utPtrClaim, const unsigned int* p) {
    init_null();
    m_buffer = ovStringText::claim(const_cast<unsigned int*>(p));
    m_length = length_utf32(p); // an embedded 0 cuts the text, on purpose
}

ovString ovString::with_room(size_t n, unsigned int*& text) {
    ovString s;
    text = s.init_text(n);
    return s;
}

void ovString::shorten(ovString& s, size_t n) noexcept {
    if (s.m_buffer && n < s.m_length) {
        // Nothing shares a fresh text yet, so it may still be written.
        const_cast<unsigned int*>(s.internal_string())[n] = 0;
        s.m_length = n;
    }
}

unsigned int* ovString::init_text(size_t n) {
    unsigned int* text;
    m_buffer = ovStringText::make(n + 1, text);
    text[n] = 0;
    m_length = n;
    return text;
}

void ovString::init_utf8(const char* p) {
    init_null();
    if (!p)
        return;
    const size_t n = std::strlen(p);
    if (n > static_cast<size_t>(INT_MAX)) { // the byte count is a 32-bit int
        init_failed(kFailedUtf8);
        return;
    }
    // Short ASCII text (names, keys, words: most strings) needs neither the
    // block scanner nor the decoder: every byte is a code point.
    if (n <= 64 && ovra_internal::all_ascii(p, n)) {
        ovra_internal::copy_ascii(p, n, init_text(n));
        return;
    }
    // Long ASCII text gets its UTF-16 form, the one platform calls take, in the
    // same pass as its code points: it costs a third of the work the string
    // does anyway, where a later conversion would read all the code points
    // again. Text that is not ASCII after all takes the path below instead.
    if (n > 64 && ovra_internal::all_ascii(p, 64)) {
        ovChar16* utf16 = new ovChar16[n + 1];
        utf16[n] = 0;
        if (ovra_internal::widen_ascii(p, n, init_text(n), utf16)) {
            m_utf16 = utf16;
            return;
        }
        delete[] utf16;
        init_null();
    }
    // The counting pass of ConvertUTF, without the fallback that counts the
    // "?" of bad input: here bad input fails the string whatever the count.
    size_t chars;
    if (!ovra_internal::count_exact_utf8(p, n, chars)) {
        init_failed(kFailedUtf8);
        return;
    }
    // No 0 byte before n, so the length is known without a scan.
    ovra_internal::decode_exact_utf8(p, n, init_text(chars));
}

void ovString::init_utf16(const ovChar16* p, size_t n) {
    init_null();
    if (!p)
        return;
    // A unit never makes more than one code point, so one pass can decode
    // into room for n and check as it goes; bad input fails the string.
    unsigned int* buf = init_text(n);
    size_t chars;
    bool zero;
    if (!ovra_internal::decode_exact_utf16(p, n, buf, chars, zero)) {
        init_failed(kFailedUtf16);
        return;
    }
    // an embedded 0 cuts the text
    m_length = zero ? ovra_internal::first_zero(buf, chars) : chars;
}

void ovString::init_utf32(const unsigned int* p, size_t n) {
    init_null();
    if (!p)
        return;
    unsigned int* buf = init_text(n);
    copy(buf, p, n);
    m_length = length_utf32(buf); // an embedded 0 cuts the text, on purpose
}

void ovString::init_failed(const char* message) {
    init_utf8(message);
    m_failed = 1;
}

void ovString::move(ovString& from) noexcept {
    m_buffer = std::move(from.m_buffer);
    m_length = from.m_length;
    m_failed = from.m_failed;
    m_utf8 = from.m_utf8;
    m_utf16 = from.m_utf16;
    m_wide = from.m_wide;
    from.init_null(); // the caches now belong to this object
}

size_t ovString::length_utf16(const ovChar16* p) noexcept {
    return ovra_internal::units_before_zero(p);
}

size_t ovString::length_utf32(const unsigned int* p) noexcept {
    return ovra_internal::units_before_zero(p);
}

int ovString::is_safe_ascii(const char* p) noexcept {
    if (!p)
        return 1;
    // 0x7A ("z") is the top on purpose: "{|}~" and DEL are refused too.
    for (; *p; ++p) {
        const signed char c = static_cast<signed char>(*p);
        if (c < 1 || c > 0x7A)
            return 0;
    }
    return 1;
}

void ovString::copy(unsigned int* dst, const unsigned int* src, size_t n) noexcept {
    if (n)
        std::memcpy(dst, src, n * sizeof(unsigned int));
}

void ovString::free_caches() noexcept {
    delete[] m_utf8;
    delete[] m_utf16;
    delete[] m_wide;
    m_utf8 = nullptr;
    m_utf16 = nullptr;
    m_wide = nullptr;
}

// ---- conversions out --------------------------------------------------------

const char* ovString::convert(ovStringUTF8) const {
    if (!m_buffer)
        return nullptr;
    if (!m_utf8) {
        ovOvra::ConvertUTF cv;
        const size_t n = cv.utf32_to_utf8(internal_string(), m_length, nullptr, 0);
        char* p = new char[n];
        cv.utf32_to_utf8(internal_string(), m_length, p, n);
        m_utf8 = p;
    }
    return m_utf8;
}

const ovChar16* ovString::convert(ovStringUTF16) const {
    if (!m_buffer)
        return nullptr;
    if (!m_utf16) {
        ovOvra::ConvertUTF cv;
        const size_t n = cv.utf32_to_utf16(internal_string(), m_length, nullptr, 0);
        ovChar16* p = new ovChar16[n];
        cv.utf32_to_utf16(internal_string(), m_length, p, n);
        m_utf16 = p;
    }
    return m_utf16;
}

utString ovString::convert(ovStringSafeASCII, int& status) {
    status = 0;
    const char* text = convert(ovSTRING_UTF8);
    if (!text)
        return utString();
    if (!is_safe_ascii(text)) {
        status = 1;
        return utString(utSTRING_LIT, kUnsafeAscii);
    }
    return utString(text);
}

size_t ovString::write(std::ostream& os, ovStringUTF16LE) const {
    if (empty())
        return 0;
    const ovChar16* u = convert(ovSTRING_UTF16);
    const size_t units = length_utf16(u);
    std::vector<char> bytes(units * 2);
    for (size_t i = 0; i < units; ++i) {
        const unsigned int v = static_cast<uint16_t>(u[i]);
        bytes[2 * i] = static_cast<char>(v & 0xFF);
        bytes[2 * i + 1] = static_cast<char>(v >> 8);
    }
    os.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    return bytes.size();
}

// ---- positions, search and slicing -----------------------------------------

ovStringPos ovString::convert_pos(const ovString&, const ovStringPos& p) const noexcept {
    if (p.m_index <= m_length)
        return ovStringPos(p.m_index, internal_string());
    return end();
}

int ovString::matches(const ovString& s, const ovStringPos& at) const noexcept {
    if (s.empty())
        return 1;
    if (empty())
        return 0;
    if (at.m_index > m_length || at.m_index + s.m_length > m_length)
        return 0;
    return std::memcmp(internal_string() + at.m_index, s.internal_string(),
                       s.m_length * sizeof(unsigned int)) == 0
               ? 1
               : 0;
}

int ovString::begins_with(const ovString& s) const noexcept {
    return matches(s, begin());
}

int ovString::ends_with(const ovString& s) const noexcept {
    // A longer s wraps the start past the length, so matches() refuses it.
    return matches(s, ovStringPos(m_length - s.m_length, internal_string()));
}

ovStringPos ovString::find_substring(const ovString& s) const noexcept {
    return find_substring(s, begin(), end());
}

ovStringPos ovString::find_substring(const ovString& s, ovStringPos from,
                                     ovStringPos to) const noexcept {
    if (s.empty())
        return from;
    if (empty())
        return to;
    if (from.m_index > m_length || from.m_index + s.m_length > to.m_index)
        return to;
    // Nothing can match past this string's end, however far `to` lies.
    const size_t stop = std::min(to.m_index, m_length);
    if (stop < s.m_length)
        return to;
    const unsigned int first = s.internal_string()[0];
    const unsigned int* text = internal_string();
    for (size_t i = from.m_index; i <= stop - s.m_length; ++i) {
        if (text[i] == first && matches(s, ovStringPos(i, text)))
            return ovStringPos(i, text);
    }
    return to;
}

ovStringPos ovString::find_last(const ovString& s) const noexcept {
    return find_last(s, begin(), end());
}

ovStringPos ovString::find_last(const ovString& s, ovStringPos from,
                                ovStringPos to) const noexcept {
    if (s.empty())
        return from;
    if (empty())
        return to;
    if (from.m_index > m_length || from.m_index + s.m_length > to.m_index)
        return to;
    const size_t stop = std::min(to.m_index, m_length);
    if (stop < s.m_length || stop - s.m_length < from.m_index)
        return to;
    const unsigned int* text = internal_string();
    for (size_t i = stop - s.m_length;; --i) {
        if (matches(s, ovStringPos(i, text)))
            return ovStringPos(i, text);
        if (i == 0 || i == from.m_index)
            break;
    }
    return to;
}

ovString ovString::replace_all(const ovString& old, const ovString& by) const {
    if (empty())
        return ovString(ovSTRING_EMPTY);
    if (old.empty())
        return ovString(*this);
    const unsigned int* text = internal_string();
    size_t count = 0;
    for (size_t i = 0; i < m_length;) {
        if (matches(old, ovStringPos(i, text))) {
            count += by.m_length;
            i += old.m_length;
        } else {
            count += 1;
            i += 1;
        }
    }
    ovString result;
    unsigned int* o = result.init_text(count);
    for (size_t i = 0; i < m_length;) {
        if (matches(old, ovStringPos(i, text))) {
            copy(o, by.internal_string(), by.m_length);
            o += by.m_length;
            i += old.m_length;
        } else {
            *o++ = text[i++];
        }
    }
    return result;
}

ovString ovString::slice(size_t from, size_t to) const {
    if (empty())
        return ovString(ovSTRING_EMPTY);
    to = std::min(to, m_length);
    from = std::min(from, to);
    int status;
    return ovString(ovSTRING_UTF32, internal_string() + from, to - from, status);
}

ovString ovString::left(ovStringPos p) const {
    return slice(0, p.m_index);
}

ovString ovString::mid(ovStringPos p1, ovStringPos p2) const {
    return slice(p1.m_index, p2.m_index);
}

ovString ovString::right(ovStringPos p) const {
    return slice(p.m_index, m_length);
}

ovStringPos ovString::first_non_matching_character(const ovString& set) const {
    if (empty())
        return begin();
    const unsigned int* text = internal_string();
    const unsigned int* set_begin = set.internal_string();
    const unsigned int* set_end = set_begin + set.m_length;
    for (size_t i = 0; i < m_length; ++i) {
        if (std::find(set_begin, set_end, text[i]) == set_end)
            return ovStringPos(i, text);
    }
    return end();
}

ovString ovString::operator+(const ovString& o) const {
    ovString result;
    unsigned int* p = result.init_text(m_length + o.m_length);
    copy(p, internal_string(), m_length);
    copy(p + m_length, o.internal_string(), o.m_length);
    return result;
}

ovString& ovString::operator+=(const ovString& o) {
    *this = *this + o;
    return *this;
}

bool ovString::operator==(const ovString& o) const noexcept {
    if (!invalid() && !o.invalid()) {
        return m_length == o.m_length &&
               (m_length == 0 || std::memcmp(internal_string(), o.internal_string(),
                                             m_length * sizeof(unsigned int)) == 0);
    }
    return invalid() && o.invalid();
}

unsigned int co_hash(const ovString& s) {
    if (s.invalid())
        return 0;
    const size_t bytes = s.length() * sizeof(unsigned int);
    const int n = bytes > static_cast<size_t>(INT_MAX) ? INT_MAX : static_cast<int>(bytes);
    return co_hash(static_cast<const void*>(s.convert(ovSTRING_UTF32)), n);
}
