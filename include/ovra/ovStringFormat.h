/// @file
/// Formatting: ovStringFormatter, ovStringFormatSpecifier, ovStringBuilder.
///
/// The library's own small printf-like language. Every digit is made by hand,
/// so the output does not depend on the C runtime or its locale.
///
///     ovStringFormatter f;
///     ovString s = f.format(OVSTRING("%d items, %s, %8.3f, %x"), 42, name, 3.14159, 0xBEEFu);
///
/// The language
/// ------------
/// A specifier is "%", then optionally "n$" (argument number n >= 1), then
/// optionally width digits (a leading "0" pads with "0" instead of blanks),
/// then optionally "." and precision digits, then the conversion. There are no
/// other flags ("-", "+", " ", "#"), no "*" and no length modifiers. The scan
/// for a specifier stops at the first of "sduxXfeEgG%" after the "%"; the
/// character reached after the number parts is the conversion, so "%-5d",
/// "%ld", "%+d" have the conversions "-", "l", "+" and render the error text.
///
/// What each conversion takes, in the type-safe `format(fmt, args...)`:
///
///     "%%"                 nothing; renders "%" (width and precision ignored)
///     "%s"                 an ovString (a null ovString renders as ""); right
///                          aligned; precision keeps the first n code points and
///                          the width measures what is kept ("%5.1s" of "ab" is
///                          "    a"); "0" pads strings with zeros too
///     "%d"                 any integer (int, long, char, bool, enums, ...);
///                          signed decimal of the argument's own width (an
///                          unsigned argument is read as the signed value of the
///                          same width, as printf does)
///     "%u"                 any integer; unsigned decimal at the argument's width
///                          (-1 as int gives 4294967295)
///     "%x", "%X"           any integer; hexadecimal at the argument's width, no
///                          "0x" prefix, lower or upper case digits
///     "%f" "%e" "%E"       a double or float; an integer is converted to double
///     "%g" "%G"            by value
///     anything else        nothing: renders "Error formatting string" and takes
///                          no argument, so later specifiers take the arguments
///                          meant for earlier ones (deliberate)
///
/// 8-bit to 32-bit integers are taken as 32-bit values, 64-bit ones (long long,
/// and long where it is 64-bit) keep all 64 bits: "%d" of 10000000000LL gives
/// 10000000000 and "%x" of -1L gives 16 "f"s on Linux, 8 on Windows.
///
/// Deliberate behaviour of the rendering rules, kept as it is:
/// - Widths count the sign: "%6d" of -42 is "   -42", "%06d" is "-00042".
///   Zero padding also applies with a precision ("%06.3d" of 5 is "000005"),
///   and "%.0d" of 0 is "0".
/// - Doubles take their digit count from floor(log10(|v|)) before rounding: a
///   rounding carry into a new leading digit is dropped ("%.0f" of 9.6 is "0",
///   "%e" of 9.9999999 is "0.000000e+00"). Exponents are written with exactly
///   two digits ("%e" of 1e123 is "1.000000e+23"). -0.0 has no sign.
/// - "%%" counts as one specifier; the number of specifiers counted decides
///   the number of argument slots, so an odd format such as "%5%d" (where "%5%"
///   is one specifier) leaves a slot that renders the error text:
///   "%dError formatting string".
/// - Positional mode is decided by the first specifier alone. In positional
///   mode the numbered specifiers take their arguments in the order of their
///   numbers ("%2$s %1$s" with A, B gives "B A").
///
/// Safe behaviour where the rendering rules say nothing (our choices):
/// - Fewer arguments than specifiers: a specifier that finds no argument left
///   renders "Error formatting string". Extra arguments are ignored.
/// - An argument of the wrong kind ("%d" given an ovString, "%s" given a
///   number, "%d"/"%u"/"%x" given a double): the argument is taken (so the
///   following specifiers stay in step) and "Error formatting string" renders.
/// - A format that ends inside a specifier ("abc%", "%5", "%1$"): the scan
///   stops at the end; the specifier renders "Error formatting string" (not
///   its text, so the mistake shows) and takes no argument.
/// - Positional mode: "%%" renders "%" in its place. A specifier without a
///   number, and one whose number is larger than the number of specifiers
///   (or 0), renders "Error formatting string" in its place and takes no
///   argument. Numbers only order the reading: a gap in the numbering takes no
///   argument, so with "%1$s %% %3$s" and A, B the "%3$s" renders B. When two
///   specifiers have the same number, the later one takes the argument and
///   the earlier renders "Error formatting string".
/// - Non-positional mode (first specifier without a number): a later numbered
///   specifier renders "Error formatting string" in its place and takes no
///   argument. Mixing the two kinds is not supported, and this way no slot is
///   ever read with another specifier's kind of argument (which, through a
///   va_list, would misread memory).
/// - Widths, precisions and argument numbers above 100000 count as 100000.
/// - Doubles: infinities render "inf" / "-inf", NaN "nan" ("INF", "NAN" for
///   "%E" and "%G"), padded with blanks to the width. When |v| x 10^precision
///   overflows for "%f", the digits after the point are written as 0 and the
///   integer digits come from |v|; any other digit that cannot be computed is
///   written as 0.
/// - A null format gives a valid empty string; a failed format is formatted
///   as the message text it holds. Results are never failed.
/// - A null ovString appended to a builder is a piece that counts as empty.
///
/// Errors: nothing throws except allocation failure (std::bad_alloc). The one
/// message is "Error formatting string", in place of a specifier's output.
///
/// Threads: no shared state; formatting only reads its arguments' code points.
#pragma once

