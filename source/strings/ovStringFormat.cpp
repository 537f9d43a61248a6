// ovStringFormatter, ovStringFormatSpecifier, ovStringBuilder.
//
// How a format becomes text: ovStringFormatter::format_with_list splits the
// format into literal pieces and specifiers (ovStringFormatSpecifier::parse),
// renders each specifier with its argument (render, then the field renderer
// for its conversion) into one shared code-point buffer, and joins pieces and
// fields into a string allocated once at its exact size: the same text as
// appending every piece to an ovStringBuilder, without an ovString per piece.
// The specifier's protected format_* members render one field on their own
// with the same renderers.
#include "ovra/ovStringFormat.h"

#include "common/bits.h"
#include "strings/simd.h"
#include "strings/text_builder.h"
#include "strings/utf_codec.h"

#include <climits>
#include <cmath>
#include <cstring>
#include <memory>
#include <new>
#include <type_traits>
#include <utility>

namespace ovra_format {

const char kErrorText[] = "Error formatting string";
const size_t kErrorLength = sizeof(kErrorText) - 1;
// Widths, precisions and argument numbers are clamped here (see the header).
const int kMaxNumber = 100000;

// The conversion letters "sduxXfeEgG", and "%": the characters that end the
// scan of a specifier.
inline bool ends_specifier(unsigned int c) noexcept {
    switch (c) {
    case 's':
    case 'd':
    case 'u':
    case 'x':
    case 'X':
    case 'f':
    case 'e':
    case 'E':
    case 'g':
    case 'G':
    case '%':
        return true;
    default:
        return false;
    }
}

inline void copy_codes(unsigned int* dst, const unsigned int* src, size_t n) noexcept;

// A growable array of code points; the first 256 live on the stack.
class CodeBuffer {
public:
    CodeBuffer() noexcept : m_p(m_inline), m_size(0), m_cap(kInline) {}
    CodeBuffer(const CodeBuffer&) = delete;
    CodeBuffer& operator=(const CodeBuffer&) = delete;

    size_t size() const noexcept { return m_size; }
    const unsigned int* data() const noexcept { return m_p; }

    void push(unsigned int c) { *extend(1) = c; }
    void fill(unsigned int c, size_t n) {
        unsigned int* d = extend(n);
        for (size_t i = 0; i < n; ++i)
            d[i] = c;
    }
    void ascii(const char* s, size_t n) {
        unsigned int* d = extend(n);
        for (size_t i = 0; i < n; ++i)
            d[i] = static_cast<unsigned char>(s[i]);
    }
    void codes(const unsigned int* s, size_t n) {
        if (n)
            copy_codes(extend(n), s, n);
    }

private:
    static const size_t kInline = 256;

    unsigned int* extend(size_t n) {
        if (m_cap - m_size < n)
            grow(n);
        unsigned int* r = m_p + m_size;
        m_size += n;
        return r;
    }
    void grow(size_t n) {
        size_t cap = m_cap * 2;
        if (cap < m_size + n)
            cap = m_size + n;
        std::unique_ptr<unsigned int[]> bigger(new unsigned int[cap]);
        std::memcpy(bigger.get(), m_p, m_size * sizeof(unsigned int));
        m_heap = std::move(bigger);
        m_p = m_heap.get();
        m_cap = cap;
    }

