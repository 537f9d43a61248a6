// ovString's and ConvertUTF's UTF conversions measured beside glibc iconv and ICU
// doing the same work, so every figure has a reference taken in the same run on the
// same machine. Each reference is compared once with libovra's result and its rows
// report an error instead of a figure when they differ.
#include "ovra/ovString.h"

#include <benchmark/benchmark.h>

#if defined(__has_include)
#if __has_include(<iconv.h>)
#include <iconv.h>
#define OVRA_BENCH_HAVE_ICONV 1
#endif
#endif

#if defined(_WIN32)
#include "common/win32.h" // the system's own converter, as a reference under Windows
#endif

#if defined(OVRA_BENCH_HAVE_ICU)
#include <unicode/unistr.h>
#include <unicode/ustring.h>
#include <unicode/utf16.h>
#include <unicode/utf8.h>
#endif

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <map>
#include <memory>
#include <random>
#include <string>
#include <vector>

namespace {

constexpr size_t kWholeBytes = size_t(1) << 20;
constexpr size_t kPieceBytes = 64;

struct Input {
    const char* name;
    std::vector<std::string> texts; // one text, or the 64-byte pieces
    int64_t bytes;                  // UTF-8 bytes over all texts
};

void append_utf8(std::string& out, uint32_t c) {
    if (c < 0x80) {
        out += static_cast<char>(c);
    } else if (c < 0x800) {
        out += static_cast<char>(0xC0 | (c >> 6));
        out += static_cast<char>(0x80 | (c & 0x3F));
    } else if (c < 0x10000) {
        out += static_cast<char>(0xE0 | (c >> 12));
        out += static_cast<char>(0x80 | ((c >> 6) & 0x3F));
        out += static_cast<char>(0x80 | (c & 0x3F));
    } else {
        out += static_cast<char>(0xF0 | (c >> 18));
        out += static_cast<char>(0x80 | ((c >> 12) & 0x3F));
        out += static_cast<char>(0x80 | ((c >> 6) & 0x3F));
        out += static_cast<char>(0x80 | (c & 0x3F));
    }
}

std::string make_ascii() {
    std::mt19937 rng(20240501u);
    std::uniform_int_distribution<int> pct(0, 99);
    std::uniform_int_distribution<int> printable(0x21, 0x7E);
    std::string s;
    s.reserve(kWholeBytes);
    while (s.size() < kWholeBytes) {
        const int r = pct(rng);
        s += r < 2 ? '\n' : r < 17 ? ' ' : static_cast<char>(printable(rng));
    }
    return s;
}

std::string make_mixed() {
    std::mt19937 rng(20240502u);
    std::uniform_int_distribution<int> pct(0, 99);
    std::uniform_int_distribution<int> letter(0, 51);
    std::uniform_int_distribution<uint32_t> two(0x80, 0x7FF);
    std::uniform_int_distribution<uint32_t> three(0x800,
                                                  0xFFFF - 0x800); // surrogates cut out below
    std::uniform_int_distribution<uint32_t> four(0x10000, 0x10FFFF);
    std::string s;
    s.reserve(kWholeBytes);
    std::string ch;
    for (;;) {
        const int r = pct(rng);
        uint32_t c;
        if (r < 70) {
            if (pct(rng) < 15) {
                c = ' ';
            } else {
                const int l = letter(rng);
                c = static_cast<uint32_t>(l < 26 ? 'a' + l : 'A' + (l - 26));
            }
        } else if (r < 90) {
            c = two(rng);
        } else if (r < 98) {
            c = three(rng);
            if (c >= 0xD800)
                c += 0x800;
        } else {
            c = four(rng);
        }
        ch.clear();
        append_utf8(ch, c);
        if (s.size() + ch.size() > kWholeBytes)
            break;
        s += ch;
    }
    return s;
}

// Cuts never split a character, so every piece is valid UTF-8 on its own.
std::vector<std::string> cut(const std::string& s) {
    std::vector<std::string> pieces;
    size_t at = 0;
    while (at < s.size()) {
        size_t end = at + kPieceBytes < s.size() ? at + kPieceBytes : s.size();
        while (end < s.size() && (static_cast<unsigned char>(s[end]) & 0xC0) == 0x80)
            --end;
        pieces.emplace_back(s, at, end - at);
        at = end;
    }
    return pieces;
}

int64_t total_bytes(const std::vector<std::string>& texts) {
    int64_t n = 0;
    for (const std::string& t : texts)
        n += static_cast<int64_t>(t.size());
    return n;
}

// Built on first use rather than at registration, so listing benchmarks stays cheap.
const std::vector<Input>& inputs() {
    static const std::vector<Input> all = [] {
        const std::string ascii = make_ascii();
        const std::string mixed = make_mixed();
        std::vector<Input> v;
        v.push_back({"ascii_1MiB", {ascii}, 0});
        v.push_back({"ascii_64B", cut(ascii), 0});
        v.push_back({"mixed_1MiB", {mixed}, 0});
        v.push_back({"mixed_64B", cut(mixed), 0});
        for (Input& in : v)
            in.bytes = total_bytes(in.texts);
        return v;
    }();
    return all;
}

constexpr int kInputCount = 4;
const char* const kInputNames[kInputCount] = {"ascii_1MiB", "ascii_64B", "mixed_1MiB", "mixed_64B"};

// The prebuilt strings the output conversions start from.
const std::vector<ovString>& built(int input) {
    static std::map<int, std::vector<ovString>> cache;
    auto it = cache.find(input);
    if (it == cache.end()) {
        std::vector<ovString> v;
        for (const std::string& t : inputs()[input].texts) {
            int st = 0;
            v.emplace_back(ovSTRING_UTF8, t.c_str(), st);
        }
        it = cache.emplace(input, std::move(v)).first;
    }
    return it->second;
}

typedef std::basic_string<ovChar16> u16text;

// The UTF-16 forms of the inputs, for the conversions that start from UTF-16.
const std::vector<u16text>& utf16_of(int input) {
    static std::map<int, std::vector<u16text>> cache;
    auto it = cache.find(input);
    if (it == cache.end()) {
        std::vector<u16text> v;
        for (const ovString& s : built(input))
            v.emplace_back(s.convert(ovSTRING_UTF16));
        it = cache.emplace(input, std::move(v)).first;
    }
    return it->second;
}

enum class Op { FromUtf8, ToUtf8, ToUtf16, Utf8ToUtf16, Utf16ToUtf8, FromUtf16, FromUtf8ThenUtf16 };
enum class Lib { Ovra, Iconv, Icu, Win32 };

const char* op_name(Op op) {
    switch (op) {
    case Op::FromUtf8:
        return "BM_FromUtf8";
    case Op::ToUtf8:
        return "BM_ToUtf8";
    case Op::ToUtf16:
        return "BM_ToUtf16";
    case Op::Utf8ToUtf16:
        return "BM_Utf8ToUtf16";
    case Op::Utf16ToUtf8:
        return "BM_Utf16ToUtf8";
    case Op::FromUtf16:
        return "BM_FromUtf16";
    case Op::FromUtf8ThenUtf16:
        return "BM_FromUtf8ThenUtf16";
    }
    return "?";
}

// libovra's row is named after the entry point it times.
const char* lib_name(Op op, Lib lib) {
    switch (lib) {
    case Lib::Ovra:
        return op == Op::Utf8ToUtf16 || op == Op::Utf16ToUtf8 ? "ConvertUTF" : "ovString";
    case Lib::Iconv:
        return "iconv";
    case Lib::Icu:
        return "ICU";
    case Lib::Win32:
        return "Win32";
    }
    return "?";
}

// Where each conversion leaves its result: kept as bytes while the results are
// compared, only kept alive for the optimiser while timing.
struct Sink {
    bool keep = false;
    bool failed = false;
    std::string bytes;