#include "ovra/ovExport.h"
#include "ovra/ovString.h"

#include "co/coArrays.h"

#include <cstdarg>
#include <cstdint>
#include <type_traits>

/// A paged array of strings: the builder's pieces.
typedef coPageArr<ovString> ovStringcoPageArr;

/// The kinds of argument a format can be given.
enum ovStringFormatArgKind {
    ovFORMAT_ARG_INT,      ///< 8- to 32-bit signed integers, bool excluded
    ovFORMAT_ARG_UNSIGNED, ///< 8- to 32-bit unsigned integers and bool
    ovFORMAT_ARG_INT64,    ///< 64-bit signed integers
    ovFORMAT_ARG_UINT64,   ///< 64-bit unsigned integers
    ovFORMAT_ARG_DOUBLE,   ///< float, double, long double (as double)
    ovFORMAT_ARG_STRING    ///< an ovString, held by pointer
};

/// One argument: a small tagged value. Integers are kept as their 64-bit two's
/// complement bits (sign-extended). A string argument points at the caller's
/// ovString, which must outlive the argument: `format` packs its arguments for
/// the duration of the call only. Pointers are refused at compile time (pass
/// an ovString, not a char*). A temporary ovString is fine as an argument of
/// `format`, since it lives until the call returns; only building a lasting
/// ovStringFormatArg from a temporary is refused.
class ovStringFormatArg {
public:
    ovStringFormatArg() noexcept : m_kind(ovFORMAT_ARG_INT), m_bits(0), m_double(0), m_string() {}

    /// Any integer type, bool and char included.
    template <class T, typename std::enable_if<std::is_integral<T>::value, int>::type = 0>
    ovStringFormatArg(T v) noexcept
        : m_kind(integer_kind<T>()), m_bits(bits_of(v)), m_double(0), m_string() {}

    /// An enumerator, as its underlying integer.
    template <class T, typename std::enable_if<std::is_enum<T>::value, int>::type = 0>
    ovStringFormatArg(T v) noexcept
        : ovStringFormatArg(static_cast<typename std::underlying_type<T>::type>(v)) {}

    /// float, double or long double, kept as a double.
    template <class T, typename std::enable_if<std::is_floating_point<T>::value, int>::type = 0>
    ovStringFormatArg(T v) noexcept
        : m_kind(ovFORMAT_ARG_DOUBLE), m_bits(0), m_double(static_cast<double>(v)), m_string() {}

    /// A string, held by pointer: s must outlive the argument.
    ovStringFormatArg(const ovString& s) noexcept
        : m_kind(ovFORMAT_ARG_STRING), m_bits(0), m_double(0), m_string(&s) {}
    ovStringFormatArg(const ovString&&) = delete;
    template <class T> ovStringFormatArg(const T*) = delete;

    /// A string argument from a pointer, as read from a va_list; null renders "".
    static ovStringFormatArg string_pointer(const ovString* s) noexcept {
        ovStringFormatArg a;
        a.m_kind = ovFORMAT_ARG_STRING;
        a.m_string = s;
        return a;
    }