    unsigned int m_inline[kInline];
    unsigned int* m_p;
    size_t m_size;
    size_t m_cap;
    std::unique_ptr<unsigned int[]> m_heap;
};

// n elements, each a copy of `init`: up to N in (uninitialised) stack
// storage, more on the heap. Only for trivially destructible T.
template <class T, size_t N> class SmallArray {
    static_assert(std::is_trivially_destructible<T>::value, "no destructors are run");

public:
    SmallArray(size_t n, const T& init) : SmallArray(n) { fill(n, init); }
    // Room for n elements, not yet set: fill() before reading.
    explicit SmallArray(size_t n) {
        if (n > N) {
            m_heap.reset(new T[n]);
            m_p = m_heap.get();
        } else {
            m_p = reinterpret_cast<T*>(m_inline);
        }
    }
    void fill(size_t n, const T& v) {
        for (size_t i = 0; i < n; ++i)
            new (m_p + i) T(v);
    }
    SmallArray(const SmallArray&) = delete;
    SmallArray& operator=(const SmallArray&) = delete;
    T& operator[](size_t i) noexcept { return m_p[i]; }

private:
    alignas(T) unsigned char m_inline[N * sizeof(T)];
    T* m_p;
    std::unique_ptr<T[]> m_heap;
};

// Copies n code points; short runs (the usual case here) without a call.
inline void copy_codes(unsigned int* dst, const unsigned int* src, size_t n) noexcept {
    if (n > 16) {
        std::memcpy(dst, src, n * sizeof(unsigned int));
        return;
    }
    for (size_t i = 0; i < n; ++i)
        dst[i] = src[i];
}

// One allocation: n code points and a terminator.
ovString make_string(const unsigned int* src, size_t n) {
    unsigned int* p;
    ovString s = ovra_internal::TextBuilder::with_room(n, p);
    if (n)
        std::memcpy(p, src, n * sizeof(unsigned int));
    return s;
}

// Correctly rounded powers of ten 1e-307 .. 1e308 (decimal literals, so the
// same on every platform, unlike the C runtimes' pow).
// clang-format off
const double kPow10[] = {
    1e-307, 1e-306, 1e-305, 1e-304, 1e-303, 1e-302, 1e-301, 1e-300,
    1e-299, 1e-298, 1e-297, 1e-296, 1e-295, 1e-294, 1e-293, 1e-292,
    1e-291, 1e-290, 1e-289, 1e-288, 1e-287, 1e-286, 1e-285, 1e-284,
    1e-283, 1e-282, 1e-281, 1e-280, 1e-279, 1e-278, 1e-277, 1e-276,
    1e-275, 1e-274, 1e-273, 1e-272, 1e-271, 1e-270, 1e-269, 1e-268,
    1e-267, 1e-266, 1e-265, 1e-264, 1e-263, 1e-262, 1e-261, 1e-260,
    1e-259, 1e-258, 1e-257, 1e-256, 1e-255, 1e-254, 1e-253, 1e-252,
    1e-251, 1e-250, 1e-249, 1e-248, 1e-247, 1e-246, 1e-245, 1e-244,
    1e-243, 1e-242, 1e-241, 1e-240, 1e-239, 1e-238, 1e-237, 1e-236,
    1e-235, 1e-234, 1e-233, 1e-232, 1e-231, 1e-230, 1e-229, 1e-228,
    1e-227, 1e-226, 1e-225, 1e-224, 1e-223, 1e-222, 1e-221, 1e-220,
    1e-219, 1e-218, 1e-217, 1e-216, 1e-215, 1e-214, 1e-213, 1e-212,
    1e-211, 1e-210, 1e-209, 1e-208, 1e-207, 1e-206, 1e-205, 1e-204,
    1e-203, 1e-202, 1e-201, 1e-200, 1e-199, 1e-198, 1e-197, 1e-196,
    1e-195, 1e-194, 1e-193, 1e-192, 1e-191, 1e-190, 1e-189, 1e-188,
    1e-187, 1e-186, 1e-185, 1e-184, 1e-183, 1e-182, 1e-181, 1e-180,
    1e-179, 1e-178, 1e-177, 1e-176, 1e-175, 1e-174, 1e-173, 1e-172,
    1e-171, 1e-170, 1e-169, 1e-168, 1e-167, 1e-166, 1e-165, 1e-164,
    1e-163, 1e-162, 1e-161, 1e-160, 1e-159, 1e-158, 1e-157, 1e-156,
    1e-155, 1e-154, 1e-153, 1e-152, 1e-151, 1e-150, 1e-149, 1e-148,
    1e-147, 1e-146, 1e-145, 1e-144, 1e-143, 1e-142, 1e-141, 1e-140,
    1e-139, 1e-138, 1e-137, 1e-136, 1e-135, 1e-134, 1e-133, 1e-132,
    1e-131, 1e-130, 1e-129, 1e-128, 1e-127, 1e-126, 1e-125, 1e-124,
    1e-123, 1e-122, 1e-121, 1e-120, 1e-119, 1e-118, 1e-117, 1e-116,
    1e-115, 1e-114, 1e-113, 1e-112, 1e-111, 1e-110, 1e-109, 1e-108,
    1e-107, 1e-106, 1e-105, 1e-104, 1e-103, 1e-102, 1e-101, 1e-100,
    1e-99, 1e-98, 1e-97, 1e-96, 1e-95, 1e-94, 1e-93, 1e-92,
    1e-91, 1e-90, 1e-89, 1e-88, 1e-87, 1e-86, 1e-85, 1e-84,
    1e-83, 1e-82, 1e-81, 1e-80, 1e-79, 1e-78, 1e-77, 1e-76,
    1e-75, 1e-74, 1e-73, 1e-72, 1e-71, 1e-70, 1e-69, 1e-68,
    1e-67, 1e-66, 1e-65, 1e-64, 1e-63, 1e-62, 1e-61, 1e-60,
    1e-59, 1e-58, 1e-57, 1e-56, 1e-55, 1e-54, 1e-53, 1e-52,
    1e-51, 1e-50, 1e-49, 1e-48, 1e-47, 1e-46, 1e-45, 1e-44,
    1e-43, 1e-42, 1e-41, 1e-40, 1e-39, 1e-38, 1e-37, 1e-36,
    1e-35, 1e-34, 1e-33, 1e-32, 1e-31, 1e-30, 1e-29, 1e-28,
    1e-27, 1e-26, 1e-25, 1e-24, 1e-23, 1e-22, 1e-21, 1e-20,
    1e-19, 1e-18, 1e-17, 1e-16, 1e-15, 1e-14, 1e-13, 1e-12,
    1e-11, 1e-10, 1e-9, 1e-8, 1e-7, 1e-6, 1e-5, 1e-4,
    1e-3, 1e-2, 1e-1, 1e0, 1e1, 1e2, 1e3, 1e4,
    1e5, 1e6, 1e7, 1e8, 1e9, 1e10, 1e11, 1e12,
    1e13, 1e14, 1e15, 1e16, 1e17, 1e18, 1e19, 1e20,
    1e21, 1e22, 1e23, 1e24, 1e25, 1e26, 1e27, 1e28,
    1e29, 1e30, 1e31, 1e32, 1e33, 1e34, 1e35, 1e36,
    1e37, 1e38, 1e39, 1e40, 1e41, 1e42, 1e43, 1e44,
    1e45, 1e46, 1e47, 1e48, 1e49, 1e50, 1e51, 1e52,
    1e53, 1e54, 1e55, 1e56, 1e57, 1e58, 1e59, 1e60,
    1e61, 1e62, 1e63, 1e64, 1e65, 1e66, 1e67, 1e68,
    1e69, 1e70, 1e71, 1e72, 1e73, 1e74, 1e75, 1e76,
    1e77, 1e78, 1e79, 1e80, 1e81, 1e82, 1e83, 1e84,
    1e85, 1e86, 1e87, 1e88, 1e89, 1e90, 1e91, 1e92,
    1e93, 1e94, 1e95, 1e96, 1e97, 1e98, 1e99, 1e100,
    1e101, 1e102, 1e103, 1e104, 1e105, 1e106, 1e107, 1e108,
    1e109, 1e110, 1e111, 1e112, 1e113, 1e114, 1e115, 1e116,
    1e117, 1e118, 1e119, 1e120, 1e121, 1e122, 1e123, 1e124,
    1e125, 1e126, 1e127, 1e128, 1e129, 1e130, 1e131, 1e132,
    1e133, 1e134, 1e135, 1e136, 1e137, 1e138, 1e139, 1e140,
    1e141, 1e142, 1e143, 1e144, 1e145, 1e146, 1e147, 1e148,
    1e149, 1e150, 1e151, 1e152, 1e153, 1e154, 1e155, 1e156,
    1e157, 1e158, 1e159, 1e160, 1e161, 1e162, 1e163, 1e164,
    1e165, 1e166, 1e167, 1e168, 1e169, 1e170, 1e171, 1e172,
    1e173, 1e174, 1e175, 1e176, 1e177, 1e178, 1e179, 1e180,
    1e181, 1e182, 1e183, 1e184, 1e185, 1e186, 1e187, 1e188,
    1e189, 1e190, 1e191, 1e192, 1e193, 1e194, 1e195, 1e196,
    1e197, 1e198, 1e199, 1e200, 1e201, 1e202, 1e203, 1e204,
    1e205, 1e206, 1e207, 1e208, 1e209, 1e210, 1e211, 1e212,
    1e213, 1e214, 1e215, 1e216, 1e217, 1e218, 1e219, 1e220,
    1e221, 1e222, 1e223, 1e224, 1e225, 1e226, 1e227, 1e228,
    1e229, 1e230, 1e231, 1e232, 1e233, 1e234, 1e235, 1e236,
    1e237, 1e238, 1e239, 1e240, 1e241, 1e242, 1e243, 1e244,
    1e245, 1e246, 1e247, 1e248, 1e249, 1e250, 1e251, 1e252,
    1e253, 1e254, 1e255, 1e256, 1e257, 1e258, 1e259, 1e260,
    1e261, 1e262, 1e263, 1e264, 1e265, 1e266, 1e267, 1e268,
    1e269, 1e270, 1e271, 1e272, 1e273, 1e274, 1e275, 1e276,
    1e277, 1e278, 1e279, 1e280, 1e281, 1e282, 1e283, 1e284,
    1e285, 1e286, 1e287, 1e288, 1e289, 1e290, 1e291, 1e292,
    1e293, 1e294, 1e295, 1e296, 1e297, 1e298, 1e299, 1e300,
    1e301, 1e302, 1e303, 1e304, 1e305, 1e306, 1e307, 1e308,
};
// clang-format on

// x * 10^e. Inside the table this is a single multiplication by the power, as
// the digits are defined; outside it (denormals, huge precisions) the power is
// applied in steps so the result stays finite when it can.
double scale(double x, int e) noexcept {
    while (e > 308) {
        x *= 1e308;
        e -= 308;
    }
    while (e < -307) {
        x *= 1e-307;
        e += 307;
    }
    return x * kPow10[e + 307];
}

// floor(log10(a)) for a > 0, finite. The exact answer is k when
// 10^k <= a < 10^(k+1), found here with the table; log10 itself is called only
// when a lies within a relative 1e-9 of a power of ten (or outside the
// table), where a log10 that rounds could give the neighbouring integer. Far
// from those points any log10 accurate to far better than 1e-10 floors to k,
// so the result is the platform's floor(log10(a)) without the call.
int floor_log10(double a) noexcept {
    if (a >= 1e-306 && a < 1e308) {
        // a is normal here: its binary exponent is in its bits, a = m * 2^e2
        // with 1 <= m < 2 (what frexp gives, less one, without the call).
        uint64_t bits;
        std::memcpy(&bits, &a, sizeof bits);
        const int e2 = static_cast<int>((bits >> 52) & 0x7FF) - 1023;
        int k = static_cast<int>(std::floor(e2 * 0.30102999566398120));
        while (k < 307 && a >= kPow10[k + 1 + 307])
            ++k;
        while (k > -306 && a < kPow10[k + 307])
            --k;
        const double low = kPow10[k + 307];
        const double high = kPow10[k + 1 + 307];
        if (a >= low * (1 + 1e-9) && a <= high * (1 - 1e-9))
            return k;
    }
    return static_cast<int>(std::floor(std::log10(a)));
}

// The digits of a scaled value, right to left: digit i is
// floor(fmod(s_i, 10)) with s_0 = scaled and s_(i+1) = s_i / 10 in double
// arithmetic: that is what a digit of this formatter is. While s_i < 2^53, floor(s_i / 10) rounded
// is exactly floor(s_i) / 10 in integers (s_i / 10 is never within half a unit of the next
// integer), so from there on the digits are those of the integer floor(s_i): the same digits
// without the chain of divisions. Above 2^53 the double steps run as written; a value that cannot
// give a digit (infinite or NaN after an overflow) gives "0".
class DigitSource {
public:
    explicit DigitSource(double scaled) noexcept : m_d(scaled), m_n(0), m_int(false) { settle(); }
    char next() noexcept {
        if (m_int) {
            const char c = static_cast<char>('0' + m_n % 10u);
            m_n /= 10u;
            return c;
        }
        const double d = std::floor(std::fmod(m_d, 10.0));
        const char c = (d >= 0 && d <= 9) ? static_cast<char>('0' + static_cast<int>(d)) : '0';
        m_d /= 10;
        settle();
        return c;
    }

private:
    void settle() noexcept {
        if (m_d >= 0 && m_d < 9007199254740992.0) { // 2^53
            m_n = static_cast<uint64_t>(m_d);
            m_int = true;
        }
    }

