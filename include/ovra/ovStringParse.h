/// @file
/// Parsing numbers and plain-ASCII runs out of an ovString.
///
/// Integer and double parsers sit behind two small interfaces so that callers
/// choose between the C runtime's locale-aware conversions and locale-free
/// parsing by hand; ovStringParser bundles one of each. Every parse returns a
/// result holding the text parsed, a success flag, the value, and the position
/// where parsing stopped, so the caller can go on with `remainder()`.
///
/// Error contract: parsers never throw and never report a message. Failure is
/// success 0 with the position where parsing stopped; success may leave a
/// remainder (trailing text is not an error). A null ovString parses as the
/// empty text. A failed ovString is parsed as the message text it holds.
///
/// Positions count code points on every platform, also for the locale parsers
/// (whose C runtime counts wide units): the two agree because no parser ever
/// consumes a character above U+FFFF.
#pragma once

#include "co/coPrf.h"
#include "ovra/ovExport.h"
#include "ovra/ovString.h"
#include "ut/utString.h"

/// What every parse result holds: the text, success, and where parsing stopped.
class OV_API ovStringParseResultBase {
public:
    /// A result for `original`: success, and where in it parsing stopped.
    ovStringParseResultBase(const ovString& original, int success, const ovStringPos& position);

    /// A copy of the whole text that was parsed.
    ovString original() const { return m_original; }
    /// 1 when a value was read, else 0.
    int success() const noexcept { return m_success; }
    /// Where parsing stopped, in original().
    ovStringPos position() const noexcept { return m_position; }
    /// The text from position() on: what the parse did not consume.
    ovString remainder() const { return m_original.right(m_position); }

private:
    ovString m_original;
    int m_success;
    ovStringPos m_position;
};

/// An integer parse.
class OV_API ovStringParseIntResult : public ovStringParseResultBase {
public:
    /// A result holding `result` as the value read.
    ovStringParseIntResult(const ovString& original, int success, int result,
                           const ovStringPos& position);
    /// The value read (0 when nothing was).
    int result() const noexcept { return m_result; }

private:
    int m_result;
};

/// A double parse.
class OV_API ovStringParseDoubleResult : public ovStringParseResultBase {
public:
    /// A result holding `result` as the value read.
    ovStringParseDoubleResult(const ovString& original, int success, double result,
                              const ovStringPos& position);
    /// The value read (0 when nothing was).
    double result() const noexcept { return m_result; }

private:
    double m_result;
};

/// A leading ASCII run; always successful.
class OV_API ovStringParseAsciiResult : public ovStringParseResultBase {
public:
    /// A result holding the run `ascii`; always a success.
    ovStringParseAsciiResult(const ovString& original, const utString& ascii,
                             const ovStringPos& position);
    /// The run as narrow text ("" when the run is empty).
    utString ascii() const { return m_ascii; }

private:
    utString m_ascii;
};

/// Reads an int from the start of a text.
class OV_API ovIStringToIntParser {
public:
    /// Reads an int from the start of s.
    virtual ovStringParseIntResult parse(const ovString& s) const = 0;
    virtual ~ovIStringToIntParser();
};

/// Reads a double from the start of a text.
class OV_API ovIStringToDoubleParser {
public:
    /// Reads a double from the start of s.
    virtual ovStringParseDoubleResult parse(const ovString& s) const = 0;
    virtual ~ovIStringToDoubleParser();
};

/// A shared handle to an integer parser.
typedef coPrf<ovIStringToIntParser> ovIStringToIntParsercoPrf;
/// A shared handle to a double parser.
typedef coPrf<ovIStringToDoubleParser> ovIStringToDoubleParsercoPrf;

/// The C runtime's wcstol, base 10, in the current locale: it skips the
/// runtime's white space and takes a sign. Values beyond int are clamped to
/// INT_MIN / INT_MAX and count as a success (on Windows long is int-sized and
/// wcstol clamps there itself; on POSIX long is wider and the clamp is ours, so
/// both give the same value).
class OV_API ovStringLocaleIntParser final : public ovIStringToIntParser {
public:
    ovStringParseIntResult parse(const ovString& s) const override;
};

/// Locale-free: skips tab, line feed, carriage return and space, takes one
/// optional sign, then decimal digits. Overflow wraps modulo 2^32, so
/// 2147483648 reads as INT_MIN. The position counts the sign even when no
/// digit follows it (a lone "-" fails at position 1).
class OV_API ovStringHandIntParser final : public ovIStringToIntParser {
public:
    ovStringParseIntResult parse(const ovString& s) const override;
};

/// The C runtime's wcstod in the current locale: its decimal separator,
/// exponents and special values. Which special forms (inf, nan, hexadecimal)
/// are read is the runtime's own and differs between platforms.
class OV_API ovStringLocaleDoubleParser final : public ovIStringToDoubleParser {
public:
    ovStringParseDoubleResult parse(const ovString& s) const override;
};

/// Locale-free: white space and sign as the hand integer parser, digits, then
/// "," or "." as the decimal separator and more digits. No exponent ("1e5"
/// reads 1 and stops at "e"). Success needs a digit on either side of the
/// separator (".5" is 0.5, "." fails); the position counts the sign and the
/// separator even on failure.
class OV_API ovStringSimpleDoubleParser final : public ovIStringToDoubleParser {
public:
    ovStringParseDoubleResult parse(const ovString& s) const override;
};

/// One integer parser and one double parser, shared between copies.
class OV_API ovStringParser {
public:
    /// Shares both parsers (either handle may be empty).
    ovStringParser(const ovIStringToIntParsercoPrf& ints,
                   const ovIStringToDoubleParsercoPrf& doubles);

    /// Forwarded to the held parsers. An empty handle gives a failed result at
    /// the start of the text.
    ovStringParseIntResult parse_int(const ovString& s) const;
    /// Forwarded to the double parser.
    ovStringParseDoubleResult parse_double(const ovString& s) const;

private:
    ovIStringToIntParsercoPrf m_ints;
    ovIStringToDoubleParsercoPrf m_doubles;
};

/// Splits off the leading run of code points U+0001..U+007F. No white space is
/// skipped; an empty run is still a success.
class OV_API ovStringAsciiParser {
public:
    /// The leading ASCII run of s and the rest.
    ovStringParseAsciiResult parse(const ovString& s) const;
};
