// ovStringFormatter, ovStringFormatSpecifier, ovStringBuilder: the rendering
// rules (quirks included) and the safe behaviour chosen where they say
// nothing. Each table is one behaviour.
#include "ovra/ovStringFormat.h"

#include "string_test_util.h"

#include <gtest/gtest.h>

#include <type_traits>

#include <climits>
#include <cmath>
#include <cstdarg>
#include <cstdint>
#include <limits>
#include <random>
#include <string>
#include <vector>

using namespace ovtest;

namespace {

const std::string kError = "Error formatting string";

// "%s" arguments; they outlive every table that points at them.
const ovString kA = from_utf8("A"), kB = from_utf8("B"), kAB = from_utf8("ab"), kNullStr;

struct Case {
    const char* fmt;
    std::vector<ovStringFormatArg> args;
    std::string expected;
    int used = -1; // arguments taken; -1: not checked
};

void check_table(const std::vector<Case>& table) {
    for (const Case& c : table) {
        SCOPED_TRACE(testing::Message() << "format \"" << c.fmt << "\"");
        ovStringFormatArgs list(c.args.data(), static_cast<int>(c.args.size()));
        const ovString out = ovStringFormatter().format_with_list(from_utf8(c.fmt), list);
        EXPECT_FALSE(out.invalid() || out.failed());
        EXPECT_EQ(utf8_of(out), c.expected);
        EXPECT_TRUE(c.used < 0 || list.used() == c.used) << "used " << list.used();
    }
}

template <class... T> std::string fmt(const char* f, const T&... args) {
    return utf8_of(ovStringFormatter().format(from_utf8(f), args...));
}

enum Colour { RED = 2 };
enum class Big : long long { HUGE_VALUE = 10000000000LL };

// Reaches the protected parts.
class TestSpecifier : public ovStringFormatSpecifier {
public:
    explicit TestSpecifier(const char* format) { setup(from_utf8(format)); }
    using ovStringFormatSpecifier::format_chars_with_sign;
};

class CountingFormatter : public ovStringFormatter {
public:
    using ovStringFormatter::calculate_num_specifiers;
};

// The formatting of a whole string written out with the public pieces, for
// formats whose first specifier has no argument number: count the "%" signs,
// cut the format into literal pieces at each specifier, render the
// specifiers in index order, join. A numbered specifier keeps an invalid
// slot, which renders the error text.
ovString step_by_step(const ovString& fmt, ovStringFormatArgs& args) {
    const size_t n = static_cast<size_t>(CountingFormatter().calculate_num_specifiers(fmt));
    if (n == 0)
        return fmt;
    std::vector<ovString> pieces;
    std::vector<ovStringFormatSpecifier> fields(n);
    const ovString percent = from_utf8("%");
    ovStringPos s = fmt.begin();
    for (ovStringPos p = fmt.begin(); p <= fmt.end();) {
        if (fmt.matches(percent, p)) {
            pieces.push_back(fmt.mid(s, p));
            const ovStringFormatSpecifier field(fmt, p);
            if (!field.has_position())
                fields.at(pieces.size() - 1) = field;
            s = p;
        } else {
            if (p == fmt.end())
                pieces.push_back(fmt.mid(s, p));
            ++p;
        }
    }
    pieces.resize(n + 1, ovString(ovSTRING_EMPTY));
    ovStringBuilder joined;
    joined += pieces[0];
    for (size_t i = 0; i < n; ++i) {
        joined += fields[i].format(args);
        joined += pieces[i + 1];
    }
    return joined.build();
}

ovString va_format(const char* f, ...) {
    va_list list;
    va_start(list, f);
    const ovString out = ovStringFormatter().format_with_va_list(from_utf8(f), list);
    va_end(list);
    return out;
}

} // namespace