    double m_d;
    uint64_t m_n;
    bool m_int;
};

// Right-to-left character buffer: 512 bytes on the stack, larger on the heap.
class WorkBuffer {
public:
    explicit WorkBuffer(size_t cap) : m_buf(m_stack) {
        if (cap > sizeof(m_stack)) {
            m_heap.reset(new char[cap]);
            m_buf = m_heap.get();
        }
        m_end = m_buf + cap;
        m_w = m_end;
    }
    void put(char c) noexcept { *--m_w = c; }
    const char* text() const noexcept { return m_w; }
    size_t length() const noexcept { return static_cast<size_t>(m_end - m_w); }

private:
    char m_stack[512];
    std::unique_ptr<char[]> m_heap;
    char* m_buf;
    char* m_end;
    char* m_w;
};

} // namespace ovra_format

using namespace ovra_format;

class ovStringFormatSpecifier::Out : public CodeBuffer {};

namespace {

void accumulate(int& n, unsigned int c) noexcept {
    n = n * 10 + static_cast<int>(c - '0');
    if (n > kMaxNumber)
        n = kMaxNumber;
}

void error(CodeBuffer& out) {
    out.ascii(kErrorText, kErrorLength);
}

// Whether the specifier at t[i] starts with "n$", n not 0 (has_position).
bool numbered(const unsigned int* t, size_t len, size_t i) noexcept {
    bool nonzero = false;
    for (++i; i < len && ovra_internal::is_ascii_digit(t[i]); ++i)
        nonzero = nonzero || t[i] != '0';
    return nonzero && i < len && t[i] == '$';
}

// Blanks or zeros in front of a body of `body` characters up to the width,
// with the sign: leftmost with zeros, next to the body with blanks, in front
// when there is no room. The sign is part of the width.
inline void pad(CodeBuffer& out, int width, bool zeros, size_t body, bool negative) {
    const size_t w = static_cast<size_t>(width);
    if (body >= w && !negative) // the usual field: nothing in front
        return;
    if (body < w) {
        const size_t n = w - body;
        if (zeros) {
            if (negative)
                out.push('-');
            out.fill('0', negative ? n - 1 : n);
        } else {
            out.fill(' ', negative ? n - 1 : n);
            if (negative)
                out.push('-');
        }
    } else if (negative) {
        out.push('-');
    }
}

bool is_integer(const ovStringFormatArg& a) noexcept {
    return a.kind() != ovFORMAT_ARG_DOUBLE && a.kind() != ovFORMAT_ARG_STRING;
}

bool is_wide(const ovStringFormatArg& a) noexcept {
    return a.kind() == ovFORMAT_ARG_INT64 || a.kind() == ovFORMAT_ARG_UINT64;
}

} // namespace