    void take(const void* p, size_t n) {
        if (keep)
            bytes.assign(static_cast<const char*>(p), n);
        benchmark::DoNotOptimize(p);
    }
    void take_cstr(const char* p) { take(p, keep ? std::strlen(p) : 0); }
    void take_u16z(const ovChar16* p) {
        size_t n = 0;
        if (keep)
            while (p[n])
                ++n;
        take(p, 2 * n);
    }
};

#if defined(OVRA_BENCH_HAVE_ICONV)
class Iconv {
public:
    Iconv(const char* to, const char* from) : m_cd(iconv_open(to, from)) {}
    ~Iconv() {
        if (ok())
            iconv_close(m_cd);
    }
    Iconv(const Iconv&) = delete;
    Iconv& operator=(const Iconv&) = delete;
    bool ok() const { return m_cd != reinterpret_cast<iconv_t>(-1); }

    // Converts all of `in` into a new buffer of `cap` bytes plus a 4-byte
    // terminator, as a caller without a counting pass must allocate.
    void run(const void* in, size_t n, size_t cap, Sink& sink) {
        std::unique_ptr<char[]> buf(new char[cap + 4]);
        iconv(m_cd, nullptr, nullptr, nullptr, nullptr);
        char* src = const_cast<char*>(static_cast<const char*>(in));
        size_t left = n;
        char* dst = buf.get();
        size_t room = cap;
        if (iconv(m_cd, &src, &left, &dst, &room) == static_cast<size_t>(-1) || left != 0) {
            sink.failed = true;
            return;
        }
        std::memset(dst, 0, 4);
        sink.take(buf.get(), cap - room);
    }

private:
    iconv_t m_cd;
};

Iconv* iconv_for(Op op) {
    static std::map<Op, std::unique_ptr<Iconv>> open;
    std::unique_ptr<Iconv>& cv = open[op];
    if (!cv) {
        switch (op) {
        case Op::FromUtf8:
            cv.reset(new Iconv("UTF-32LE", "UTF-8"));
            break;
        case Op::ToUtf8:
            cv.reset(new Iconv("UTF-8", "UTF-32LE"));
            break;
        case Op::ToUtf16:
            cv.reset(new Iconv("UTF-16LE", "UTF-32LE"));
            break;
        default:
            break;
        }
    }
    return cv && cv->ok() ? cv.get() : nullptr;
}
#endif

// Which references this build can measure for an operation.
bool has_row(Op op, Lib lib) {
    switch (lib) {
    case Lib::Ovra:
        return true;
    case Lib::Iconv:
#if defined(OVRA_BENCH_HAVE_ICONV)
        return op == Op::FromUtf8 || op == Op::ToUtf8 || op == Op::ToUtf16;
#else
        return false;
#endif
    case Lib::Icu:
#if defined(OVRA_BENCH_HAVE_ICU)
        return op != Op::FromUtf8ThenUtf16; // that one is read beside Utf8ToUtf16's rows
#else
        return false;
#endif
    case Lib::Win32:
#if defined(_WIN32)
        return op == Op::Utf8ToUtf16 || op == Op::Utf16ToUtf8;
#else
        return false;
#endif
    }
    return false;
}

// One conversion of text i of an input, by one library, into the sink.
// False when the library has no such row.
bool convert_one(Op op, Lib lib, int input, size_t i, Sink& sink) {
    const std::string& t = inputs()[input].texts[i];
    const ovString& pre = built(input)[i];
    const u16text& u = utf16_of(input)[i];
    if (lib == Lib::Ovra) {
        int st = 0;
        switch (op) {
        case Op::FromUtf8: {
            ovString s(ovSTRING_UTF8, t.c_str(), st);
            sink.failed |= st != 0;
            sink.take(s.convert(ovSTRING_UTF32), 4 * s.length());
            return true;
        }
        case Op::ToUtf8: {
            ovString c(pre);
            sink.take_cstr(c.convert(ovSTRING_UTF8));
            return true;
        }
        case Op::ToUtf16: {
            ovString c(pre);
            sink.take_u16z(c.convert(ovSTRING_UTF16));
            return true;
        }
        case Op::Utf8ToUtf16: {
            ovOvra::ConvertUTF cv;
            const size_t n = cv.utf8_to_utf16(t.data(), t.size(), nullptr, 0);
            std::unique_ptr<ovChar16[]> out(new ovChar16[n]);
            cv.utf8_to_utf16(t.data(), t.size(), out.get(), n);
            sink.failed |= !cv.was_exact();
            sink.take(out.get(), 2 * (n - 1));
            return true;
        }
        case Op::Utf16ToUtf8: {
            ovOvra::ConvertUTF cv;
            const size_t n = cv.utf16_to_utf8(u.data(), u.size(), nullptr, 0);
            std::unique_ptr<char[]> out(new char[n]);
            cv.utf16_to_utf8(u.data(), u.size(), out.get(), n);
            sink.failed |= !cv.was_exact();
            sink.take(out.get(), n - 1);
            return true;
        }
        case Op::FromUtf16: {
            ovString s(ovSTRING_UTF16, u.data(), u.size(), st);
            sink.failed |= st != 0;
            sink.take(s.convert(ovSTRING_UTF32), 4 * s.length());
            return true;
        }
        case Op::FromUtf8ThenUtf16: {
            ovString s(ovSTRING_UTF8, t.c_str(), st);
            sink.failed |= st != 0;
            sink.take_u16z(s.convert(ovSTRING_UTF16));
            return true;
        }
        }
        return false;
    }
#if defined(OVRA_BENCH_HAVE_ICONV)
    if (lib == Lib::Iconv) {
        Iconv* cv = iconv_for(op);
        if (!cv)
            return false;
        if (op == Op::FromUtf8)
            cv->run(t.data(), t.size(), 4 * (t.size() + 1), sink);
        else
            cv->run(pre.convert(ovSTRING_UTF32), 4 * pre.length(), 4 * pre.length() + 4, sink);
        return true;
    }
#endif
#if defined(_WIN32)
    // Measured first, then converted, as ConvertUTF's callers do.
    if (lib == Lib::Win32 && op == Op::Utf8ToUtf16) {
        const int n = static_cast<int>(t.size());
        const int need =
            MultiByteToWideChar(CP_UTF8, MB_ERR_INVALID_CHARS, t.data(), n, nullptr, 0);
        std::unique_ptr<wchar_t[]> out(new wchar_t[static_cast<size_t>(need) + 1]);
        const int got =
            MultiByteToWideChar(CP_UTF8, MB_ERR_INVALID_CHARS, t.data(), n, out.get(), need);
        sink.failed |= got != need || (n > 0 && got == 0);
        out[static_cast<size_t>(got)] = 0;
        sink.take(out.get(), 2 * static_cast<size_t>(got));
        return true;
    }
    if (lib == Lib::Win32 && op == Op::Utf16ToUtf8) {
        const wchar_t* w = reinterpret_cast<const wchar_t*>(u.data());
        const int n = static_cast<int>(u.size());
        const int need = WideCharToMultiByte(CP_UTF8, 0, w, n, nullptr, 0, nullptr, nullptr);
        std::unique_ptr<char[]> out(new char[static_cast<size_t>(need) + 1]);
        const int got = WideCharToMultiByte(CP_UTF8, 0, w, n, out.get(), need, nullptr, nullptr);
        sink.failed |= got != need;
        out[static_cast<size_t>(got)] = 0;
        sink.take(out.get(), static_cast<size_t>(got));
        return true;
    }
#endif
#if defined(OVRA_BENCH_HAVE_ICU)
    if (lib == Lib::Icu) {
        const UChar* u_src = reinterpret_cast<const UChar*>(u.data());
        const int32_t u_len = static_cast<int32_t>(u.size());
        const UChar32* cp = reinterpret_cast<const UChar32*>(pre.convert(ovSTRING_UTF32));
        const int32_t cp_len = static_cast<int32_t>(pre.length());
        UErrorCode err = U_ZERO_ERROR;
        int32_t len = 0;
        switch (op) {
        case Op::FromUtf8: { // the U8_NEXT loop, into room for the worst case
            const uint8_t* s = reinterpret_cast<const uint8_t*>(t.data());
            const int32_t n = static_cast<int32_t>(t.size());
            std::unique_ptr<UChar32[]> out(new UChar32[static_cast<size_t>(n) + 1]);
            int32_t k = 0;
            for (int32_t at = 0; at < n;) {
                UChar32 c;
                U8_NEXT(s, at, n, c);
                sink.failed |= c < 0;
                out[k++] = c;
            }
            out[k] = 0;
            sink.take(out.get(), 4 * static_cast<size_t>(k));
            return true;
        }
        case Op::ToUtf8: { // the U8_APPEND loop
            const int32_t cap = 4 * cp_len + 1;
            std::unique_ptr<uint8_t[]> out(new uint8_t[static_cast<size_t>(cap)]);
            int32_t k = 0;
            UBool bad = false;
            for (int32_t at = 0; at < cp_len; ++at)
                U8_APPEND(out.get(), k, cap, cp[at], bad);
            sink.failed |= bad != 0;
            out[k] = 0;
            sink.take(out.get(), static_cast<size_t>(k));
            return true;
        }
        case Op::ToUtf16: {
            const int32_t cap = 2 * cp_len + 1;
            std::unique_ptr<UChar[]> out(new UChar[static_cast<size_t>(cap)]);
            u_strFromUTF32(out.get(), cap, &len, cp, cp_len, &err);
            sink.failed |= U_FAILURE(err) != 0;
            sink.take(out.get(), 2 * static_cast<size_t>(len));
            return true;
        }
        case Op::Utf8ToUtf16: {
            const icu::UnicodeString s = icu::UnicodeString::fromUTF8(
                icu::StringPiece(t.data(), static_cast<int32_t>(t.size())));
            sink.take(s.getBuffer(), 2 * static_cast<size_t>(s.length()));
            return true;
        }
        case Op::Utf16ToUtf8: {
            const int32_t cap = 3 * u_len + 1;
            std::unique_ptr<char[]> out(new char[static_cast<size_t>(cap)]);
            u_strToUTF8(out.get(), cap, &len, u_src, u_len, &err);
            sink.failed |= U_FAILURE(err) != 0;
            sink.take(out.get(), static_cast<size_t>(len));
            return true;
        }
        case Op::FromUtf16: {
            const int32_t cap = u_len + 1;
            std::unique_ptr<UChar32[]> out(new UChar32[static_cast<size_t>(cap)]);
            u_strToUTF32(out.get(), cap, &len, u_src, u_len, &err);
            sink.failed |= U_FAILURE(err) != 0;
            sink.take(out.get(), 4 * static_cast<size_t>(len));
            return true;
        }
        case Op::FromUtf8ThenUtf16:
            return false; // the same as Utf8ToUtf16's ICU row
        }
        return false;
    }
#endif
    return false;
}

// Empty when the library agrees with libovra on every text; worked out once per row.
std::string disagreement(Op op, Lib lib, int input) {
    const size_t count = inputs()[input].texts.size();
    for (size_t i = 0; i < count; ++i) {
        Sink ours, theirs;
        ours.keep = theirs.keep = true;
        convert_one(op, Lib::Ovra, input, i, ours);
        convert_one(op, lib, input, i, theirs);
        if (ours.failed || theirs.failed)
            return std::string(ours.failed ? "libovra" : lib_name(op, lib)) + " failed on text " +
                   std::to_string(i);
        if (ours.bytes != theirs.bytes)
            return std::string("libovra and ") + lib_name(op, lib) + " differ on text " +
                   std::to_string(i);
    }
    return std::string();
}

void bench(benchmark::State& state, Op op, Lib lib, int input) {
    const std::string why = disagreement(op, lib, input);
    if (!why.empty()) {
        state.SkipWithError(why.c_str());
        return;
    }
    const size_t count = inputs()[input].texts.size();
    Sink sink;
    for (auto _ : state)
        for (size_t i = 0; i < count; ++i)
            convert_one(op, lib, input, i, sink);
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * inputs()[input].bytes);
}

// Registered op, then input, then libovra beside its references, so rows print together.
// Bytes processed are always the UTF-8 bytes of the text, whichever form is converted.
const bool registered = [] {
    for (Op op : {Op::FromUtf8, Op::ToUtf8, Op::ToUtf16, Op::Utf8ToUtf16, Op::Utf16ToUtf8,
                  Op::FromUtf16, Op::FromUtf8ThenUtf16}) {
        for (int input = 0; input < kInputCount; ++input) {
            for (Lib lib : {Lib::Ovra, Lib::Icu, Lib::Iconv, Lib::Win32}) {
                if (!has_row(op, lib))
                    continue;
                const std::string name =
                    std::string(op_name(op)) + "/" + lib_name(op, lib) + "/" + kInputNames[input];
                benchmark::RegisterBenchmark(name.c_str(), bench, op, lib, input);
            }
        }
    }
    return true;
}();

} // namespace

BENCHMARK_MAIN();