TEST(ovStringFormat, IntegersPadWithTheSignInsideTheWidth) {
    check_table({
        {"%d", {0}, "0"},
        {"%6d", {-42}, "   -42"},
        {"%06d", {-42}, "-00042"},
        {"%06d", {42}, "000042"},
        {"%3d", {-42}, "-42"}, // exactly the width: sign is the pad
        {"%2d", {-42}, "-42"}, // no room: sign in front
        {"%.4d", {7}, "0007"},
        {"%8.5d", {-42}, "  -00042"},
        {"%06.3d", {5}, "000005"}, // zero padding applies with a precision
        {"%.0d", {0}, "0"},        // a zero value still writes "0"
        {"%.d", {3}, "3"},         // "." without digits: no precision
        {"%d", {INT_MIN}, "-2147483648"},
        {"%u", {-1}, "4294967295"},  // an int read unsigned, as printf does
        {"%d", {4294967295u}, "-1"}, // an unsigned read signed
        {"%5u", {7u}, "    7"},
        // Hexadecimal: no prefix, the case of the conversion.
        {"%x", {0}, "0"},
        {"%X", {255}, "FF"},
        {"%x", {0xDEADBEEFu}, "deadbeef"},
        {"%8x", {0xBEEF}, "    beef"},
        {"%08X", {0xBEEF}, "0000BEEF"},
        {"%.6x", {0xAB}, "0000ab"},
        {"%x", {-1}, "ffffffff"},
    });
}

TEST(ovStringFormat, OtherIntegerTypesKeepTheirWidth) {
    check_table({
        {"%d", {10000000000LL}, "10000000000"},
        {"%d", {std::numeric_limits<long long>::min()}, "-9223372036854775808"},
        {"%u", {std::numeric_limits<unsigned long long>::max()}, "18446744073709551615"},
        {"%x", {-1LL}, "ffffffffffffffff"},
        {"%d", {static_cast<short>(-5)}, "-5"},
        {"%u", {static_cast<unsigned char>(200)}, "200"},
        {"%d", {true}, "1"},
        {"%d", {RED}, "2"},
        {"%d", {Big::HUGE_VALUE}, "10000000000"},
    });
}

TEST(ovStringFormat, StringsAreRightAlignedAndCutByPrecision) {
    const ovString accent = from_utf8("\xC3\xA9t\xC3\xA9");          // été
    const ovString japanese = from_utf8("\xE6\x97\xA5\xE6\x9C\xAC"); // 日本
    check_table({
        {"%5s", {kAB}, "   ab"},
        {"%.1s", {kAB}, "a"},
        {"%.0s", {kAB}, ""},
        {"%5.1s", {kAB}, "    a"}, // the width measures what is kept
        {"%05s", {kAB}, "000ab"},
        {"%s", {kNullStr}, ""},
        {"%3s", {kNullStr}, "   "},
        {"[%4s]", {accent}, "[ \xC3\xA9t\xC3\xA9]"}, // code points, not bytes
        {"%.1s", {japanese}, "\xE6\x97\xA5"},
    });
}

TEST(ovStringFormat, PercentSignsAndPlainText) {
    check_table({
        {"100%%", {}, "100%"},
        {"%%%d", {5}, "%5"}, // "%%" is one slot: no error text after
        {"%%%%", {}, "%%"},
        {"", {}, ""},
        // "%" ignores the width; the "%" ending "%5%" was counted as a
        // specifier of its own, so its slot renders the error text.
        {"%5%", {}, "%" + kError},
        {"a%db%sc", {1, kAB}, "a1babc"},
        {"\303\251%d\303\274", {5}, "\303\2515\303\274"}, // é%dü
        // "%%" is counted once, so "%5%" (one specifier) leaves one counted
        // slot that nothing fills: it renders the error text at the end.
        {"%5%d", {}, "%d" + kError},
        // The same with an unknown conversion before the closing "%": the
        // scan of "%.é%" ends at its "%".
        {"%.\303\251%s|", {kA}, kError + "s|" + kError, 0},
    });
}