// ---- ovStringFormatSpecifier: parsing ------------------------------------

inline size_t ovStringFormatSpecifier::parse(const unsigned int* t, size_t len, size_t i) noexcept {
    size_t j = i + 1;
    bool finished = false;
    while (j < len) {
        if (ends_specifier(t[j++])) {
            finished = true;
            break;
        }
    }
    read(t + i, j - i);
    if (!finished)
        m_conversion = 0;
    return j;
}

// Reads code points where the text was once read as UTF-8 bytes: the same
// result, since every character looked for is ASCII. Past the end reads as 0.
void ovStringFormatSpecifier::read(const unsigned int* q, size_t n) noexcept {
    if (n == 2 && q[1] < 0x80 && !ovra_internal::is_ascii_digit(q[1]) && q[1] != '.') {
        // A bare conversion ("%d", "%s"): nothing else to read.
        m_conversion = static_cast<char>(q[1]);
        m_width = m_zero_pad = m_precision_given = m_precision = 0;
        m_has_position = m_position = 0;
        m_invalid = false;
        return;
    }
    const unsigned int* p = q + (n > 0 ? 1 : 0);
    const unsigned int* const e = q + n;
    int width = 0, zero_pad = 0, precision_given = 0, precision = 0;
    int has_position = 0, position = 0;
    // A leading number is a width, or an argument number when "$" follows.
    int num = 0;
    while (p < e && ovra_internal::is_ascii_digit(*p))
        accumulate(num, *p++);
    if (num != 0) {
        if (p >= e || *p != '$') {
            width = num;
            zero_pad = n > 1 && q[1] == '0' ? 1 : 0;
        } else {
            has_position = 1;
            position = num;
            ++p;
        }
    }
    // After an argument number, the "0" flag and the width come separately.
    if (has_position) {
        if (p < e && *p == '0') {
            zero_pad = 1;
            ++p;
        }
        while (p < e && ovra_internal::is_ascii_digit(*p))
            accumulate(width, *p++);
    }
    // A precision counts as given only when a digit follows the ".".
    if (p < e && *p == '.') {
        ++p;
        while (p < e && ovra_internal::is_ascii_digit(*p)) {
            accumulate(precision, *p++);
            precision_given = 1;
        }
    }
    // What is left is the conversion. A non-ASCII character is kept as its
    // first UTF-8 byte, as the byte-wise reading saw it; it is no conversion.
    const unsigned int c = p < e ? *p : 0u;
    if (c < 0x80) {
        m_conversion = static_cast<char>(c);
    } else {
        char bytes[4];
        ovra_internal::Utf8::put(c, ovra_internal::Utf8::size(c) - 1, bytes);
        m_conversion = bytes[0];
    }
    m_width = width;
    m_zero_pad = zero_pad;
    m_precision_given = precision_given;
    m_precision = precision;
    m_has_position = has_position;
    m_position = position;
    m_invalid = false;
}

