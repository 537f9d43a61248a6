#include "ovra/ovStringReader.h"

#include "common/bits.h"
#include "strings/line_scan.h"
#include "strings/reader_stream.h"
#include "strings/text_builder.h"
#include "strings/utf_codec.h"

#include <climits>
#include <cstdint>
#include <cstring>
#include <memory>
#include <ostream>
#include <vector>

using ovra_internal::kEndOfStream;
using ovra_internal::line_feed_after_cr;
using ovra_internal::next_byte;
using ovra_internal::peek_byte;
using ovra_internal::read_mb_rest;

namespace ovra_internal {

void mark_stream(std::istream& is, std::ios_base::iostate bits) noexcept {
    try {
        is.setstate(bits);
    } catch (...) {
        // The state is set before the stream throws; readers report through
        // status and the stream's state only.
    }
}

} // namespace ovra_internal

namespace {

constexpr size_t kChunk = 256;

// Builds a token's result from the chunk and what earlier chunks left in
// `spill`. Valid even when empty. No code point is 0 (that ends the token),
// so the text is not cut short.
ovString token_text(const unsigned int* chunk, size_t count, std::vector<unsigned int>& spill) {
    int status;
    if (spill.empty())
        return ovString(ovSTRING_UTF32, chunk, count, status);
    spill.insert(spill.end(), chunk, chunk + count);
    return ovString(ovSTRING_UTF32, spill.data(), spill.size(), status);
}

// What ends a token, as one bit test per character: the end of stream (0), a
// character cut by the end, or a byte of the separators. read_token and
// is_separator both ask it.
class SeparatorSet {
public:
    explicit SeparatorSet(const char* separators) : m_bits{1, 0, 0, 0} {
        if (!separators)
            return;
        for (const char* p = separators; *p; ++p) {
            const unsigned int b = static_cast<unsigned char>(*p);
            m_bits[b >> 6] |= uint64_t(1) << (b & 63);
        }
    }

    bool contains(unsigned int c) const {
        if (c < 256)
            return (m_bits[c >> 6] >> (c & 63)) & 1;
        return c == ovREADER_CUT_CHARACTER;
    }

private:
    uint64_t m_bits[4];
};

// As the sentry of istream::get would, once per token rather than per byte.
void flush_tie(std::istream& is) noexcept {
    std::ostream* tie = is.good() ? is.tie() : nullptr;
    if (!tie)
        return;
    try {
        tie->flush();
    } catch (...) {
    }
}

// One little-endian unit: 1 when read, 0 at the end before its first byte,
// -1 when the end cuts it.
int read_unit(std::istream& is, unsigned int& unit) noexcept {
    const int lo = next_byte(is);
    if (lo == kEndOfStream)
        return 0;
    const int hi = next_byte(is);
    if (hi == kEndOfStream)
        return -1;
    unit = static_cast<unsigned int>(lo) | static_cast<unsigned int>(hi) << 8;
    return 1;
}

} // namespace

// ---- base ----------------------------------------------------------------

ovStringReader::~ovStringReader() = default;

ovString ovStringReader::read_line(std::istream& is, int& status) {
    return read_token(is, 0, "\n", status);
}

ovString ovStringReader::read_token(std::istream& is, int skip_leading, const char* separators,
                                    int& status) {
    status = 0;
    flush_tie(is);
    const SeparatorSet seps(separators);
    // Gathered in a fixed chunk that moves on to `spill` each time it fills:
    // a long line costs one copy per chunk, not an allocation per character.
    // The count stays a plain local so that it lives in a register across
    // the calls of read_char.
    unsigned int chunk[kChunk];
    size_t count = 0;
    std::vector<unsigned int> spill;
    if (skip_leading) {
        for (;;) {
            const unsigned int c = read_char(is, status);
            if (!seps.contains(c)) {
                if (status != 0)
                    return ovString();
                chunk[count++] = c;
                break;
            }
            if (c == ovREADER_END)
                return ovString();
        }
    }
    for (;;) {
        const unsigned int c = read_char(is, status);
        if (status != 0 || seps.contains(c))
            break;
        if (count == kChunk) {
            spill.insert(spill.end(), chunk, chunk + count);
            count = 0;
        }
        chunk[count++] = c;
    }
    return token_text(chunk, count, spill);
}

int ovStringReader::valid_separators(const char* separators) const {
    if (!separators)
        return 1;
    for (const char* p = separators; *p; ++p) {
        if (static_cast<unsigned char>(*p) > 0x7E)
            return 0;
    }
    return 1;
}

int ovStringReader::is_separator(unsigned int c, const char* separators) const {
    return SeparatorSet(separators).contains(c) ? 1 : 0;
}