// Hand-checked anchors for the step-by-step oracle further down, with widths,
// signs and the quirks.
TEST(ovStringFormat, DoublesInEachNotation) {
    check_table({
        {"%f", {3.14159}, "3.141590"},
        {"%010.3f", {3.14159}, "000003.142"},
        {"%010.2f", {-3.5}, "-000003.50"},
        {"%9.2f", {-3.5}, "    -3.50"},
        {"%f", {0.0}, "0.000000"},
        {"%f", {-0.0}, "0.000000"}, // negative zero has no sign
        {"%.0f", {9.6}, "0"},       // the carried digit is dropped
        {"%.0f", {99.5}, "00"},     // likewise: two digits from x = 1
        {"%.1f", {0.25}, "0.3"},    // + 0.5 rounds halves up
        {"%f", {1.0f}, "1.000000"}, // float
        {"%f", {3}, "3.000000"},    // an integer is converted
        {"%e", {12345.678}, "1.234568e+04"},
        {"%E", {0.00012}, "1.200000E-04"},
        {"%e", {1e123}, "1.000000e+23"}, // two exponent digits only
        {"%e", {1e-300}, "1.000000e-00"},
        {"%e", {0.0}, "0.000000e+00"},
        {"%.0e", {5.0}, "5e+00"},
        {"%e", {9.9999999}, "0.000000e+00"}, // carry dropped
        {"%14e", {-1.5}, " -1.500000e+00"},
        {"%014e", {-1.5}, "-01.500000e+00"},
        {"%g", {0.0001}, "0.0001"},
        {"%g", {1000000.0}, "1e+06"},
        {"%g", {100000.0}, "100000"},
        {"%8g", {-2.5}, "    -2.5"},
        {"%08g", {-2.5}, "-00002.5"},
        {"%G", {1.5e-5}, "1.5E-05"},
        {"%.0g", {123.0}, "1e+02"}, // precision 0 becomes 1
        {"%5g", {0.0}, "    0"},
    });
}

TEST(ovStringFormat, DoublesOutsideTheUsualRange) {
    const double inf = std::numeric_limits<double>::infinity();
    const double nan = std::numeric_limits<double>::quiet_NaN();
    check_table({
        {"%f", {inf}, "inf"},
        {"%E", {-inf}, "-INF"},
        {"%G", {nan}, "NAN"},
        {"%6f", {nan}, "   nan"},
        {"%06f", {-inf}, "  -inf"}, // never zero padded
        // A denormal: 10^(p - x) is applied in steps so it stays finite.
        {"%e", {4.9406564584124654e-324}, "4.940656e-24"},
        // |v| x 10^p overflows: zeros after the point, digits of |v| before.
        {"%.400f", {1.0}, "1." + std::string(400, '0')},
    });
    // Digits that cannot be computed are zeros; nothing breaks.
    const std::string e400 = fmt("%.400e", 1.0);
    EXPECT_EQ(e400.size(), 406u);
    EXPECT_EQ(e400.substr(e400.size() - 4), "e+00");
    const std::string big = fmt("%f", 1e308);
    EXPECT_EQ(big.size(), 316u);
    EXPECT_EQ(big.substr(309), ".000000");
    EXPECT_EQ(fmt("%f", std::numeric_limits<double>::max()).size(), 316u);
}

namespace {

// The double rendering written out plainly, with the C
// runtime's floor(log10()) and the full chain of divisions by 10: the oracle
// for the formatter's faster but equivalent digit production.
std::string reference_double(char conv, int precision, double v) {
    const bool negative = v < 0;
    const double a = std::fabs(v);
    const bool g = conv == 'g' || conv == 'G';
    int p = precision < 0 ? 6 : precision;
    if (g && precision == 0)
        p = 1;
    const int x = v == 0 ? 0 : static_cast<int>(std::floor(std::log10(a)));
    const bool expo = conv == 'e' || conv == 'E' || (g && (x < -4 || x >= p));
    const auto pow10 = [](int e) { return std::stod("1e" + std::to_string(e)); };
    const auto digit = [](double s) {
        return static_cast<char>('0' + static_cast<int>(std::floor(std::fmod(s, 10.0))));
    };
    std::string r; // right to left
    if (expo) {
        const int ax = x < 0 ? -x : x;
        r += static_cast<char>('0' + ax % 10);
        r += static_cast<char>('0' + ax / 10 % 10);
        r += x >= 0 ? '+' : '-';
        r += (conv == 'E' || conv == 'G') ? 'E' : 'e';
    }
    if (conv == 'f' || conv == 'e' || conv == 'E') {
        double s = a * pow10(conv == 'f' ? p : p - x) + 0.5;
        const int count = conv == 'f' ? (x >= 0 ? x + p + 1 : p + 1) : p + 1;
        for (int i = 0; i < count; ++i, s /= 10) {
            if (i == p && p >= 1)
                r += '.';
            r += digit(s);
        }
    } else if (v == 0) {
        r += '0';
    } else {
        double s = a * pow10(p - x - 1) + 0.5;
        const int count = expo ? p : (x < 0 ? p - x : p);
        const int units = expo ? p - 1 : p - x - 1;
        bool written = false;
        for (int i = 0; i < count; ++i, s /= 10) {
            const char d = digit(s);
            if (i == units && written && (!expo || p >= 2))
                r += '.';
            if ((!expo && i >= units) || d != '0' || written) {
                r += d;
                written = true;
            }
        }
    }
    if (negative)
        r += '-';
    return std::string(r.rbegin(), r.rend());
}

} // namespace

