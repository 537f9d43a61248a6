/// @file
/// Encodings of text outside the library and the converters between them.
///
/// `ovIStringEncoding` says how narrow `char` text is encoded (utString, the C
/// runtime's multibyte form, a code page); `ovIStringOsEncoding` says how the
/// operating system's wide text is encoded. Each turns such text into an
/// ovString (`in`) and back (`out`). Converters chain the two.
///
/// Error contract: nothing throws for bad text. Every `in`, `out` and converter
/// sets `status` to 0 when fine and 1 on failure or loss; on failure the result
/// holds an English message in place of the text (see each class). A null text
/// pointer gives the null result (null ovString, null utString, null ovBuffer)
/// with status 0, except for ovStringCPEncoding, which reports it as a failed
/// conversion like any other text the code page cannot take.
///
/// Platforms: the OS's wide text is UTF-16 on Windows and UTF-32 on POSIX; the
/// chooser hands out the matching OS encoding. ovStringCPEncoding takes Windows
/// code page numbers on both (POSIX maps them to iconv's tables).
#pragma once

#include "co/coPrf.h"
#include "ovra/ovString.h"

#include <cstddef>

/// A shared, immutable copy of a 0-terminated text: the result of every
/// conversion to OS or UTF-16 form. Copies share one heap text and one plain
/// (not atomic) count, so copies of one buffer belong to one thread.
template <class T> class ovBuffer {
public:
    /// The null buffer: no text.
    ovBuffer() noexcept { init_null(); }
    /// A copy of s up to its first 0. Null s gives the null buffer.
    explicit ovBuffer(const T* s) {
        init_null();
        if (!s)
            return;
        size_t n = 0;
        while (s[n])
            ++n;
        m_text = new T[n + 1];
        for (size_t i = 0; i <= n; ++i)
            m_text[i] = s[i];
        m_length = n;
        m_count = new int(1);
        m_null = 0;
    }
    /// Shares o's text (one more count).
    ovBuffer(const ovBuffer& o) noexcept {
        init_null();
        move(o);
    }
    /// Shares o's text, dropping this one's share.
    ovBuffer& operator=(const ovBuffer& o) noexcept {
        if (this != &o)
            move(o);
        return *this;
    }
    ~ovBuffer() { release(); }

    /// The text, 0-terminated; null for the null buffer.
    const T* text() const noexcept { return m_text; }
    /// Units before the terminator; 0 for the null buffer.
    size_t length() const noexcept { return m_length; }
    /// 1 for the null buffer.
    int is_null() const noexcept { return m_null; }

protected:
    void init_null() noexcept {
        m_text = nullptr;
        m_length = 0;
        m_count = nullptr;
        m_null = 1;
    }
    /// Drops this value and shares the source's (the source keeps its share).
    void move(const ovBuffer& o) noexcept {
        release();
        m_text = o.m_text;
        m_length = o.m_length;
        m_count = o.m_count;
        m_null = o.m_null;
        if (!m_null)
            ++*m_count;
    }

private:
// GCC 12 and later cannot follow a shared count and warn that a count one
// copy may have freed is used by another; the counts make that impossible.
#if defined(__GNUC__) && !defined(__clang__) && __GNUC__ >= 12
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wuse-after-free"
#endif
    void release() noexcept {
        if (!m_null && --*m_count == 0) {
            delete[] m_text;
            delete m_count;
        }
        init_null();
    }
#if defined(__GNUC__) && !defined(__clang__) && __GNUC__ >= 12
#pragma GCC diagnostic pop
#endif

    T* m_text;
    size_t m_length;
    int* m_count;
    int m_null;
};

/// How narrow text is encoded. Implementations hold no mutable state.
class OV_API ovIStringEncoding {
public:
    /// Decodes narrow text; status 1 (and a failure text) when it cannot.
    virtual ovString in(const char* text, int& status) const = 0;
    /// Encodes s as narrow text; status 1 when something was lost or refused.
    virtual utString out(const ovString& s, int& status) const = 0;
    virtual ~ovIStringEncoding();
};

/// A shared owning handle to an encoding, for callers that keep encodings alive
/// by handle. The library's own interfaces take plain pointers and own nothing;
/// wrap a chooser's default with coPRF_EXTERN so the handle never deletes it.
typedef coPrf<const ovIStringEncoding> ovIStringEncodingcoPrf;

/// How the operating system's wide text is encoded.
class OV_API ovIStringOsEncoding {
public:
    /// Decodes the system's wide text; status 1 when it cannot.
    virtual ovString in(const wchar_t* text, int& status) const = 0;
    /// Encodes s as the system's wide text; status 1 on failure.
    virtual ovBuffer<wchar_t> out(const ovString& s, int& status) const = 0;
    virtual ~ovIStringOsEncoding();
};

/// UTF-8, decoded exactly: bad text gives a failed ovString (status 1).
class OV_API ovStringUTF8Encoding final : public ovIStringEncoding {
public:
    ovString in(const char* text, int& status) const override;
    utString out(const ovString& s, int& status) const override;
};

/// The C runtime's current locale, through mbstowcs and wcstombs. Any
/// character the locale cannot convert fails the whole text: `in` then gives an
/// ordinary (not failed) ovString "Failed to construct string from MB string."
/// and `out` gives "Failed to convert string to MB", both with status 1.
class OV_API ovStringCRTEncoding final : public ovIStringEncoding {
public:
    ovString in(const char* text, int& status) const override;
    utString out(const ovString& s, int& status) const override;
};