// ---- ovStringFormatSpecifier: rendering ----------------------------------

// Takes the next argument when the conversion takes one, and renders it.
inline void ovStringFormatSpecifier::render(Out& out, ovStringFormatArgs& args) const {
    if (m_invalid) {
        error(out);
        return;
    }
    if (m_conversion == '%') {
        out.push('%');
        return;
    }
    if (!ends_specifier(static_cast<unsigned char>(m_conversion))) {
        error(out); // unknown conversion: no argument taken
        return;
    }
    ovStringFormatArg a;
    if (args.next(m_conversion, a))
        render_arg(out, a);
    else
        error(out); // no argument left
}

// An argument of the wrong kind is taken and shows the error text, so the
// specifiers after it still read their own arguments.
void ovStringFormatSpecifier::render_arg(Out& out, const ovStringFormatArg& a) const {
    switch (m_conversion) {
    case 's':
        if (a.kind() != ovFORMAT_ARG_STRING)
            error(out);
        else if (const ovString* str = a.string())
            string_field(out, str->convert(ovSTRING_UTF32), str->length());
        else
            string_field(out, nullptr, 0);
        return;
    case 'd':
        if (!is_integer(a)) {
            error(out);
        } else {
            // The argument's own width, read as signed.
            const int64_t v =
                is_wide(a)
                    ? static_cast<int64_t>(a.bits())
                    : static_cast<int64_t>(static_cast<int32_t>(static_cast<uint32_t>(a.bits())));
            decimal_field(out, v < 0 ? 0u - static_cast<uint64_t>(v) : static_cast<uint64_t>(v),
                          v < 0);
        }
        return;
    case 'u':
    case 'x':
    case 'X':
        if (!is_integer(a)) {
            error(out);
        } else {
            const uint64_t v = is_wide(a) ? a.bits() : static_cast<uint32_t>(a.bits());
            if (m_conversion == 'u')
                decimal_field(out, v, false);
            else
                hex_field(out, v, m_conversion == 'X');
        }
        return;
    case 'f':
    case 'e':
    case 'E':
    case 'g':
    case 'G':
        if (a.kind() == ovFORMAT_ARG_STRING)
            error(out);
        else
            double_field(out, a.as_double());
        return;
    default:
        error(out);
        return;
    }
}

// Cut to the precision, then right-aligned in the width.
void ovStringFormatSpecifier::string_field(Out& out, const unsigned int* p, size_t len) const {
    if (m_precision_given && len > static_cast<size_t>(m_precision))
        len = static_cast<size_t>(m_precision);
    if (len < static_cast<size_t>(m_width))
        out.fill(m_zero_pad ? '0' : ' ', static_cast<size_t>(m_width) - len);
    out.codes(p, len);
}

// Digits ("0" when there are none), zeros up to the precision, then the
// padding and sign.
void ovStringFormatSpecifier::chars_field(Out& out, const char* digits, size_t nd,
                                          bool negative) const {
    if (nd == 0) {
        digits = "0";
        nd = 1;
    }
    size_t body = nd;
    if (m_precision_given && body < static_cast<size_t>(m_precision))
        body = static_cast<size_t>(m_precision);
    pad(out, m_width, m_zero_pad != 0, body, negative);
    out.fill('0', body - nd);
    out.ascii(digits, nd);
}

void ovStringFormatSpecifier::decimal_field(Out& out, uint64_t magnitude, bool negative) const {
    char buf[20];
    char* w = buf + sizeof(buf);
    for (; magnitude; magnitude /= 10)
        *--w = static_cast<char>('0' + magnitude % 10);
    chars_field(out, w, static_cast<size_t>(buf + sizeof(buf) - w), negative);
}

// No "0x" prefix, ever.
void ovStringFormatSpecifier::hex_field(Out& out, uint64_t v, bool upper) const {
    const char* set = upper ? "0123456789ABCDEF" : "0123456789abcdef";
    char buf[16];
    char* w = buf + sizeof(buf);
    for (; v; v >>= 4)
        *--w = set[v & 0xF];
    chars_field(out, w, static_cast<size_t>(buf + sizeof(buf) - w), false);
}

