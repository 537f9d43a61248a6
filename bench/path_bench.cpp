// ovPathName's normalising measured beside a plain std::string loop that
// applies the same text rules, on the same texts in the same run.
#include "ovra/ovPathName.h"

#include <benchmark/benchmark.h>

#include <cstddef>
#include <cstdint>
#include <random>
#include <string>
#include <vector>

namespace {

constexpr size_t kTexts = 100000;

bool is_sep(char c) {
    return c == '/' || c == '\\';
}

// The reference: what a caller would write by hand on std::string.
std::string plain_normalise(const std::string& in) {
    if (in.empty())
        return ".";
    const size_t n = in.size();
    size_t root = 0;
    if (is_sep(in[0]))
        root = 1;
    if (n >= 2 && is_sep(in[0]) && is_sep(in[1]))
        root = 2;
    if (n >= 3 && in[1] == ':' && is_sep(in[2]))
        root = 3;
    size_t end = n;
    while (end > root && is_sep(in[end - 1]))
        --end;
    std::string out;
    out.reserve(end);
    for (size_t i = 0; i < root; ++i)
        out += is_sep(in[i]) ? '/' : in[i];
    bool after_sep = false;
    for (size_t i = root; i < end; ++i) {
        const bool sep = is_sep(in[i]);
        if (!(sep && after_sep))
            out += sep ? '/' : in[i];
        after_sep = sep;
    }
    return out;
}

// Drive letters, shares, rooted and relative texts, with single, doubled
// and trailing separators of both kinds.
std::vector<std::string> make_windows_texts() {
    std::mt19937 rng(20240611u);
    std::uniform_int_distribution<int> pct(0, 99);
    std::uniform_int_distribution<int> letter(0, 25);
    std::uniform_int_distribution<int> word_len(2, 10);
    std::uniform_int_distribution<int> depth(0, 5);
    const char* const seps[] = {"\\", "\\", "/", "\\\\", "//"};
    std::uniform_int_distribution<int> pick_sep(0, 4);
    auto word = [&] {
        std::string w;
        for (int i = word_len(rng); i > 0; --i)
            w += static_cast<char>((pct(rng) < 20 ? 'A' : 'a') + letter(rng));
        if (pct(rng) < 25)
            w += ".txt";
        return w;
    };
    std::vector<std::string> texts;
    texts.reserve(kTexts);
    while (texts.size() < kTexts) {
        std::string t;
        const int kind = pct(rng);
        if (kind < 35)
            t = std::string(1, static_cast<char>('C' + letter(rng) % 4)) + ":" +
                seps[pick_sep(rng)];
        else if (kind < 55)
            t = "\\\\" + word() + "\\" + word();
        else if (kind < 65)
            t = "\\";
        else if (kind < 70)
            t = ""; // becomes "."
        for (int d = depth(rng); d > 0; --d) {
            if (!t.empty() && !is_sep(t.back()))
                t += seps[pick_sep(rng)];
            t += word();
        }
        if (pct(rng) < 30)
            t += seps[pick_sep(rng)];
        texts.push_back(t);
    }
    return texts;
}

struct Input {
    std::vector<std::string> texts;
    std::vector<ovString> strings; // the same texts, built up front
    int64_t bytes = 0;
    std::string disagreement; // empty when ovPathName and the loop agree
};

Input make_input(std::vector<std::string> texts) {
    Input in;
    in.texts = std::move(texts);
    for (const std::string& t : in.texts) {
        int st = 0;
        in.strings.emplace_back(ovSTRING_UTF8, t.c_str(), st);
        in.bytes += static_cast<int64_t>(t.size());
    }
    for (size_t i = 0; i < in.texts.size() && in.disagreement.empty(); ++i) {
        const ovPathName p(in.strings[i]);
        if (plain_normalise(in.texts[i]) != p.string().convert(ovSTRING_UTF8))
            in.disagreement = "ovPathName and the plain loop differ on \"" + in.texts[i] + "\"";
    }
    return in;
}

// Built on first use, so listing the benchmarks stays cheap.
const Input& windows_input() {
    static const Input in = make_input(make_windows_texts());
    return in;
}

// Texts that are already normal: the common case of paths handed on.
const Input& normal_input() {
    static const Input in = [] {
        std::vector<std::string> texts;
        for (const std::string& t : windows_input().texts)
            texts.push_back(plain_normalise(t));
        return make_input(std::move(texts));
    }();
    return in;
}

void bench_ovpathname(benchmark::State& state, const Input& (*input)()) {
    const Input& in = input();
    if (!in.disagreement.empty()) {
        state.SkipWithError(in.disagreement.c_str());
        return;
    }
    for (auto _ : state) {
        for (const ovString& s : in.strings) {
            const ovPathName p(s);
            benchmark::DoNotOptimize(p.string().convert(ovSTRING_UTF32));
        }
    }
    state.SetItemsProcessed(static_cast<int64_t>(state.iterations()) *
                            static_cast<int64_t>(in.texts.size()));
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * in.bytes);
}

void bench_plain(benchmark::State& state, const Input& (*input)()) {
    const Input& in = input();
    if (!in.disagreement.empty()) {
        state.SkipWithError(in.disagreement.c_str());
        return;
    }
    for (auto _ : state) {
        for (const std::string& t : in.texts) {
            const std::string p = plain_normalise(t);
            benchmark::DoNotOptimize(p.data());
        }
    }
    state.SetItemsProcessed(static_cast<int64_t>(state.iterations()) *
                            static_cast<int64_t>(in.texts.size()));
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * in.bytes);
}

BENCHMARK_CAPTURE(bench_ovpathname, windows_100k, windows_input)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(bench_plain, windows_100k, windows_input)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(bench_ovpathname, normal_100k, normal_input)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(bench_plain, normal_100k, normal_input)->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();
