#include "ovra/ovStringReader.h"

#include "common/bits.h"
#include "strings/reader_stream.h"
#include "strings/utf_codec.h"

#include <cstdint>
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

} // namespace

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