TEST(ovStringFormat, DoublesMatchTheStepByStepAlgorithm) {
    uint64_t state = 0x9E3779B97F4A7C15ull; // fixed, so failures repeat
    const auto next = [&state] {
        state ^= state << 13;
        state ^= state >> 7;
        state ^= state << 17;
        return state;
    };
    const char convs[] = {'f', 'e', 'E', 'g', 'G'};
    const ovStringFormatter f;
    int mismatches = 0;
    for (int n = 0; n < 20000 && mismatches < 10; ++n) {
        const uint64_t r = next();
        // Mantissas with few or many digits, magnitudes 1e-12 .. 1e16,
        // values just around powers of ten, and both signs.
        double v = static_cast<double>(r >> 11) / 9007199254740992.0; // [0, 1)
        if (r & 1)
            v = std::floor(v * 1000) / 1000;
        const int e = static_cast<int>((r >> 3) % 29) - 12;
        v *= std::stod("1e" + std::to_string(e));
        if ((r >> 40) % 16 == 0)
            v = std::nextafter(std::stod("1e" + std::to_string(e)), (r & 2) ? 0.0 : 1e300);
        if (r & 4)
            v = -v;
        const char conv = convs[(r >> 8) % 5];
        const int precision = static_cast<int>((r >> 16) % 15) - 1; // -1: none
        const std::string format =
            precision < 0 ? std::string("%") + conv : "%." + std::to_string(precision) + conv;
        const std::string got = utf8_of(f.format(from_utf8(format), v));
        const std::string want = reference_double(conv, precision, v);
        if (got != want) {
            ++mismatches;
            ADD_FAILURE() << format << " of " << std::hexfloat << v << ": got " << got
                          << ", step by step " << want;
        }
    }
}

TEST(ovStringFormat, PositionalSpecifiersTakeArgumentsInNumberOrder) {
    check_table({
        {"%2$s %1$s", {kA, kB}, "B A"},
        {"%1$5d|%2$05d", {1, 2}, "    1|00002"},
        {"%2$.1s %1$x", {255, kAB}, "a ff"},
        {"%1$%", {}, "%" + kError}, // as "%5%": one slot more than specifiers
        // An unknown conversion takes no argument, in positional mode too:
        // "%2$s" then takes the first argument.
        {"%1$-d %2$s", {kA, kB}, kError + " A"},
        // "%%" renders in place; other unnumbered specifiers are errors.
        {"%1$d%%", {5}, "5%"},
        {"%1$s %s", {kA, kB}, "A " + kError},
        // A number beyond the count of specifiers: the error text, no argument.
        {"%2$s", {kA, kB}, kError, 0},
        // A gap within the count takes no argument: "%3$s" takes B.
        {"%1$s %% %3$s", {kA, kB}, "A % B"},
        // The same number twice: the later one takes the argument.
        {"%1$s %1$s", {kA}, kError + " A"},
        // Position 0 is not a position: "$" becomes the conversion.
        {"%0$s", {kA}, kError},
        // Non-positional mode (the first specifier decides): a numbered
        // specifier renders the error text in place and takes no argument.
        {"%s %1$s", {kA, kB}, "A " + kError, 1},
        {"%d %1$s|%d", {7, 8}, "7 " + kError + "|8"},
        {"%s %5$s", {kA, kB}, "A " + kError, 1},
    });
}

