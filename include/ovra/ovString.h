/// @file
/// ovString: the library's one text type, its positions, and the exact UTF
/// converter it is built on.
///
/// Error contract: nothing here throws for bad text. A constructor given text
/// that does not decode exactly builds a *failed* string that holds an English
/// message instead of the text, and sets its `status` argument to 1 (0 when
/// fine). A null pointer builds the null (invalid) string. `ConvertUTF`
/// reports loss through `was_exact()`. Allocation failure propagates as
/// std::bad_alloc.
///
/// Text is stored as UTF-32 code points, shared between copies and never
/// changed after it is built. Each object keeps its own UTF-8 and UTF-16 forms,
/// made on first request. The first `convert` of one object must not race with
/// another call on the same object; copies may be used from other threads.
///
/// Wide text (`wchar_t`) is the platform's own: UTF-16 on Windows, UTF-32 on
/// POSIX. The UTF-16 forms take and give `ovChar16` (see ovExport.h), which is
/// `wchar_t` on Windows, so there the two are one and the same.
#pragma once

#include "ovra/ovExport.h"
#include "ut/utString.h"

#include <cstddef>
#include <cstdint>
#include <iosfwd>
#include <memory>
#include <string>
#include <string_view>

// Constructor tags; the same types select the form that `convert` gives.
/// Tag: null-terminated wide text, no status.
enum ovStringL { ovSTRING_L };
/// Tag: null-terminated wide text.
enum ovStringWcs { ovSTRING_WCS };
/// Tag: UTF-8 bytes.
enum ovStringUTF8 { ovSTRING_UTF8 };
/// Tag: UTF-16 units.
enum ovStringUTF16 { ovSTRING_UTF16 };
/// Tag: code points, not validated.
enum ovStringUTF32 { ovSTRING_UTF32 };
/// Tag: little-endian UTF-16 bytes.
enum ovStringUTF16LE { ovSTRING_UTF16LE };
/// Tag: ASCII 0x01..0x7A only.
enum ovStringSafeASCII { ovSTRING_SAFE_ASCII };
/// Tag: a valid empty string.
enum ovStringEmpty { ovSTRING_EMPTY };

class ovString;
namespace ovra_internal {
class TextBuilder;
}

/// The shared code points of ovString. Text the library builds lives in one
/// allocation with its atomic use count in front; an array a caller hands over
/// (utPtrClaim) is taken as it is, with the count in a small block of its own.
/// Either way copies on other threads may share and drop it.
class OV_API ovStringText {
public:
    ovStringText() noexcept : m_text(nullptr), m_uses(nullptr) {}
    /// Shares o's text (one more use).
    ovStringText(const ovStringText& o) noexcept;
    /// Takes o's text; o holds none afterwards.
    ovStringText(ovStringText&& o) noexcept : m_text(o.m_text), m_uses(o.m_uses) {
        o.m_text = nullptr;
        o.m_uses = nullptr;
    }
    /// Shares the other's text, dropping this one's use.
    ovStringText& operator=(ovStringText o) noexcept {
        swap(o);
        return *this;
    }
    ~ovStringText();

    /// Room for n code points, uses 1; `text` receives where to write them.
    static ovStringText make(size_t n, unsigned int*& text);
    /// Takes a new[] array into shared ownership without copying it; null gives
    /// no text. If the count's block cannot be allocated the array is freed and
    /// std::bad_alloc propagates.
    static ovStringText claim(unsigned int* array);

    /// The code points, or null.
    const unsigned int* get() const noexcept { return m_text; }
    /// True when there is text.
    explicit operator bool() const noexcept { return m_text != nullptr; }
    /// Exchanges the two texts.
    void swap(ovStringText& o) noexcept {
        unsigned int* t = m_text;
        m_text = o.m_text;
        o.m_text = t;
        void* u = m_uses;
        m_uses = o.m_uses;
        o.m_uses = u;
    }
    /// Drops this use of the text.
    void reset() noexcept { ovStringText().swap(*this); }

private:
    unsigned int* m_text;
    void* m_uses; ///< the count: just before m_text, or a block of its own for claimed text
};

/// A code-point position in one particular string. Ordering compares indexes
/// only; equality also asks that both come from the same string's text.
class ovStringPos {
public:
    /// The "nowhere" position: largest index, no text.
    ovStringPos() noexcept : m_index(SIZE_MAX), m_text(nullptr) {}

    /// Code-point index: 0 at the start, the length at the end.
    size_t index() const noexcept { return m_index; }