// ---- UTF-8 ---------------------------------------------------------------

namespace {

// Everything but ASCII, out of line so that the ASCII path needs no frame.
OVRA_NOINLINE unsigned int read_utf8_rest(std::istream& is, int b, int& status) {
    if (b == kEndOfStream)
        return ovREADER_END;
    if (b == '\r')
        return ovra_internal::line_feed_after_cr(is);
    // The lead announces the length; a byte that starts nothing is refused
    // here, the rest is judged by the converter.
    const int length = ovra_internal::kUtf8.lead[b].announced + 1;
    if (length == 0) {
        status = 1;
        return ovREADER_BAD_CHARACTER;
    }
    char bytes[4] = {static_cast<char>(b), 0, 0, 0};
    for (int i = 1; i < length; ++i) {
        const int c = next_byte(is);
        if (c == kEndOfStream) {
            status = 1;
            return ovREADER_BAD_CHARACTER;
        }
        bytes[i] = static_cast<char>(c);
    }
    // The converter's rules decide what a malformed sequence is ("?"); it
    // may give up to one code point per byte, and only the first is ours.
    unsigned int codes[5];
    ovOvra::ConvertUTF().utf8_to_utf32(bytes, static_cast<size_t>(length), codes, 5);
    return codes[0];
}

// A line's code points as they are read: the first 512 on the stack (a frame that stays under a
// page), longer lines on the heap; copied once into the result.
class LineText {
public:
    LineText() noexcept : m_begin(m_stack), m_end(m_stack + kStack) {}
    LineText(const LineText&) = delete;
    LineText& operator=(const LineText&) = delete;

    unsigned int* begin() noexcept { return m_begin; }
    // Room for `need` more code points from w on; returns where w now is.
    unsigned int* room(unsigned int* w, size_t need) {
        return static_cast<size_t>(m_end - w) >= need ? w : grow(w, need);
    }
    // Code points that fit after w.
    size_t room_after(const unsigned int* w) const noexcept {
        return static_cast<size_t>(m_end - w);
    }
    // A valid string of the code points before w, empty when there are none.
    ovString text(const unsigned int* w) const {
        const size_t n = static_cast<size_t>(w - m_begin);
        unsigned int* t;
        ovString s = ovra_internal::TextBuilder::with_room(n, t);
        if (n)
            std::memcpy(t, m_begin, n * sizeof(unsigned int));
        return s;
    }

private:
    static const size_t kStack = 512;

    unsigned int* grow(unsigned int* w, size_t need) {
        const size_t used = static_cast<size_t>(w - m_begin);
        const size_t have = static_cast<size_t>(m_end - m_begin);
        const size_t cap = have * 2 > used + need ? have * 2 : used + need;
        std::unique_ptr<unsigned int[]> bigger(new unsigned int[cap]);
        std::memcpy(bigger.get(), m_begin, used * sizeof(unsigned int));
        m_heap = std::move(bigger);
        m_begin = m_heap.get();
        m_end = m_begin + cap;
        return m_begin + used;
    }

    unsigned int m_stack[kStack];
    unsigned int* m_begin;
    unsigned int* m_end;
    std::unique_ptr<unsigned int[]> m_heap;
};

// What ends a line besides a character read with a status: as is_separator
// with the separators "\n".
inline bool ends_line(unsigned int c) noexcept {
    return c == '\n' || c == ovREADER_END || c == ovREADER_CUT_CHARACTER;
}

// Bytes looked at per visit of the buffer: keeps every count an int for gbump.
constexpr size_t kWindow = size_t(1) << 30;

} // namespace