TEST(ovStringFormat, WholeFormatsAgreeWithTheStepByStepRules) {
    // Specifiers of every kind (unknown, unfinished and numbered ones too),
    // "%" signs that part the count from the specifiers, and text.
    const char* const parts[] = {
        "%d",    "%5d",  "%05d", "%.3d", "%s", "%5.1s",    "%x",           "%X",  "%u",   "%f",
        "%8.3f", "%e",   "%.2E", "%g",   "%G", "%%",       "%5%",          "%.%", "%-3d", "%ld",
        "%c x",  "%1$s", "%2$d", "abc",  " ",  "\xC3\xA9", "\xE6\x97\xA5", "%",   "%5",   "%."};
    const char* const firsts[] = {"%d", "%s", "%5%", "%%", "%-d", "%8.3f", "%."};
    const ovString strings[] = {kA, kAB, from_utf8("\xE6\x97\xA5\xE6\x9C\xAC"), kNullStr};
    std::mt19937 rng(1414u);
    auto pick = [&rng](size_t n) { return std::uniform_int_distribution<size_t>(0, n - 1)(rng); };
    for (int round = 0; round < 3000; ++round) {
        std::string f = pick(3) == 0 ? "<" : "";
        f += firsts[pick(sizeof(firsts) / sizeof(firsts[0]))];
        for (size_t n = pick(8); n > 0; --n)
            f += parts[pick(sizeof(parts) / sizeof(parts[0]))];
        std::vector<ovStringFormatArg> args;
        for (size_t n = pick(9); n > 0; --n) {
            switch (pick(5)) {
            case 0:
                args.emplace_back(static_cast<int>(rng()));
                break;
            case 1:
                args.emplace_back(static_cast<unsigned>(rng() % 1000));
                break;
            case 2:
                args.emplace_back(static_cast<long long>(rng()) << 20);
                break;
            case 3:
                args.emplace_back(
                    std::ldexp(static_cast<double>(rng()), static_cast<int>(pick(80)) - 50));
                break;
            default:
                args.emplace_back(strings[pick(4)]);
                break;
            }
        }
        const ovString format = from_utf8(f);
        ovStringFormatArgs fast(args.data(), static_cast<int>(args.size()));
        ovStringFormatArgs plain(args.data(), static_cast<int>(args.size()));
        const ovString got = ovStringFormatter().format_with_list(format, fast);
        const ovString want = step_by_step(format, plain);
        if (code_points(got) != code_points(want) || fast.used() != plain.used()) {
            ADD_FAILURE() << "round " << round << ", format \"" << f << "\" with " << args.size()
                          << " arguments: got \"" << utf8_of(got) << "\" taking " << fast.used()
                          << ", step by step \"" << utf8_of(want) << "\" taking " << plain.used();
            return;
        }
    }
}

TEST(ovStringFormat, UnknownConversionsTakeNoArgument) {
    check_table({
        {"%-5d", {7}, kError, 0},
        {"%-5d|%d", {7}, kError + "|7"},
        {"%ld %d", {7}, kError + " 7"},
        {"%#x", {7}, kError},
        {"%5.2lf", {1.0}, kError},
        {"%\303\251d|%d", {1}, kError + "|1"}, // %éd
        // The scan runs to the next conversion letter: "%c and" is one specifier.
        {"%c and %d", {5}, kError + " 5"},
    });
}

TEST(ovStringFormat, MissingArgumentsRenderTheErrorText) {
    check_table({
        {"%d %d", {1}, "1 " + kError},
        {"%s|%f|%x", {}, kError + "|" + kError + "|" + kError},
        {"%2$s %1$s", {kA}, kError + " A"},
        {"%d %d", {1, 2, 3}, "1 2", 2}, // extra arguments are ignored
    });
}

