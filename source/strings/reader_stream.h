// Internal: byte access for the stream readers. Each read_char takes bytes
// straight from the stream's buffer, with the effect on the stream's state
// that istream::get and istream::peek would have, but without a sentry per
// byte. Nothing here throws.
#pragma once

#include "ovra/ovStringReader.h"

#include <istream>
#include <streambuf>
#include <string>

namespace ovra_internal {

constexpr int kEndOfStream = std::char_traits<char>::eof();

// Sets state bits on the stream; a failure exception it asks for is dropped.
void mark_stream(std::istream& is, std::ios_base::iostate bits) noexcept;

// The next byte (0..255), or kEndOfStream: as get(), a stream that is not
// good() gets failbit, and reaching the end sets eofbit and failbit. A
// throwing buffer sets badbit.
inline int next_byte(std::istream& is) noexcept {
    if (is.rdstate() != std::ios_base::goodbit) {
        mark_stream(is, std::ios_base::failbit);
        return kEndOfStream;
    }
    int c;
    try {
        c = is.rdbuf()->sbumpc(); // good() implies a buffer
    } catch (...) {
        mark_stream(is, std::ios_base::badbit);
        return kEndOfStream;
    }
    if (c == kEndOfStream)
        mark_stream(is, std::ios_base::eofbit | std::ios_base::failbit);
    return c;
}

// The next byte without taking it: as peek(), the end sets eofbit only.
inline int peek_byte(std::istream& is) noexcept {
    if (is.rdstate() != std::ios_base::goodbit)
        return kEndOfStream;
    int c;
    try {
        c = is.rdbuf()->sgetc();
    } catch (...) {
        mark_stream(is, std::ios_base::badbit);
        return kEndOfStream;
    }
    if (c == kEndOfStream)
        mark_stream(is, std::ios_base::eofbit);
    return c;
}

// After a CR read by a byte-wide reader: takes a following LF, so that CR LF
// and a lone CR both give one line feed.
inline unsigned int line_feed_after_cr(std::istream& is) noexcept {
    if (peek_byte(is) == '\n')
        next_byte(is);
    return '\n';
}

// The bytes a stream buffer holds ready, read and taken in place: taking a
// byte from [begin, end) and moving past it is what sbumpc does, without a
// virtual call. The protected members are reached through member pointers
// named in a derived class, the one way the language allows on a buffer of any
// type.
class GetArea : public std::streambuf {
public:
    static const char* begin(std::streambuf* b) noexcept { return (b->*&GetArea::gptr)(); }
    static const char* end(std::streambuf* b) noexcept { return (b->*&GetArea::egptr)(); }
    // Takes n bytes of [begin, end); n must not exceed INT_MAX.
    static void take(std::streambuf* b, size_t n) noexcept {
        (b->*&GetArea::gbump)(static_cast<int>(n));
    }
};

// The rest of a multibyte character of the runtime's locale whose first byte
// (not CR, not the end) is `first`; one definition per platform.
unsigned int read_mb_rest(std::istream& is, int first, int& status);

} // namespace ovra_internal
