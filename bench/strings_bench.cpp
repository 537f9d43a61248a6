// ovString's UTF conversions measured beside glibc iconv doing the same work,
// so every figure has a reference taken in the same run on the same machine.
#include "ovra/ovString.h"

#include <benchmark/benchmark.h>

#include <iconv.h>

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
    // terminator; sets `used` to the bytes written. Null on any iconv error.
    std::unique_ptr<char[]> run(const void* in, size_t n, size_t cap, size_t& used) {
        std::unique_ptr<char[]> buf(new char[cap + 4]);
        iconv(m_cd, nullptr, nullptr, nullptr, nullptr);
        char* src = const_cast<char*>(static_cast<const char*>(in));
        size_t left = n;
        char* dst = buf.get();
        size_t room = cap;
        if (iconv(m_cd, &src, &left, &dst, &room) == static_cast<size_t>(-1) || left != 0)
            return nullptr;
        std::memset(dst, 0, 4);
        used = cap - room;
        return buf;
    }

private:
    iconv_t m_cd;
};

enum class Op { FromUtf8, ToUtf8, ToUtf16 };

const char* op_name(Op op) {
    switch (op) {
    case Op::FromUtf8:
        return "BM_FromUtf8";
    case Op::ToUtf8:
        return "BM_ToUtf8";
    case Op::ToUtf16:
        return "BM_ToUtf16";
    }
    return "?";
}

Iconv* open_for(Op op) {
    switch (op) {
    case Op::FromUtf8:
        return new Iconv("UTF-32LE", "UTF-8");
    case Op::ToUtf8:
        return new Iconv("UTF-8", "UTF-32LE");
    case Op::ToUtf16:
        return new Iconv("UTF-16LE", "UTF-32LE");
    }
    return nullptr;
}

// Worst-case output bytes, as a caller of iconv must allocate without a counting pass.
size_t out_cap(Op op, const std::string& text, const ovString& s) {
    return op == Op::FromUtf8 ? 4 * (text.size() + 1) : 4 * s.length() + 4;
}

// What the ovString side produces for one text, as bytes, for the agreement check.
bool ovstring_bytes(Op op, const std::string& text, const ovString& pre, std::string& out) {
    switch (op) {
    case Op::FromUtf8: {
        int st = 1;
        ovString s(ovSTRING_UTF8, text.c_str(), st);
        if (st != 0 || s.failed())
            return false;
        out.assign(reinterpret_cast<const char*>(s.convert(ovSTRING_UTF32)), 4 * s.length());
        return true;
    }
    case Op::ToUtf8: {
        ovString c(pre);
        out.assign(c.convert(ovSTRING_UTF8));
        return true;
    }
    case Op::ToUtf16: {
        ovString c(pre);
        const ovChar16* p = c.convert(ovSTRING_UTF16);
        size_t n = 0;
        while (p[n])
            ++n;
        out.assign(reinterpret_cast<const char*>(p), 2 * n);
        return true;
    }
    }
    return false;
}

const void* iconv_source(Op op, const std::string& text, const ovString& pre, size_t& n) {
    if (op == Op::FromUtf8) {
        n = text.size();
        return text.data();
    }
    n = 4 * pre.length();
    return pre.convert(ovSTRING_UTF32);
}

// Empty when both sides agree on every text; worked out once per pair.
const std::string& disagreement(Op op, int input) {
    static std::map<std::pair<int, int>, std::string> cache;
    const auto key = std::make_pair(static_cast<int>(op), input);
    auto it = cache.find(key);
    if (it != cache.end())
        return it->second;
    std::string why;
    std::unique_ptr<Iconv> cv(open_for(op));
    const std::vector<std::string>& texts = inputs()[input].texts;
    const std::vector<ovString>& pre = built(input);
    if (!cv->ok())
        why = "iconv_open failed";
    for (size_t i = 0; why.empty() && i < texts.size(); ++i) {
        std::string ours;
        if (!ovstring_bytes(op, texts[i], pre[i], ours)) {
            why = "ovString failed on text " + std::to_string(i);
            break;
        }
        size_t n = 0;
        const void* src = iconv_source(op, texts[i], pre[i], n);
        size_t used = 0;
        std::unique_ptr<char[]> theirs = cv->run(src, n, out_cap(op, texts[i], pre[i]), used);
        if (!theirs)
            why = "iconv failed on text " + std::to_string(i);
        else if (used != ours.size() || std::memcmp(theirs.get(), ours.data(), used) != 0)
            why = "ovString and iconv differ on text " + std::to_string(i);
    }
    return cache.emplace(key, why).first->second;
}

void bench_ovstring(benchmark::State& state, Op op, int input) {
    const std::string& why = disagreement(op, input);
    if (!why.empty()) {
        state.SkipWithError(why.c_str());
        return;
    }
    const std::vector<std::string>& texts = inputs()[input].texts;
    const std::vector<ovString>& pre = built(input);
    switch (op) {
    case Op::FromUtf8:
        for (auto _ : state) {
            for (const std::string& t : texts) {
                int st;
                ovString s(ovSTRING_UTF8, t.c_str(), st);
                benchmark::DoNotOptimize(st);
                benchmark::DoNotOptimize(s.convert(ovSTRING_UTF32));
            }
        }
        break;
    case Op::ToUtf8:
        for (auto _ : state) {
            for (const ovString& s : pre) {
                ovString c(s);
                benchmark::DoNotOptimize(c.convert(ovSTRING_UTF8));
            }
        }
        break;
    case Op::ToUtf16:
        for (auto _ : state) {
            for (const ovString& s : pre) {
                ovString c(s);
                benchmark::DoNotOptimize(c.convert(ovSTRING_UTF16));
            }
        }
        break;
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * inputs()[input].bytes);
}

void bench_iconv(benchmark::State& state, Op op, int input) {
    const std::string& why = disagreement(op, input);
    if (!why.empty()) {
        state.SkipWithError(why.c_str());
        return;
    }
    const std::vector<std::string>& texts = inputs()[input].texts;
    const std::vector<ovString>& pre = built(input);
    // Sources and sizes fixed up front so the loop times iconv alone.
    struct Job {
        const void* src;
        size_t n;
        size_t cap;
    };
    std::vector<Job> jobs;
    for (size_t i = 0; i < texts.size(); ++i) {
        Job j;
        j.src = iconv_source(op, texts[i], pre[i], j.n);
        j.cap = out_cap(op, texts[i], pre[i]);
        jobs.push_back(j);
    }
    std::unique_ptr<Iconv> cv(open_for(op));
    for (auto _ : state) {
        for (const Job& j : jobs) {
            size_t used = 0;
            std::unique_ptr<char[]> out = cv->run(j.src, j.n, j.cap, used);
            if (!out) {
                state.SkipWithError("iconv failed");
                break;
            }
            benchmark::DoNotOptimize(out.get());
            benchmark::ClobberMemory();
        }
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * inputs()[input].bytes);
}

// Registered op, then input, then ovString beside iconv, so pairs print together.
const bool registered = [] {
    for (Op op : {Op::FromUtf8, Op::ToUtf8, Op::ToUtf16}) {
        for (int input = 0; input < kInputCount; ++input) {
            const std::string tail = std::string("/") + kInputNames[input];
            benchmark::RegisterBenchmark((op_name(op) + std::string("/ovString") + tail).c_str(),
                                         bench_ovstring, op, input);
            benchmark::RegisterBenchmark((op_name(op) + std::string("/iconv") + tail).c_str(),
                                         bench_iconv, op, input);
        }
    }
    return true;
}();

} // namespace

BENCHMARK_MAIN();