    /// Same index in the same string's text.
    bool operator==(const ovStringPos& o) const noexcept {
        return m_index == o.m_index && m_text == o.m_text;
    }
    /// Not operator==.
    bool operator!=(const ovStringPos& o) const noexcept { return !(*this == o); }
    /// Orderings compare the indexes only.
    bool operator<(const ovStringPos& o) const noexcept { return m_index < o.m_index; }
    /// Index greater.
    bool operator>(const ovStringPos& o) const noexcept { return m_index > o.m_index; }
    /// Index not greater.
    bool operator<=(const ovStringPos& o) const noexcept { return m_index <= o.m_index; }
    /// Index not smaller.
    bool operator>=(const ovStringPos& o) const noexcept { return m_index >= o.m_index; }

    /// Moves by n code points (n may be negative); no bounds are checked.
    ovStringPos operator+(int n) const noexcept {
        return ovStringPos(m_index + static_cast<size_t>(static_cast<std::ptrdiff_t>(n)), m_text);
    }
    /// Moves this position by n code points.
    ovStringPos& operator+=(int n) noexcept { return *this = *this + n; }
    /// Moves this position one code point on.
    ovStringPos& operator++() noexcept { return *this += 1; }

    /// Index difference a - b, wrapping when b is after a.
    friend uint64_t operator-(const ovStringPos& a, const ovStringPos& b) noexcept {
        return static_cast<uint64_t>(a.m_index - b.m_index);
    }

protected:
    ovStringPos(size_t index, const unsigned int* text) noexcept : m_index(index), m_text(text) {}
    friend class ovString;

private:
    size_t m_index;
    const unsigned int* m_text;
};

/// Immutable Unicode text: code points shared between copies, with UTF-8
/// and UTF-16 forms made on request. See the top of this file for its
/// states (null, failed, empty) and error contract.
class OV_API ovString {
public:
    /// The null string: invalid, empty, not failed.
    ovString() noexcept;
    /// A valid empty string.
    explicit ovString(ovStringEmpty);
    /// Wide text up to its first 0; null gives the null string. Bad text fails.
    ovString(ovStringL, const wchar_t* s);
    /// As the ovStringL form, with status.
    ovString(ovStringWcs, const wchar_t* s, int& status);
    /// UTF-8 up to the first 0 byte (texts of 2 GiB or more are not supported).
    /// A lone 0x80 byte reads as U+0080; any other bad sequence fails.
    ovString(ovStringUTF8, const char* s, int& status);
    /// n bytes of UTF-8, read as the form above reads text. A 0 byte among
    /// them fails (a string cannot hold U+0000); a null s gives the null string.
    ovString(ovStringUTF8, const char* s, size_t n, int& status);
    /// UTF-8 from a std::string_view (or a std::string), as the pointer and
    /// length form; an empty view gives a valid empty string.
    ovString(ovStringUTF8, std::string_view s, int& status);
    /// As above, without a status: test failed().
    ovString(ovStringUTF8, std::string_view s);
    /// UTF-16 up to the first 0 unit.
    ovString(ovStringUTF16, const ovChar16* s, int& status);
    /// n UTF-16 units; a lone surrogate fails.
    ovString(ovStringUTF16, const ovChar16* s, size_t n, int& status);
    /// Code points up to the first 0.
    ovString(ovStringUTF32, const unsigned int* s, int& status);
    /// n code points copied as they are: surrogates and values above U+10FFFF
    /// are kept. An embedded 0 cuts the text there. Status is always 0.
    ovString(ovStringUTF32, const unsigned int* s, size_t n, int& status);
    /// n bytes of little-endian UTF-16 (an odd last byte is a unit of its own).
    /// Status is set to 0 and stays 0 even when the text fails: test failed().
    ovString(ovStringUTF16LE, const unsigned char* bytes, size_t n, int& status);
    /// ASCII whose every byte lies in 0x01..0x7A ("{|}~" and DEL are refused on
    /// purpose); anything else fails with the unsafe-characters message. Null
    /// counts as safe and gives the null string.
    ovString(ovStringSafeASCII, const char* s, int& status);
    /// Shares the other's text. The copy is never failed and starts with no caches.
    ovString(const ovString& o);
    /// Deep copy with both caches built at once, so the copy can then be read
    /// from several threads. Never failed.
    ovString(utCopy, const ovString& o);
    /// Takes every field; `o` becomes the null string.
    ovString(ovString&& o) noexcept;
    ~ovString();

    /// Copy-and-swap: this drops its caches and is never failed afterwards.
    ovString& operator=(const ovString& o);
    /// Takes every field, failed flag included; `o` becomes the null string.
    ovString& operator=(ovString&& o) noexcept;
    /// Exchanges every field, caches and failed flag included.
    void swap(ovString& o) noexcept;

    /// An ASCII literal (what OVSTRING expands to). Decoded as UTF-8, so a bad
    /// literal shows as failed().
    static ovString literal(const char* ascii);