/// A Windows code page by number (1252, 1250, 1251, 437, 850, 932, 936, 949,
/// 950, 65001, ...). `in` refuses invalid bytes outright: status 1 and the
/// ordinary ovString "Failed to convert to ovString.". `out` replaces each
/// character the code page lacks by its default character "?" and sets status
/// 1 while still returning the text; when nothing can be converted it gives
/// "Failed to convert to 8-bit encoding." with status 1. An unknown code page
/// fails both ways. `out` to the UTF code pages (65000, 65001) always fails,
/// because the platform will not report default characters for them; use
/// ovStringUTF8Encoding for UTF-8.
/// Windows uses the system's tables (with their best-fit mappings); POSIX uses
/// iconv's, where bytes a code page leaves undefined are invalid and there is
/// no best fit.
class OV_API ovStringCPEncoding final : public ovIStringEncoding {
public:
    /// The code page with this number; an unknown one fails every conversion.
    explicit ovStringCPEncoding(int code_page) noexcept : m_code_page(code_page) {}
    ovString in(const char* text, int& status) const override;
    utString out(const ovString& s, int& status) const override;
    /// The code page's number.
    int code_page() const noexcept { return m_code_page; }

private:
    int m_code_page;
};

#if defined(_WIN32)
/// Windows' wide text: UTF-16, decoded exactly.
class OV_API ovStringUTF16OsEncoding final : public ovIStringOsEncoding {
public:
    ovString in(const wchar_t* text, int& status) const override;
    ovBuffer<wchar_t> out(const ovString& s, int& status) const override;
};
#else
/// POSIX wide text: UTF-32; surrogates and values above U+10FFFF fail.
class OV_API ovStringUTF32OsEncoding final : public ovIStringOsEncoding {
public:
    ovString in(const wchar_t* text, int& status) const override;
    ovBuffer<wchar_t> out(const ovString& s, int& status) const override;
};
#endif

/// The process-wide OS encoding, made on first use (thread-safe) and kept to
/// process exit. Never null; must not be deleted.
class OV_API ovStringOsEncodingChooser {
public:
    /// The process-wide OS encoding.
    const ovIStringOsEncoding* os_encoding() const;
};

/// The process-wide narrow encodings: UTF-8 for utString, the C runtime's
/// locale for multibyte text. Made on first use (thread-safe); never null.
class OV_API ovStringEncodingChooser {
public:
    /// UTF-8: the encoding of utString.
    const ovIStringEncoding* ut_encoding() const;
    /// The C runtime's current locale.
    const ovIStringEncoding* mb_encoding() const;
};

// Each converter borrows its encodings (null asks the chooser's default) and
// chains two steps: status starts at 0 and each step's nonzero status
// overwrites it. When the first step fails, the second converts the failed
// string's message, so the result holds the message and status is 1.

/// OS text <-> the platform's wide text.
class OV_API ovOsWcsStringConverter {
public:
    /// Borrows `os`; null asks for the default.
    explicit ovOsWcsStringConverter(const ovIStringOsEncoding* os = nullptr);
    /// OS text to the platform's wide text.
    ovBuffer<wchar_t> convert_TSTR_to_wcs(const wchar_t* tstr, int& status) const;
    /// The platform's wide text to OS text.
    ovBuffer<wchar_t> convert_wcs_to_TSTR(const wchar_t* wcs, int& status) const;

private:
    const ovIStringOsEncoding* m_os;
};

/// OS text <-> utString.
class OV_API ovOsUtStringConverter {
public:
    /// Borrows both encodings; null asks for the defaults.
    explicit ovOsUtStringConverter(const ovIStringEncoding* ut = nullptr,
                                   const ovIStringOsEncoding* os = nullptr);
    /// OS text to utString.
    utString convert_TSTR_to_utString(const wchar_t* tstr, int& status) const;
    /// utString to OS text.
    ovBuffer<wchar_t> convert_utString_to_TSTR(const utString& u, int& status) const;

private:
    const ovIStringEncoding* m_ut;
    const ovIStringOsEncoding* m_os;
};

/// OS text <-> UTF-16.
class OV_API ovOsUTF16StringConverter {
public:
    /// Borrows `os`; null asks for the default.
    explicit ovOsUTF16StringConverter(const ovIStringOsEncoding* os = nullptr);
    /// OS text to UTF-16.
    ovBuffer<ovChar16> convert_TSTR_to_UTF16(const wchar_t* tstr, int& status) const;
    /// UTF-16 to OS text.
    ovBuffer<wchar_t> convert_UTF16_to_TSTR(const ovChar16* utf16, int& status) const;

private:
    const ovIStringOsEncoding* m_os;
};

/// UTF-16 <-> utString.
class OV_API ovUTF16UtStringConverter {
public:
    /// Borrows `ut`; null asks for the default.
    explicit ovUTF16UtStringConverter(const ovIStringEncoding* ut = nullptr);
    /// UTF-16 to utString.
    utString convert_UTF16_to_utString(const ovChar16* utf16, int& status) const;
    /// utString to UTF-16.
    ovBuffer<ovChar16> convert_utString_to_UTF16(const utString& u, int& status) const;

private:
    const ovIStringEncoding* m_ut;
};

/// A narrow UTF-8 argument made ready for a wide platform call: build it, pass
/// `wcs16()` (or `wcs()`), let it go. Bad UTF-8 gives the failure message's text.
class OV_API ovMBSToWCSP {
public:
    /// Converts s (UTF-8; null allowed) at once.
    explicit ovMBSToWCSP(const char* s);
    /// UTF-16 form; null for a null argument. Valid while this object lives.
    const ovChar16* wcs16() const;
    /// The platform's wide form (the same as wcs16() on Windows).
    const wchar_t* wcs() const;

private:
    ovString m_text;
};
