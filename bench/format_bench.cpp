// ovStringFormatter beside the C runtime: formatting
// "%d items, %s, %8.3f, %x" into an ovString, against snprintf of the same
// format followed by building an ovString from its UTF-8 result, and (when fmt
// is installed) against fmt::format of the same fields into a std::string.
// All run 100,000 times in the same process, so the figures compare directly.
#include "ovra/ovStringFormat.h"

#include <benchmark/benchmark.h>

#include <cstdio>
#include <string>

#if defined(OVRA_BENCH_HAVE_FMT)
#include <fmt/format.h>
#endif

namespace {

const int kIterations = 100000;

const ovString& format_text() {
    static const ovString f = OVSTRING("%d items, %s, %8.3f, %x");
    return f;
}

const ovString& name() {
    static const ovString s = OVSTRING("widgets");
    return s;
}

void BM_ovStringFormatter(benchmark::State& state) {
    const ovStringFormatter f;
    const ovString& fmt = format_text();
    const ovString& n = name();
    int i = 0;
    for (auto _ : state) {
        ovString out = f.format(fmt, 42 + (i & 7), n, 3.14159, 0xBEEFu);
        benchmark::DoNotOptimize(out);
        ++i;
    }
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_ovStringFormatter)->Iterations(kIterations);

void BM_snprintf_then_ovString(benchmark::State& state) {
    const char* name8 = name().convert(ovSTRING_UTF8);
    int i = 0;
    for (auto _ : state) {
        char buf[128];
        std::snprintf(buf, sizeof(buf), "%d items, %s, %8.3f, %x", 42 + (i & 7), name8, 3.14159,
                      0xBEEFu);
        int st;
        ovString out(ovSTRING_UTF8, buf, st);
        benchmark::DoNotOptimize(out);
        ++i;
    }
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_snprintf_then_ovString)->Iterations(kIterations);

#if defined(OVRA_BENCH_HAVE_FMT)
// The reference: the same fields with fmt's own format language, into a
// std::string.
void BM_fmt_format_std_string(benchmark::State& state) {
    const std::string name8 = name().convert(ovSTRING_UTF8);
    int i = 0;
    for (auto _ : state) {
        std::string out =
            fmt::format("{} items, {}, {:8.3f}, {:x}", 42 + (i & 7), name8, 3.14159, 0xBEEFu);
        benchmark::DoNotOptimize(out);
        ++i;
    }
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_fmt_format_std_string)->Iterations(kIterations);
#endif

// The C entry, reading the same values from a va_list.
ovString va_format(const ovStringFormatter& f, const ovString& fmt, ...) {
    va_list list;
    va_start(list, fmt);
    ovString out = f.format_with_va_list(fmt, list);
    va_end(list);
    return out;
}

void BM_ovStringFormatter_va_list(benchmark::State& state) {
    const ovStringFormatter f;
    const ovString& fmt = format_text();
    const ovString* n = &name();
    int i = 0;
    for (auto _ : state) {
        ovString out = va_format(f, fmt, 42 + (i & 7), n, 3.14159, 0xBEEFu);
        benchmark::DoNotOptimize(out);
        ++i;
    }
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_ovStringFormatter_va_list)->Iterations(kIterations);

// The builder joining eight pieces.
void BM_ovStringBuilder_8_pieces(benchmark::State& state) {
    const ovString pieces[] = {OVSTRING("alpha"), OVSTRING(", "), OVSTRING("beta"),  OVSTRING(", "),
                               OVSTRING("gamma"), OVSTRING(", "), OVSTRING("delta"), OVSTRING(".")};
    for (auto _ : state) {
        ovStringBuilder b(8);
        for (const ovString& p : pieces)
            b += p;
        ovString out = b.build();
        benchmark::DoNotOptimize(out);
    }
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_ovStringBuilder_8_pieces)->Iterations(kIterations);

} // namespace

BENCHMARK_MAIN();
