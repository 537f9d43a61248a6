// utString: a small, nullable string of bytes that either owns its characters or
// refers to a literal. The null state (no text) is distinct from "" and is what a null
// source pointer gives; no member ever crashes on it. Allocation failure throws
// std::bad_alloc from the copying constructors only.
#ifndef UT_STRING_H
#define UT_STRING_H

#include "ut/utExport.h"

#include <cstddef>

enum utCopy { utCOPY };            // copy the characters
enum utDeepCopy { utDEEP_COPY };   // always deep copy, even of a literal
enum utPtrClaim { utPTR_CLAIM };   // take ownership of a new[] array
enum utStringLit { utSTRING_LIT }; // refer to a literal without copying

class UT_API utString {
public:
    utString() noexcept;                           // null state
    utString(const char* s);                       // copies s; null s gives the null state
    utString(utCopy, const char* s);               // copies s; null gives null
    utString(utStringLit, const char* s) noexcept; // refers to s (must outlive: a literal)
    utString(utPtrClaim, char* s) noexcept;        // owns s, allocated with new[]; null gives null
    utString(const utString& o);                   // owned: deep copy; literal: shares the pointer
    utString(utDeepCopy, const utString& o);       // always deep copy
    utString(utString&& o) noexcept;               // o becomes null
    utString& operator=(const utString& o);        // as the copy constructor; self-safe
    utString& operator=(utString&& o) noexcept;    // o becomes null; self-safe
    ~utString();                                   // frees owned text

    const char* c_str() const noexcept; // the text; null in the null state
    size_t length() const noexcept;     // bytes before the terminator; 0 when null
    bool is_null() const noexcept;      // true in the null state
    bool empty() const noexcept;        // null or ""
    void swap(utString& o) noexcept;    // exchanges contents and ownership

    // Position of the first byte c at or after `from`; npos when there is none.
    size_t find(char c, size_t from = 0) const noexcept;
    enum : size_t { npos = static_cast<size_t>(-1) }; // an enumerator: nothing to import

    // A writable buffer of length() bytes plus the terminator, owned by this string
    // alone (text referred to as a literal is copied first); null in the null state.
    char* modify();

    // Drops every trailing byte that occurs in `chars`; a null `chars` removes nothing.
    void remove_trailing_chars(const char* chars);

    // A new owned string of up to len bytes from pos; both are clamped to the
    // text, so any values are safe. The null state gives the null state.
    utString substr(size_t pos, size_t len = static_cast<size_t>(-1)) const;

    // Reads the whole text as a decimal number ("12.9", "-4", "1e3"; spaces
    // around it allowed; '.' is the decimal point whatever the locale). False,
    // with `value` untouched, for null, empty, partial or out-of-range text.
    bool parse(double& value) const;

private:
    const char* m_str;
    size_t m_len;
    bool m_owned;
};

// null==null; null != ""; otherwise byte equality.
UT_API bool operator==(const utString& a, const utString& b) noexcept;
// Negation of operator==.
UT_API bool operator!=(const utString& a, const utString& b) noexcept;
// As above against narrow text, without copying it; a null pointer is the null state.
UT_API bool operator==(const utString& a, const char* b) noexcept;
UT_API bool operator==(const char* a, const utString& b) noexcept;
UT_API bool operator!=(const utString& a, const char* b) noexcept;
UT_API bool operator!=(const char* a, const utString& b) noexcept;

#endif // UT_STRING_H