// The characters read_char would give, taken from the buffer in place while
// it holds them: sixteen plain bytes at a time, a multibyte character whole
// when all its bytes are there. Whatever needs the stream itself (an empty
// buffer, a character or CR LF cut by the buffer's end) goes through
// read_char, so the stream sees the same calls in the same state.
ovString ovStringReaderUTF8::read_line(std::istream& is, int& status) {
    status = 0;
    flush_tie(is);
    LineText line;
    unsigned int* w = line.begin();
    for (;;) {
        std::streambuf* const buf = is.rdstate() == std::ios_base::goodbit ? is.rdbuf() : nullptr;
        const char* const begin = buf ? ovra_internal::GetArea::begin(buf) : nullptr;
        const char* end = buf ? ovra_internal::GetArea::end(buf) : nullptr;
        if (begin == end) { // also for a stream that is not good
            const unsigned int c = read_char(is, status);
            if (status != 0 || ends_line(c))
                break;
            w = line.room(w, 1);
            *w++ = c;
            continue;
        }
        if (static_cast<size_t>(end - begin) > kWindow)
            end = begin + kWindow;
        const unsigned char* p = reinterpret_cast<const unsigned char*>(begin);
        const unsigned char* const e = reinterpret_cast<const unsigned char*>(end);
        enum { kMore, kDone, kCut } how = kMore; // kCut: a character or CR LF runs past e
        while (how == kMore && p < e) {
            // Each byte gives at most one code point: up to `safe` there is
            // room for a whole block after every character.
            w = line.room(w, 17);
            const size_t ahead = line.room_after(w) - 16;
            const unsigned char* const safe = static_cast<size_t>(e - p) > ahead ? p + ahead : e;
            while (p < safe) {
                if (e - p >= 16) {
                    const unsigned stop = ovra_internal::widen16(p, w);
                    if (!stop) {
                        p += 16;
                        w += 16;
                        continue;
                    }
                    const unsigned k = ovra_internal::lowest_bit64(stop);
                    p += k;
                    w += k;
                } else if (ovra_internal::is_plain_line_byte(*p)) {
                    *w++ = *p++;
                    continue;
                }
                const unsigned int b = *p;
                if (b >= 0x80) {
                    if (e - p >= 4) {
                        unsigned announced;
                        const unsigned int c = ovra_internal::well_formed_at(p, announced);
                        if (c) {
                            p += announced;
                            *w++ = c;
                            continue;
                        }
                    }
                    const int length = ovra_internal::kUtf8.lead[b].announced + 1;
                    if (length == 0) { // starts nothing
                        ++p;
                        status = 1;
                        how = kDone;
                        break;
                    }
                    if (e - p < length) {
                        how = kCut;
                        break;
                    }
                    // The converter's own reading of exactly the announced bytes,
                    // as read_char decodes them.
                    const char* q = reinterpret_cast<const char*>(p);
                    bool exact;
                    const unsigned int c = ovra_internal::Utf8::read(q, q + length, exact);
                    p += length;
                    if (ends_line(c)) {
                        how = kDone;
                        break;
                    }
                    *w++ = c;
                    continue;
                }
                if (b == '\r') {
                    if (e - p < 2) {
                        how = kCut;
                        break;
                    }
                    p += p[1] == '\n' ? 2 : 1;
                } else {
                    ++p; // LF, or NUL, which reads as the end
                }
                how = kDone;
                break;
            }
        }
        ovra_internal::GetArea::take(
            buf, static_cast<size_t>(p - reinterpret_cast<const unsigned char*>(begin)));
        if (how == kDone)
            break;
        if (how == kCut) {
            const unsigned int c = read_char(is, status);
            if (status != 0 || ends_line(c))
                break;
            w = line.room(w, 1);
            *w++ = c;
        }
    }
    return line.text(w);
}

unsigned int ovStringReaderUTF8::read_char(std::istream& is, int& status) {
    status = 0;
    const int b = next_byte(is);
    // ASCII decodes to itself; the end of stream (-1) is not taken here.
    if (static_cast<unsigned int>(b) < 0x80u && b != '\r')
        return static_cast<unsigned int>(b);
    return read_utf8_rest(is, b, status);
}

// ---- UTF-16LE ------------------------------------------------------------

unsigned int ovStringReaderUTF16LE::read_char(std::istream& is, int& status) {
    status = 0;
    unsigned int unit = 0;
    const int got = read_unit(is, unit);
    if (got == 0)
        return ovREADER_END;
    if (got < 0) {
        status = 1;
        return ovREADER_BAD_CHARACTER;
    }
    if (unit == 0x0D) {
        // Only the low byte is looked at: CR followed by any unit ending in
        // 0x0A is taken as CR LF.
        if (peek_byte(is) == 0x0A && read_unit(is, unit) != 1) {
            status = 1;
            return ovREADER_BAD_CHARACTER;
        }
        return '\n';
    }
    if (unit < 0xD800 || unit > 0xDFFF) // decodes to itself
        return unit;
    ovChar16 units[2] = {static_cast<ovChar16>(unit), 0};
    size_t n = 1;
    if (unit <= 0xDBFF) {
        unsigned int low = 0;
        if (read_unit(is, low) != 1) {
            status = 1;
            return ovREADER_BAD_CHARACTER;
        }
        units[1] = static_cast<ovChar16>(low);
        n = 2;
    }
    unsigned int codes[3];
    ovOvra::ConvertUTF().utf16_to_utf32(units, n, codes, 3);
    return codes[0];
}

unsigned int ovStringReaderMB::read_char(std::istream& is, int& status) {
    status = 0;
    const int b = next_byte(is);
    if (b == kEndOfStream)
        return ovREADER_END;
    if (b == '\r')
        return line_feed_after_cr(is);
    return read_mb_rest(is, b, status);
}