// Digits come right to left from |v| scaled to an integer, as many as the
// decimal exponent x of |v| says. x is taken before rounding and never
// corrected: when rounding carries into a new leading digit (9.6 with "%.0f"),
// that digit is dropped. This is the formatter's kept behaviour.
void ovStringFormatSpecifier::double_field(Out& out, double v) const {
    const char conv = m_conversion;
    const bool upper = conv == 'E' || conv == 'G';
    if (!std::isfinite(v)) {
        const char* body = std::isnan(v) ? (upper ? "NAN" : "nan") : (upper ? "INF" : "inf");
        pad(out, m_width, false, 3, v < 0);
        out.ascii(body, 3);
        return;
    }
    const bool negative = v < 0; // so -0.0 has no sign
    const double a = std::fabs(v);
    const bool g_style = conv == 'g' || conv == 'G';
    const bool e_style = conv == 'e' || conv == 'E';
    int p = m_precision_given ? m_precision : 6;
    if (g_style && m_precision_given && p == 0)
        p = 1;
    const int x = v == 0 ? 0 : floor_log10(a);
    const bool exponent = e_style || (g_style && (x < -4 || x >= p));
    // Room for every digit, the point and the exponent; the padding goes
    // straight to the output.
    WorkBuffer wb(static_cast<size_t>(p) + static_cast<size_t>(x > 0 ? x : 0) + 16);
    if (exponent) { // always two exponent digits: 123 shows as 23
        const unsigned int ax = static_cast<unsigned int>(x < 0 ? -x : x);
        wb.put(static_cast<char>('0' + ax % 10));
        wb.put(static_cast<char>('0' + (ax / 10) % 10));
        wb.put(x >= 0 ? '+' : '-');
        wb.put(upper ? 'E' : 'e');
    }
    if (!g_style && !e_style) {
        // Fixed: every digit down to the precision. When |v| x 10^p
        // overflows, the digits after the point are 0 and the others come
        // from |v| itself.
        double scaled = scale(a, p) + 0.5;
        const bool overflow = !std::isfinite(scaled);
        if (overflow)
            scaled = a + 0.5;
        DigitSource digits(scaled);
        const int count = x >= 0 ? x + p + 1 : p + 1;
        for (int i = 0; i < count; ++i) {
            if (i == p && p >= 1)
                wb.put('.');
            if (overflow && i < p) {
                wb.put('0');
                continue;
            }
            wb.put(digits.next());
        }
    } else if (e_style) {
        // One digit before the point, p after.
        DigitSource digits(scale(a, p - x) + 0.5);
        for (int i = 0; i <= p; ++i) {
            if (i == p && p >= 1)
                wb.put('.');
            wb.put(digits.next());
        }
    } else if (v == 0) {
        wb.put('0');
    } else if (exponent) {
        // p significant digits without trailing zeros; a leading digit that
        // rounding turned into 0 goes with them.
        DigitSource digits(scale(a, p - x - 1) + 0.5);
        bool written = false;
        for (int i = 0; i < p; ++i) {
            const char d = digits.next();
            if (i == p - 1 && p >= 2 && written)
                wb.put('.');
            if (d != '0' || written) {
                wb.put(d);
                written = true;
            }
        }
    } else {
        // p significant digits: from the units leftwards always, to their
        // right without trailing zeros.
        DigitSource digits(scale(a, p - x - 1) + 0.5);
        const int count = x < 0 ? p - x : p;
        const int units = p - x - 1;
        bool written = false;
        for (int i = 0; i < count; ++i) {
            const char d = digits.next();
            if (i == units && written)
                wb.put('.');
            if (i >= units || d != '0' || written) {
                wb.put(d);
                written = true;
            }
        }
    }
    pad(out, m_width, m_zero_pad != 0, wb.length(), negative);
    out.ascii(wb.text(), wb.length());
}

// ---- ovStringFormatArgs ----------------------------------------------------

ovStringFormatArgs::ovStringFormatArgs() noexcept
    : m_args(nullptr), m_count(0), m_used(0), m_is_list(false), m_list() {}

ovStringFormatArgs::ovStringFormatArgs(const ovStringFormatArg* args, int count) noexcept
    : m_args(args), m_count(args && count > 0 ? count : 0), m_used(0), m_is_list(false), m_list() {}

ovStringFormatArgs::ovStringFormatArgs(va_list list) noexcept
    : m_args(nullptr), m_count(0), m_used(0), m_is_list(true) {
    va_copy(m_list, list);
}

ovStringFormatArgs::~ovStringFormatArgs() {
    if (m_is_list)
        va_end(m_list);
}

bool ovStringFormatArgs::next(char conversion, ovStringFormatArg& out) noexcept {
    if (!m_is_list) {
        if (m_used >= m_count)
            return false;
        out = m_args[m_used++];
        return true;
    }
    switch (conversion) {
    case 'd':
        out = ovStringFormatArg(va_arg(m_list, int));
        break;
    case 'u':
    case 'x':
    case 'X':
        out = ovStringFormatArg(va_arg(m_list, unsigned int));
        break;
    case 'f':
    case 'e':
    case 'E':
    case 'g':
    case 'G':
        out = ovStringFormatArg(va_arg(m_list, double));
        break;
    case 's':
        out = ovStringFormatArg::string_pointer(va_arg(m_list, const ovString*));
        break;
    default:
        return false;
    }
    ++m_used;
    return true;
}

// ---- ovStringFormatSpecifier ---------------------------------------------