    /// 1 for the null string.
    int invalid() const noexcept { return m_buffer ? 0 : 1; }
    /// 1 when built from text that did not decode; it holds the message.
    int failed() const noexcept { return m_failed; }
    /// 1 when there are no code points (the null string is empty too).
    int empty() const noexcept { return m_length == 0 ? 1 : 0; }
    /// Code points before the terminator.
    size_t length() const noexcept { return m_length; }

    /// Conversions out. Pointers belong to the string and live until it is
    /// destroyed or assigned; null for the null string. Code points that are
    /// not Unicode scalar values are encoded bit by bit, never refused.
    const unsigned int* convert(ovStringUTF32) const noexcept { return internal_string(); }
    /// The UTF-8 form, NUL-terminated.
    const char* convert(ovStringUTF8) const;
    /// The UTF-8 form as a std::string of its own: "" for the null string, the
    /// message for a failed one.
    std::string to_utf8() const;
    /// The UTF-16 form, 0-terminated.
    const ovChar16* convert(ovStringUTF16) const;
    /// The platform's wide form: the UTF-16 cache on Windows, a UTF-32 cache on POSIX.
    const wchar_t* convert(ovStringWcs) const;
    /// Status 1 and the unsafe-characters message when any byte of the UTF-8
    /// form is outside 0x01..0x7A; the null utString for the null string.
    utString convert(ovStringSafeASCII, int& status);
    /// Writes the UTF-16 form as little-endian byte pairs, without BOM or
    /// terminator; returns the bytes written (0 for an empty or null string).
    size_t write(std::ostream& os, ovStringUTF16LE) const;

    /// The position of the first code point.
    ovStringPos begin() const noexcept { return ovStringPos(0, internal_string()); }
    /// The position just past the last code point.
    ovStringPos end() const noexcept { return ovStringPos(m_length, internal_string()); }
    /// p's index carried into this string, or end() when it lies beyond it.
    ovStringPos convert_pos(const ovString& other, const ovStringPos& p) const noexcept;

    /// First match of s in [from, to - len(s)]; `from` for an empty s; `to` when none.
    ovStringPos find_substring(const ovString& s) const noexcept;
    /// As above, searching [from, to - len(s)] only.
    ovStringPos find_substring(const ovString& s, ovStringPos from, ovStringPos to) const noexcept;
    /// Last match of s in the same range; `to` when none.
    ovStringPos find_last(const ovString& s) const noexcept;
    /// As above, searching [from, to - len(s)] only.
    ovStringPos find_last(const ovString& s, ovStringPos from, ovStringPos to) const noexcept;
    /// Left-to-right, non-overlapping replacement; never failed; null gives "".
    /// An empty `old` (which would match everywhere without advancing) gives a
    /// copy of this string's text unchanged.
    ovString replace_all(const ovString& old, const ovString& by) const;
    /// Slices by position. An empty (or null) string gives a valid empty
    /// string. Positions past the end are clamped to it, and a start after the
    /// stop gives an empty string.
    ovString left(ovStringPos p) const;
    /// The code points from p1 up to (not including) p2.
    ovString mid(ovStringPos p1, ovStringPos p2) const;
    /// The code points from p to the end.
    ovString right(ovStringPos p) const;
    /// 1 when s occurs at `at` (always for an empty s, never past the end).
    int matches(const ovString& s, const ovStringPos& at) const noexcept;
    /// 1 when s occurs at begin().
    int begins_with(const ovString& s) const noexcept;
    /// 1 when s occurs at end() minus its length.
    int ends_with(const ovString& s) const noexcept;
    /// First code point not in `set`; end() when all are; begin() for an empty string.
    ovStringPos first_non_matching_character(const ovString& set) const;

    /// Concatenation; valid (possibly empty) even from null operands; never failed.
    ovString operator+(const ovString& o) const;
    /// Appends o; as operator+.
    ovString& operator+=(const ovString& o);
    /// Both valid: same code points. Otherwise true only when both are null.
    /// The failed flag plays no part.
    bool operator==(const ovString& o) const noexcept;
    /// Not operator==.
    bool operator!=(const ovString& o) const noexcept { return !(*this == o); }

protected:
    /// Takes ownership of a new[] array ending in a 0 code point and shares it
    /// as it is, without copying; the text ends at its first 0. Null gives the
    /// null string.
    ovString(utPtrClaim, const unsigned int* p);

    /// A valid string with room for n code points, terminator stored, whose
    /// text a builder writes in place through `text` before sharing it. The
    /// text must hold no 0.
    static ovString with_room(size_t n, unsigned int*& text);
    /// Cuts a string fresh from with_room to its first n code points.
    static void shorten(ovString& s, size_t n) noexcept;