    /// What the argument holds.
    ovStringFormatArgKind kind() const noexcept { return m_kind; }
    /// The integer's bits, sign-extended to 64 (0 for other kinds).
    uint64_t bits() const noexcept { return m_bits; }
    /// The double, or an integer converted by value; 0 for a string.
    double as_double() const noexcept {
        switch (m_kind) {
        case ovFORMAT_ARG_DOUBLE:
            return m_double;
        case ovFORMAT_ARG_INT:
            return static_cast<double>(static_cast<int32_t>(m_bits));
        case ovFORMAT_ARG_UNSIGNED:
            return static_cast<double>(static_cast<uint32_t>(m_bits));
        case ovFORMAT_ARG_INT64:
            return static_cast<double>(static_cast<int64_t>(m_bits));
        case ovFORMAT_ARG_UINT64:
            return static_cast<double>(m_bits);
        default:
            return 0;
        }
    }
    /// The string, or null (a string argument from a null pointer, or not a string).
    const ovString* string() const noexcept { return m_string; }

private:
    template <class T> static constexpr ovStringFormatArgKind integer_kind() {
        return (std::is_signed<T>::value && !std::is_same<T, bool>::value)
                   ? (sizeof(T) <= 4 ? ovFORMAT_ARG_INT : ovFORMAT_ARG_INT64)
                   : (sizeof(T) <= 4 ? ovFORMAT_ARG_UNSIGNED : ovFORMAT_ARG_UINT64);
    }
    template <class T> static constexpr uint64_t bits_of(T v) {
        return std::is_signed<T>::value ? static_cast<uint64_t>(static_cast<int64_t>(v))
                                        : static_cast<uint64_t>(v);
    }

    ovStringFormatArgKind m_kind;
    uint64_t m_bits;
    double m_double;
    const ovString* m_string;
};

/// A cursor over the arguments of one format: either an array of
/// ovStringFormatArg or a C va_list. Formatting advances it past every argument
/// it takes; `used()` tells how many. Not copyable.
///
/// The va_list form reads through its own copy (the caller's list is not
/// advanced and still needs its va_end) and trusts the caller as printf does:
/// "%d" reads an int, "%u" "%x" "%X" an unsigned int, "%f" "%e" "%E" "%g" "%G"
/// a double, "%s" a `const ovString*` (null renders ""). Fewer arguments than
/// specifiers, or arguments of other types, are undefined behaviour there.
class OV_API ovStringFormatArgs {
public:
    /// No arguments at all.
    ovStringFormatArgs() noexcept;
    /// `count` arguments at `args` (borrowed; must outlive the cursor).
    ovStringFormatArgs(const ovStringFormatArg* args, int count) noexcept;
    /// Reads from a copy of `list`.
    explicit ovStringFormatArgs(va_list list) noexcept;
    ~ovStringFormatArgs();
    ovStringFormatArgs(const ovStringFormatArgs&) = delete;
    ovStringFormatArgs& operator=(const ovStringFormatArgs&) = delete;

    /// Takes the next argument for the conversion letter given. False, with
    /// nothing taken, when the array is used up or the conversion takes no
    /// argument (va_list form).
    bool next(char conversion, ovStringFormatArg& out) noexcept;
    /// Arguments taken so far.
    int used() const noexcept { return m_used; }
    /// Arguments not taken yet; -1 for the va_list form, which cannot tell.
    int remaining() const noexcept { return m_is_list ? -1 : m_count - m_used; }

private:
    const ovStringFormatArg* m_args;
    int m_count;
    int m_used;
    bool m_is_list;
    va_list m_list;
};

/// One conversion specifier: parsed from a format, renders one argument.
/// Copyable; a default-constructed one is invalid and renders the error text.
class OV_API ovStringFormatSpecifier {
public:
    /// All fields 0, invalid.
    ovStringFormatSpecifier() noexcept
        : m_conversion(0), m_width(0), m_zero_pad(0), m_precision_given(0), m_precision(0),
          m_has_position(0), m_position(0), m_invalid(true) {}
    /// Parses the specifier whose "%" is at `pos` and leaves `pos` just past
    /// its conversion letter (or at the end of `fmt` when the format ends
    /// inside the specifier, which then renders the error text). A `pos` at or
    /// past the end leaves the specifier invalid and `pos` unchanged.
    ovStringFormatSpecifier(const ovString& fmt, ovStringPos& pos);