ovStringFormatSpecifier::ovStringFormatSpecifier(const ovString& fmt, ovStringPos& pos)
    : ovStringFormatSpecifier() {
    const size_t len = fmt.length();
    const size_t i = pos.index();
    if (i >= len)
        return;
    size_t step = parse(fmt.convert(ovSTRING_UTF32), len, i) - i;
    while (step > 0) {
        const int s = step > static_cast<size_t>(INT_MAX) ? INT_MAX : static_cast<int>(step);
        pos += s;
        step -= static_cast<size_t>(s);
    }
}

void ovStringFormatSpecifier::setup(const ovString& text) {
    read(text.convert(ovSTRING_UTF32), text.length());
}

// The members below each render one field on their own, with the renderers
// the whole format uses.

ovString ovStringFormatSpecifier::format(ovStringFormatArgs& args) const {
    Out out;
    render(out, args);
    return make_string(out.data(), out.size());
}

ovString ovStringFormatSpecifier::format_string(const ovString& s) const {
    Out out;
    string_field(out, s.convert(ovSTRING_UTF32), s.length());
    return make_string(out.data(), out.size());
}

ovString ovStringFormatSpecifier::format_int(int v) const {
    const uint64_t magnitude =
        v < 0 ? 0u - static_cast<uint64_t>(static_cast<int64_t>(v)) : static_cast<uint64_t>(v);
    Out out;
    decimal_field(out, magnitude, v < 0);
    return make_string(out.data(), out.size());
}

ovString ovStringFormatSpecifier::format_unsigned_int(unsigned int v) const {
    Out out;
    decimal_field(out, v, false);
    return make_string(out.data(), out.size());
}

ovString ovStringFormatSpecifier::format_hex(unsigned int v, int upper) const {
    Out out;
    hex_field(out, v, upper != 0);
    return make_string(out.data(), out.size());
}

ovString ovStringFormatSpecifier::format_double(double v) const {
    Out out;
    double_field(out, v);
    return make_string(out.data(), out.size());
}

ovString ovStringFormatSpecifier::format_int_with_sign(unsigned int magnitude, int negative) const {
    Out out;
    decimal_field(out, magnitude, negative != 0);
    return make_string(out.data(), out.size());
}

ovString ovStringFormatSpecifier::format_chars_with_sign(const char* digits, int negative) const {
    Out out;
    chars_field(out, digits ? digits : "", digits ? std::strlen(digits) : 0, negative != 0);
    return make_string(out.data(), out.size());
}

// ---- ovStringFormatter -----------------------------------------------------

namespace {

// The index of the first "%" in t[i, len), or len.
inline size_t find_percent(const unsigned int* t, size_t i, size_t len) noexcept {
    for (; i + 4 <= len; i += 4) {
        const unsigned mask = ovra_internal::simd::equal32(ovra_internal::simd::load(t + i), '%');
        if (mask)
            return i + ovra_internal::lowest_bit64(mask);
    }
    while (i < len && t[i] != '%')
        ++i;
    return i;
}

// "%" signs, "%%" counted once: at each "%" add 1, then step 2 past "%%",
// else 1.
size_t count_specifiers(const unsigned int* t, size_t len) noexcept {
    size_t n = 0;
    for (size_t i = find_percent(t, 0, len); i < len; i = find_percent(t, i, len)) {
        ++n;
        i += (i + 1 < len && t[i + 1] == '%') ? 2 : 1;
    }
    return n;
}

struct Range {
    size_t begin;
    size_t end;
};

// Where one specifier's output lies in the render buffer.
struct Slot {
    size_t offset;
    size_t length;
    bool set;
};

} // namespace

int ovStringFormatter::calculate_num_specifiers(const ovString& fmt) const {
    const size_t n = count_specifiers(fmt.convert(ovSTRING_UTF32), fmt.length());
    return n > static_cast<size_t>(INT_MAX) ? INT_MAX : static_cast<int>(n);
}