    const unsigned int* internal_string() const noexcept { return m_buffer.get(); }

    void init_null() noexcept;
    /// Fresh text of n code points plus terminator, already stored; returns where
    /// to write them.
    unsigned int* init_text(size_t n);
    void init(utPtrClaim, const unsigned int* p);
    void init_utf8(const char* p);
    void init_utf16(const ovChar16* p, size_t n);
    void init_utf32(const unsigned int* p, size_t n);
    void init_l(const wchar_t* p);
    void init_failed(const char* message);
    void move(ovString& from) noexcept;
    static size_t length_utf16(const ovChar16* p) noexcept;
    static size_t length_utf32(const unsigned int* p) noexcept;
    static int is_safe_ascii(const char* p) noexcept;
    static void copy(unsigned int* dst, const unsigned int* src, size_t n) noexcept;

private:
    friend class ovra_internal::TextBuilder; ///< the library's own builders
    void free_caches() noexcept;
    /// Code points [from, to), both clamped to the text; valid even when empty.
    ovString slice(size_t from, size_t to) const;

    ovStringText m_buffer;
    size_t m_length;
    int m_failed;
    mutable char* m_utf8;
    mutable ovChar16* m_utf16;
    /// POSIX only: the UTF-32 wchar_t form. Stays null on Windows, where the
    /// wide form is the UTF-16 cache.
    mutable wchar_t* m_wide;
};

/// Tab, line feed, carriage return and space: the usual white space set. A
/// reference to a string that is never destroyed, so it may be used from static
/// destructors at process exit.
extern OV_API const ovString& ovSTRING_SPACE_CHARS;

/// An ovString from a plain ASCII literal: OVSTRING("WOBBLE").
#define OVSTRING(x) ovString::literal(x)

/// 0 for the null string; otherwise the byte hash of the stored code points.
OV_API unsigned int co_hash(const ovString& s);

namespace ovOvra {

/// Selects the UTF-8 side of ConvertUTF's readers and writers.
enum ConvertUTF8 { CONVERT_UTF8 };
/// Selects the UTF-16 side of ConvertUTF's readers and writers.
enum ConvertUTF16 { CONVERT_UTF16 };

/// Exact converter between UTF-8, UTF-16 and UTF-32.
///
/// Every conversion is used twice: with a null `dst` (or `cap` 0) it returns
/// the output size in units including one terminator; with a buffer of that
/// size it converts and returns the units written. Lengths are input units
/// (bytes, 16-bit units, code points). A terminator is added unless the last
/// code read was 0. Bad input becomes "?" (not U+FFFD) and clears
/// `was_exact()`; so does a code point that does not fit the room left. Output
/// never passes `cap`; text that does not fit is cut and gets no terminator.
/// Units after the returned count but inside `cap` may be overwritten.
///
/// Deliberate: a lone 0x80 byte reads as U+0080 and stays exact; a run of
/// stray continuation bytes gives one "?"; UTF-32 input is not validated.
class OV_API ConvertUTF {
public:
    ConvertUTF() noexcept : m_exact(true) {}

    /// Converts n units of src into dst (or measures, when dst is null); see
    /// above.
    /// @{
    size_t utf8_to_utf16(const char* src, size_t n, ovChar16* dst, size_t cap) const;
    size_t utf16_to_utf8(const ovChar16* src, size_t n, char* dst, size_t cap) const;
    size_t utf8_to_utf32(const char* src, size_t n, unsigned int* dst, size_t cap) const;
    size_t utf32_to_utf8(const unsigned int* src, size_t n, char* dst, size_t cap) const;
    size_t utf16_to_utf32(const ovChar16* src, size_t n, unsigned int* dst, size_t cap) const;
    size_t utf32_to_utf16(const unsigned int* src, size_t n, ovChar16* dst, size_t cap) const;
    /// @}

    /// True when the last conversion met no bad input and lost nothing.
    bool was_exact() const noexcept { return m_exact; }

protected:
    unsigned int read_code(ConvertUTF8, const char*& p, const char* end) const;
    unsigned int read_code(ConvertUTF16, const ovChar16*& p, const ovChar16* end) const;
    size_t store_code(ConvertUTF8, unsigned int c, char** p, const char* end) const;
    size_t store_code(ConvertUTF16, unsigned int c, ovChar16** p, const ovChar16* end) const;
    static char charbits(unsigned int c, size_t shift, size_t bits) noexcept {
        return static_cast<char>((c >> shift) & ((1u << bits) - 1u));
    }
    static ovChar16 wcharbits(unsigned int c, size_t shift, size_t bits) noexcept {
        return static_cast<ovChar16>((c >> shift) & ((1u << bits) - 1u));
    }

private:
    mutable bool m_exact;
};

} // namespace ovOvra
