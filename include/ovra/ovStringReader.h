/// @file
/// Stream readers: read lines and separator-delimited tokens as ovStrings
/// from a std::istream of bytes in a chosen encoding, one code point at a
/// time, turning every line ending (CR LF, lone CR, LF) into a line feed.
///
/// Error contract: readers do not throw for what the stream does (not even for
/// a stream whose exceptions() mask is set, nor when its buffer throws); as
/// everywhere in the library, allocation failure of the result propagates as
/// std::bad_alloc. Problems show in
/// `status` (1) and in the token ending before the character that could not be
/// read; that character is consumed and not returned. End of stream is told by
/// the stream's own state: reading past the end sets eofbit and failbit as
/// istream::get does, and a stream that is not good() reads as ended.
///
/// Members:
///   read_line(is, status)       - the next line without its line ending.
///   read_token(is, skip, seps, status)
///                               - the next token ended by a byte of seps.
///   valid_separators(seps)      - 1 when every byte of seps is 0x01..0x7E.
///   read_char(is, status)       - (protected) the next code point; see below.
///   is_separator(c, seps)       - (protected) 1 when c ends a token.
///
/// What read_char returns: a code point with status 0; 0 at end of stream
/// (status 0); ovREADER_BAD_CHARACTER (status 1) for a character that cannot be
/// read or decoded; ovREADER_CUT_CHARACTER (status 1) when a multibyte
/// character is cut by the end of the stream (ovStringReaderMB only). A NUL
/// byte in the stream reads as 0 and therefore ends the token like the end of
/// the stream does.
#pragma once

#include "ovra/ovExport.h"
#include "ovra/ovString.h"

#include <iosfwd>

/// Special values of read_char.
enum ovStringReaderCode : unsigned int {
    ovREADER_END = 0u,                    ///< end of stream
    ovREADER_BAD_CHARACTER = 0xFFFFFFFEu, ///< cannot be read or decoded
    ovREADER_CUT_CHARACTER = 0xFFFFFFFFu  ///< multibyte character cut by the end
};

/// Base of the readers. Derive from it and implement read_char to read another
/// encoding; read_line and read_token then work unchanged.
class OV_API ovStringReader {
public:
    /// read_token(is, 0, "\n", status).
    virtual ovString read_line(std::istream& is, int& status);
    /// Reads up to, and consumes, the first separator (a byte of `separators`,
    /// compared as unsigned values, or the end of the stream); the separator is
    /// not part of the token. With `skip_leading` nonzero, separators before the
    /// token are skipped first, and reaching the end while skipping gives the
    /// null string. Otherwise a token that ends at once is a valid empty string.
    /// A code point whose reading set status to 1 ends the token; the text read
    /// before it is returned and status stays 1 (while skipping, the result is
    /// then the null string). A null `separators` is the empty set: only the
    /// end of stream ends the token.
    virtual ovString read_token(std::istream& is, int skip_leading, const char* separators,
                                int& status);
    virtual ~ovStringReader();

    /// 1 when every byte is 0x01..0x7E (so also for "" and for null); 0 when a
    /// byte is 0x7F or above. read_token does not ask it.
    int valid_separators(const char* separators) const;

protected:
    /// The next code point; sets status (see the top of this file).
    virtual unsigned int read_char(std::istream& is, int& status) = 0;
    /// 1 when c is 0 (end of stream), ovREADER_CUT_CHARACTER, or the value of a
    /// byte of `separators` (null is the empty set); else 0.
    int is_separator(unsigned int c, const char* separators) const;
};

/// The C runtime's current locale, through mbrtowc with a state of its own
/// (safe on several threads at once). Windows reads a second byte
/// after a lead byte of the locale's code page (ov_lead_byte); POSIX keeps
/// reading while mbrtowc says the character is incomplete, up to MB_CUR_MAX
/// bytes, so UTF-8 locales are read too. A character cut by the end of the
/// stream gives ovREADER_CUT_CHARACTER; bytes the locale rejects give
/// ovREADER_BAD_CHARACTER (the "C" locale rejects bytes above 0x7F on POSIX,
/// while Windows' takes them as Latin-1). Windows' wide characters are single
/// UTF-16 units, so a character outside the BMP, or a lone surrogate, reads as
/// "?". A CR is turned into a line feed as by the UTF-8 reader.
class OV_API ovStringReaderMB final : public ovStringReader {
protected:
    unsigned int read_char(std::istream& is, int& status) override;
};

/// UTF-8. A stray continuation byte (0x80 included) and a lead byte of 0xF8 to
/// 0xFF give ovREADER_BAD_CHARACTER, as does a character cut by the end of the
/// stream. Otherwise the bytes the lead byte announces are taken whatever they
/// are, and a malformed sequence (overlong, surrogate, above U+10FFFF, a byte
/// that does not continue it) reads as "?" with status 0.
class OV_API ovStringReaderUTF8 final : public ovStringReader {
public:
    /// The same line, status and stream state as read_token(is, 0, "\n",
    /// status), taken from the stream's buffer a run of bytes at a time.
    ovString read_line(std::istream& is, int& status) override;

protected:
    unsigned int read_char(std::istream& is, int& status) override;
};

/// Little-endian UTF-16. No byte-order mark is recognised: a leading U+FEFF is
/// returned as a character. A high surrogate takes the next unit whatever it
/// is; an unpaired surrogate reads as "?" (status 0). An odd last byte, or a
/// pair cut by the end, gives ovREADER_BAD_CHARACTER. After a CR, a unit whose
/// low byte is 0x0A is taken as the LF of CR LF, whatever its high byte.
class OV_API ovStringReaderUTF16LE final : public ovStringReader {
protected:
    unsigned int read_char(std::istream& is, int& status) override;
};