TEST(ovStringFormat, WrongKindsTakeTheArgumentAndRenderTheErrorText) {
    check_table({
        {"%d %d", {kA, 5}, kError + " 5", 2},
        {"%s %s", {5, kA}, kError + " A"},
        {"%x", {2.5}, kError},
        {"%f", {kA}, kError},
    });
}

TEST(ovStringFormat, FormatsEndingInsideASpecifier) {
    check_table({
        {"abc %", {7}, "abc " + kError, 0},
        {"%5", {1}, kError},
        {"%.3", {1}, kError},
        {"%1$", {kA}, kError},
        {"%d%", {1}, "1" + kError},
        {"x%-", {}, "x" + kError},
    });
}

TEST(ovStringFormat, HugeNumbersAreClamped) {
    EXPECT_EQ(fmt("%200000d", 1).size(), 100000u);
    EXPECT_EQ(fmt("%99999999999999999999d", 1).size(), 100000u);
    EXPECT_EQ(fmt("%.99999999999s", kAB), "ab");
    EXPECT_EQ(fmt("%99999999999$s", kA), kError);
}

TEST(ovStringFormat, TypeSafeEntryAndNullOrFailedFormats) {
    EXPECT_EQ(fmt("%d items, %s, %8.3f, %x", 42, from_utf8("widgets"), 3.14159, 0xBEEFu),
              "42 items, widgets,    3.142, beef");
    EXPECT_EQ(fmt("%%"), "%");
    // Temporaries live through format (above); a lasting argument may not hold one.
    static_assert(!std::is_constructible<ovStringFormatArg, ovString&&>::value, "temporary");
    static_assert(std::is_constructible<ovStringFormatArg, const ovString&>::value, "lvalue");
    static_assert(!std::is_constructible<ovStringFormatArg, const char*>::value, "pointer");

    const ovStringFormatter f;
    for (const ovString& from_null : {f.format(ovString(), 1, 2), f.format(ovString())})
        EXPECT_TRUE(!from_null.invalid() && from_null.empty());

    const ovString bad = from_utf8("\xC3\x28");
    ASSERT_TRUE(bad.failed());
    const ovString out = f.format(bad, 1);
    EXPECT_FALSE(out.failed());
    EXPECT_EQ(utf8_of(out), "Failed to construct string from UTF8 string.");

    // The cursor is advanced past every argument taken.
    const ovStringFormatArg args[] = {1, 2, 3};
    ovStringFormatArgs list(args, 3);
    EXPECT_EQ(utf8_of(f.format_with_list(from_utf8("%d"), list)), "1");
    EXPECT_EQ(list.remaining(), 2);
    EXPECT_EQ(utf8_of(f.format_with_list(from_utf8("%d-%d"), list)), "2-3");
    EXPECT_EQ(list.remaining(), 0);
    ovStringFormatArgs empty(nullptr, 5);
    EXPECT_EQ(utf8_of(f.format_with_list(from_utf8("%d"), empty)), kError);
}

TEST(ovStringFormat, VaListEntryReadsCTypes) {
    const ovString name = from_utf8("widgets");
    EXPECT_EQ(
        utf8_of(va_format("%d %u %x %X %s %f %e %g", -1, 7u, 255u, 255u, &name, 1.5, 1.5, 0.5)),
        "-1 7 ff FF widgets 1.500000 1.500000e+00 0.5");
    EXPECT_EQ(utf8_of(va_format("[%3s]", static_cast<const ovString*>(nullptr))), "[   ]");
    EXPECT_EQ(utf8_of(va_format("%2$s %1$d", 5, &name)), "widgets 5");
    EXPECT_EQ(utf8_of(va_format("%-5d|%d", 9)), kError + "|9");
    // A numbered specifier in a plain format must not read another slot's
    // argument as its own kind (a string from an int would crash).
    EXPECT_EQ(utf8_of(va_format("%s|%d|%x|%g|%2$s", &name, -5, 255u, 2.5)),
              "widgets|-5|ff|2.5|" + kError);
}