    /// 1 for a default-constructed specifier or one parsed past the format's end.
    int invalid() const noexcept { return m_invalid ? 1 : 0; }
    /// 1 when the specifier names its argument ("n$").
    int has_position() const noexcept { return m_has_position; }
    /// The 1-based argument number given as "n$" (0 when none).
    int position() const noexcept { return m_position; }
    /// The conversion character reached ("%" for a literal percent sign; 0 when
    /// the format ended inside the specifier).
    char conversion() const noexcept { return m_conversion; }
    /// The width given, 0 when none.
    int width() const noexcept { return m_width; }
    /// 1 when the width began with "0".
    int zero_pad() const noexcept { return m_zero_pad; }
    /// 1 when "." and a precision were given.
    int precision_given() const noexcept { return m_precision_given; }
    /// The precision given, 0 when none.
    int precision() const noexcept { return m_precision; }

    /// Renders the next argument of `args` (see the table at the top).
    ovString format(ovStringFormatArgs& args) const;

protected:
    /// Reads the specifier text (from its "%" through its conversion).
    void setup(const ovString& text);
    static int is_number(char c) noexcept { return c >= '0' && c <= '9' ? 1 : 0; }
    ovString format_string(const ovString& s) const;
    ovString format_int(int v) const;
    ovString format_unsigned_int(unsigned int v) const;
    ovString format_hex(unsigned int v, int upper) const;
    ovString format_double(double v) const;
    ovString format_int_with_sign(unsigned int magnitude, int negative) const;
    /// `digits` is a NUL-terminated run of digits ("" writes "0").
    ovString format_chars_with_sign(const char* digits, int negative) const;

private:
    friend class ovStringFormatter;

    /// Every rendering, whole format or single field, appends to one of these
    /// (defined with the renderers) and makes its result from it.
    class Out;

    /// Parses the specifier whose "%" is at t[i] of a format of len code
    /// points; returns the index just past its conversion letter, or len when
    /// the format ends inside it (the conversion is then 0).
    size_t parse(const unsigned int* t, size_t len, size_t i) noexcept;
    /// setup's reading, over the n code points of a specifier's text.
    void read(const unsigned int* text, size_t n) noexcept;
    /// format's rendering: takes the argument the conversion asks for.
    void render(Out& out, ovStringFormatArgs& args) const;
    void render_arg(Out& out, const ovStringFormatArg& a) const;
    void string_field(Out& out, const unsigned int* text, size_t len) const;
    void chars_field(Out& out, const char* digits, size_t nd, bool negative) const;
    void decimal_field(Out& out, uint64_t magnitude, bool negative) const;
    void hex_field(Out& out, uint64_t v, bool upper) const;
    void double_field(Out& out, double v) const;

    char m_conversion;
    int m_width;
    int m_zero_pad;
    int m_precision_given;
    int m_precision;
    int m_has_position;
    int m_position;
    bool m_invalid;
};

/// Formats values into an ovString. Has no state: any object, even a
/// temporary, will do.
class OV_API ovStringFormatter {
public:
    /// Type-safe entry: see the table at the top for what each conversion takes.
    template <class... A> ovString format(const ovString& fmt, const A&... args) const {
        const ovStringFormatArg packed[] = {ovStringFormatArg(args)...};
        ovStringFormatArgs list(packed, static_cast<int>(sizeof...(A)));
        return format_with_list(fmt, list);
    }
    /// A format without arguments.
    ovString format(const ovString& fmt) const {
        ovStringFormatArgs none;
        return format_with_list(fmt, none);
    }
    /// Formats with the arguments of `args`, advancing it past every one taken.
    ovString format_with_list(const ovString& fmt, ovStringFormatArgs& args) const;
    /// The C entry: reads a copy of `list` (see ovStringFormatArgs for the
    /// types it reads, "%s" takes a `const ovString*`).
    ovString format_with_va_list(const ovString& fmt, va_list list) const;

protected:
    /// Counts "%" signs, "%%" as one.
    int calculate_num_specifiers(const ovString& fmt) const;
};

/// Joins pieces into one string with a single allocation.
class OV_API ovStringBuilder {
public:
    /// Page array (0, 5, 10).
    ovStringBuilder();
    /// Page array (k, 5, 10), k the smallest with 2^k >= expected (0 when
    /// expected <= 1).
    explicit ovStringBuilder(int expected);

    /// Stores a copy (shared buffer) of s as the next piece. A null s is stored
    /// and counts as empty.
    void append(const ovString& s);
    /// The same as append(s).
    ovStringBuilder& operator+=(const ovString& s) {
        append(s);
        return *this;
    }
    /// Number of pieces stored.
    int size() const noexcept { return m_pieces.size(); }
    /// All pieces joined: a new valid (possibly empty) string, never failed.
    ovString build() const;

private:
    ovStringcoPageArr m_pieces;
};