ovString ovStringFormatter::format_with_list(const ovString& fmt, ovStringFormatArgs& args) const {
    const unsigned int* t = fmt.convert(ovSTRING_UTF32);
    const size_t len = fmt.length();
    const size_t first = find_percent(t, 0, len);
    if (first >= len) // the text itself, shared; never failed
        return fmt.invalid() ? ovString(ovSTRING_EMPTY) : ovString(fmt);

    if (!numbered(t, len, first)) {
        // Not positional: each specifier is rendered in its place as the walk
        // reaches it, since index order is then text order, and the pieces go
        // straight to the output. A numbered specifier here renders the error
        // text and takes no argument.
        ovStringFormatSpecifier::Out out;
        size_t k = 0;
        size_t s = 0;
        bool recount = false;
        for (size_t i = first; i < len; i = find_percent(t, s, len)) {
            out.codes(t + s, i - s);
            ovStringFormatSpecifier field;
            s = field.parse(t, len, i);
            // A specifier whose scan ended at a "%" other than its second
            // character ("%5%", "%.x%") is where the count of "%" signs and
            // the specifiers parsed can part.
            recount = recount || (t[s - 1] == '%' && s - i > 2);
            if (field.m_has_position)
                error(out);
            else
                field.render(out, args);
            ++k;
        }
        out.codes(t + s, len - s);
        // Slots counted but never parsed come after the tail, each showing the
        // error text.
        if (recount) {
            for (const size_t n = count_specifiers(t, len); k < n; ++k)
                error(out);
        }
        return make_string(out.data(), out.size());
    }

    const size_t n = count_specifiers(t, len);

    SmallArray<Range, 17> pieces(n + 1, Range{0, 0});
    SmallArray<ovStringFormatSpecifier, 16> fields(n, ovStringFormatSpecifier());
    SmallArray<int, 16> order(n); // positional mode only
    SmallArray<Slot, 16> results(n, Slot{0, 0, false});
    ovStringFormatSpecifier::Out out; // every rendered field, one after another

    // Split the format into literal pieces and specifiers. The parse never finds more specifiers
    // than were counted (each extra "%" it swallows was counted); the k < n test only makes that
    // plain.
    bool positional = false;
    size_t k = 0;
    size_t s = 0;
    // The walk steps one code point at a time outside specifiers; it jumps
    // to the next "%" instead, which finds the same positions.
    for (size_t i = find_percent(t, 0, len);; i = find_percent(t, i, len)) {
        if (i >= len) {
            pieces[k] = Range{s, len}; // the tail piece
            break;
        }
        if (k < n) {
            pieces[k] = Range{s, i};
            if (!positional && !numbered(t, len, i)) {
                // The usual case, parsed straight into its slot.
                i = s = fields[k].parse(t, len, i);
                ++k;
                continue;
            }
            ovStringFormatSpecifier field;
            const size_t next = field.parse(t, len, i);
            if (field.m_has_position && k == 0) {
                positional = true;
                order.fill(n, -1);
            }
            if (field.m_has_position && !positional) {
                // Numbered after an unnumbered first specifier: its slot keeps
                // the invalid specifier (error text, no argument), so no slot
                // is ever read with another specifier's kind of argument.
            } else if (field.m_has_position) {
                const size_t number = static_cast<size_t>(field.m_position);
                if (number >= 1 && number <= n) {
                    fields[number - 1] = field;
                    order[number - 1] = static_cast<int>(k);
                } else {
                    // A number with no slot: the error text in place.
                    const size_t at = out.size();
                    error(out);
                    results[k] = Slot{at, out.size() - at, true};
                }
            } else if (positional) {
                // Unnumbered in positional mode: "%%" in place, else the error text.
                const size_t at = out.size();
                if (field.m_conversion == '%')
                    out.push('%');
                else
                    error(out);
                results[k] = Slot{at, out.size() - at, true};
            } else {
                fields[k] = field;
            }
            ++k;
            i = s = next;
        } else {
            ++i; // more specifiers than counted cannot happen; read as text
        }
    }

    // Render in index order, so arguments are taken in number order whatever
    // order the specifiers have in the text.
    for (size_t i = 0; i < n; ++i) {
        size_t slot = i;
        if (positional) {
            if (order[i] < 0)
                continue; // a gap: nothing to render, no argument taken
            slot = static_cast<size_t>(order[i]);
        }
        const size_t at = out.size();
        fields[i].render(out, args);
        results[slot] = Slot{at, out.size() - at, true};
    }

    // Join once, at the exact size: piece 0, then result i and piece i + 1. A slot that nothing
    // rendered into (a repeated number) shows the error text.
    size_t total = 0;
    for (size_t i = 0; i <= n; ++i)
        total += pieces[i].end - pieces[i].begin;
    for (size_t i = 0; i < n; ++i)
        total += results[i].set ? results[i].length : kErrorLength;
    unsigned int* w;
    ovString result = ovra_internal::TextBuilder::with_room(total, w);
    const unsigned int* rendered = out.data();
    for (size_t i = 0;; ++i) {
        const size_t pn = pieces[i].end - pieces[i].begin;
        copy_codes(w, t + pieces[i].begin, pn);
        w += pn;
        if (i == n)
            break;
        if (results[i].set) {
            copy_codes(w, rendered + results[i].offset, results[i].length);
            w += results[i].length;
        } else {
            for (size_t c = 0; c < kErrorLength; ++c)
                *w++ = static_cast<unsigned char>(kErrorText[c]);
        }
    }
    return result;
}

ovString ovStringFormatter::format_with_va_list(const ovString& fmt, va_list list) const {
    ovStringFormatArgs args(list);
    return format_with_list(fmt, args);
}

// ---- ovStringBuilder -------------------------------------------------------

namespace {

// ceil(log2(expected)) computed exactly; 0 for expected <= 1.
int size_exponent(int expected) noexcept {
    int k = 0;
    while (k < 31 && (1LL << k) < static_cast<long long>(expected))
        ++k;
    return k;
}

} // namespace

ovStringBuilder::ovStringBuilder() : m_pieces(0, 5, 10) {}

ovStringBuilder::ovStringBuilder(int expected) : m_pieces(size_exponent(expected), 5, 10) {}

void ovStringBuilder::append(const ovString& s) {
    m_pieces.append(s);
}

ovString ovStringBuilder::build() const {
    const int count = m_pieces.size();
    size_t total = 0;
    for (int i = 0; i < count; ++i)
        total += m_pieces[i].length();
    unsigned int* w;
    ovString result = ovra_internal::TextBuilder::with_room(total, w);
    for (int i = 0; i < count; ++i) {
        const ovString& piece = m_pieces[i];
        const size_t n = piece.length(); // a null piece has length 0
        if (n) {
            std::memcpy(w, piece.convert(ovSTRING_UTF32), n * sizeof(unsigned int));
            w += n;
        }
    }
    return result;
}