TEST(ovStringFormatSpecifier, ParsesEachPart) {
    const struct {
        const char* fmt;
        std::vector<int> parts; // conversion, width, zero pad, precision given,
                                // precision, has position, position, end index
    } table[] = {
        {"%d", {'d', 0, 0, 0, 0, 0, 0, 2}},
        {"%05d", {'d', 5, 1, 0, 0, 0, 0, 4}},
        {"%0d", {'d', 0, 0, 0, 0, 0, 0, 3}}, // n = 0: neither width nor zero pad
        {"%.f", {'f', 0, 0, 0, 0, 0, 0, 3}},
        {"%12.4e", {'e', 12, 0, 1, 4, 0, 0, 6}},
        {"%2$08.3f", {'f', 8, 1, 1, 3, 1, 2, 8}},
        {"%5%", {'%', 5, 0, 0, 0, 0, 0, 3}},
        {"%-5d", {'-', 0, 0, 0, 0, 0, 0, 4}},
        {"%5", {0, 5, 0, 0, 0, 0, 0, 2}}, // unfinished: stops at the end
        {"%1$", {0, 0, 0, 0, 0, 1, 1, 3}},
        {"%dxyz", {'d', 0, 0, 0, 0, 0, 0, 2}},
    };
    for (const auto& c : table) {
        SCOPED_TRACE(c.fmt);
        const ovString f = from_utf8(c.fmt);
        ovStringPos pos = f.begin();
        const ovStringFormatSpecifier s(f, pos);
        EXPECT_FALSE(s.invalid());
        const std::vector<int> got = {
            s.conversion(), s.width(),        s.zero_pad(), s.precision_given(),
            s.precision(),  s.has_position(), s.position(), static_cast<int>(pos.index())};
        EXPECT_EQ(got, c.parts);
    }
}

TEST(ovStringFormatSpecifier, DefaultAndOutOfRangeSpecifiersAreInvalid) {
    const ovStringFormatSpecifier none;
    EXPECT_TRUE(none.invalid());
    ovStringFormatArgs args;
    EXPECT_EQ(utf8_of(none.format(args)), kError);

    const ovString f = from_utf8("%d");
    ovStringPos end = f.end();
    const ovStringFormatSpecifier past(f, end);
    EXPECT_TRUE(past.invalid());
    EXPECT_EQ(end, f.end());

    ovStringPos pos = f.begin();
    const ovStringFormatSpecifier d(f, pos);
    const ovStringFormatArg one[] = {-7};
    ovStringFormatArgs list(one, 1);
    EXPECT_EQ(utf8_of(d.format(list)), "-7");
    EXPECT_EQ(utf8_of(d.format(list)), kError); // used up
}

// Derived specifiers may pass no digits at all.
TEST(ovStringFormatSpecifier, SignedDigitsWithoutDigitsWriteZero) {
    const TestSpecifier w6("%6d");
    EXPECT_EQ(utf8_of(w6.format_chars_with_sign("", 0)), "     0");
    EXPECT_EQ(utf8_of(w6.format_chars_with_sign(nullptr, 0)), "     0");
    EXPECT_EQ(utf8_of(w6.format_chars_with_sign("42", 1)), "   -42");
}

TEST(ovStringBuilder, JoinsPiecesIntoOneString) {
    const ovString none = ovStringBuilder().build();
    EXPECT_TRUE(!none.invalid() && none.empty());

    for (int expected : {-5, 0, 1, 2, 3, 1000}) {
        SCOPED_TRACE(expected);
        ovStringBuilder b(expected);
        b.append(from_utf8("ab"));
        b += ovString(); // a null piece counts as empty
        b += ovString(ovSTRING_EMPTY);
        b += from_utf8("\xE6\x97\xA5");
        EXPECT_EQ(b.size(), 4);
        const ovString out = b.build();
        EXPECT_FALSE(out.failed());
        EXPECT_EQ(code_points(out), (codes{'a', 'b', 0x65E5}));
    }

    // More pieces than one page (2^5) holds.
    ovStringBuilder many;
    std::string expected;
    for (int i = 0; i < 100; ++i) {
        const std::string piece = std::to_string(i);
        many += from_utf8(piece);
        expected += piece;
    }
    EXPECT_EQ(utf8_of(many.build()), expected);
    EXPECT_EQ(utf8_of(many.build()), expected); // build does not consume
}
