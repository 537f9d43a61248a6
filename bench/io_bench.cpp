// Input files and byte order beside the C library, in one run:
//  - ovInputFile::fgets over a 64 MiB text file against plain fgets on the same
//    kind of stream (goal: at least 0.9x the throughput);
//  - ovByteOrderHandler reversing 64 MiB of int32 and of real64 against a loop of
//    __builtin_bswap (goal: at least 0.8x);
//  - ovIO::put_s with "%(8)d %(12.4)f %s" against fprintf with "%-8d %-12.4f %s"
//    to the same kind of stream (goal: at most 1.5x the time), with the flush after
//    every write that ovIO does by default turned off, as fprintf does not flush;
//  - ovIO::readline of three fields against sscanf (goal: at most 1.5x).
#include "ovra/ovByteOrder.h"
#include "ovra/ovIO.h"
#include "ovra/ovInputFile.h"

#include <benchmark/benchmark.h>

#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

namespace {

const size_t kBytes = 64u << 20;

// A 64 MiB file of lines of 20 to 100 characters, made once.
const char* text_file() {
    static const std::string name = [] {
        const std::string path = "io_bench_lines.txt";
        std::FILE* f = std::fopen(path.c_str(), "wb");
        std::string line;
        size_t written = 0;
        for (unsigned i = 0; written < kBytes; ++i) {
            line.assign(20 + (i * 37) % 80, static_cast<char>('a' + i % 26));
            line += '\n';
            std::fwrite(line.data(), 1, line.size(), f);
            written += line.size();
        }
        std::fclose(f);
        return path;
    }();
    return name.c_str();
}

void BM_fgets(benchmark::State& state) {
    char line[256];
    for (auto _ : state) {
        std::FILE* f = std::fopen(text_file(), "rb");
        size_t lines = 0;
        while (std::fgets(line, sizeof line, f))
            ++lines;
        std::fclose(f);
        benchmark::DoNotOptimize(lines);
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * kBytes));
}
BENCHMARK(BM_fgets)->Unit(benchmark::kMillisecond);

void BM_ovInputFile_fgets(benchmark::State& state) {
    char line[256];
    for (auto _ : state) {
        ovInputFile in(nullptr);
        in.fopen(text_file(), "rb");
        size_t lines = 0;
        while (in.fgets(line, sizeof line))
            ++lines;
        in.fclose();
        benchmark::DoNotOptimize(lines);
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * kBytes));
}
BENCHMARK(BM_ovInputFile_fgets)->Unit(benchmark::kMillisecond);

const std::vector<unsigned char>& big_endian_bytes() {
    static const std::vector<unsigned char> bytes = [] {
        std::vector<unsigned char> b(kBytes);
        for (size_t i = 0; i < b.size(); ++i)
            b[i] = static_cast<unsigned char>(i * 131 + 7);
        return b;
    }();
    return bytes;
}

template <class T, class Swap> void reverse_with_builtin(benchmark::State& state, Swap swap) {
    const std::vector<unsigned char>& in = big_endian_bytes();
    std::vector<T> out(kBytes / sizeof(T));
    for (auto _ : state) {
        for (size_t i = 0; i < out.size(); ++i) {
            decltype(swap(0)) w;
            std::memcpy(&w, in.data() + i * sizeof(T), sizeof(T));
            w = swap(w);
            std::memcpy(&out[i], &w, sizeof(T));
        }
        benchmark::DoNotOptimize(out.data());
        benchmark::ClobberMemory();
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * kBytes));
}

void BM_bswap_int32(benchmark::State& state) {
    reverse_with_builtin<int32_t>(state, [](uint32_t w) { return __builtin_bswap32(w); });
}
BENCHMARK(BM_bswap_int32)->Unit(benchmark::kMillisecond);

void BM_ovByteOrderHandler_int32(benchmark::State& state) {
    const std::vector<unsigned char>& in = big_endian_bytes();
    std::vector<int32_t> out(kBytes / 4);
    const ovByteOrderHandler h(ovBYTE_ORDER_BIG_ENDIAN, ovByteOrderHandler::native_order());
    for (auto _ : state) {
        for (size_t i = 0; i < out.size(); ++i)
            out[i] = h.int32(in.data() + i * 4);
        benchmark::DoNotOptimize(out.data());
        benchmark::ClobberMemory();
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * kBytes));
}
BENCHMARK(BM_ovByteOrderHandler_int32)->Unit(benchmark::kMillisecond);

void BM_bswap_real64(benchmark::State& state) {
    reverse_with_builtin<double>(state, [](uint64_t w) { return __builtin_bswap64(w); });
}
BENCHMARK(BM_bswap_real64)->Unit(benchmark::kMillisecond);

void BM_ovByteOrderHandler_real64(benchmark::State& state) {
    const std::vector<unsigned char>& in = big_endian_bytes();
    std::vector<double> out(kBytes / 8);
    const ovByteOrderHandler h(ovBYTE_ORDER_BIG_ENDIAN, ovByteOrderHandler::native_order());
    for (auto _ : state) {
        for (size_t i = 0; i < out.size(); ++i)
            out[i] = h.real64(in.data() + i * 8);
        benchmark::DoNotOptimize(out.data());
        benchmark::ClobberMemory();
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * kBytes));
}
BENCHMARK(BM_ovByteOrderHandler_real64)->Unit(benchmark::kMillisecond);

std::FILE* sink() {
    static std::FILE* f = std::fopen("/dev/null", "w");
    return f;
}

void BM_fprintf(benchmark::State& state) {
    int i = 0;
    for (auto _ : state) {
        ++i;
        std::fprintf(sink(), "%-8d %-12.4f %s", i, 3.14159 * i, "widgets");
    }
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_fprintf);

void BM_ovIO_put_s(benchmark::State& state) {
    ovIO::setglobalio(stdin, sink());
    ovIO io;
    io.flush_writes(0);
    int i = 0;
    for (auto _ : state) {
        ++i;
        io.put_s("%(8)d %(12.4)f %s", i, 3.14159 * i, "widgets");
    }
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_ovIO_put_s);

void BM_sscanf(benchmark::State& state) {
    int d = 0;
    double f = 0;
    char s[64];
    for (auto _ : state) {
        const int n = std::sscanf("12345 3.25 widgets", "%d %lf %63s", &d, &f, s);
        benchmark::DoNotOptimize(n);
    }
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_sscanf);

void BM_ovIO_readline(benchmark::State& state) {
    ovIO io;
    int32_t d = 0;
    double f = 0;
    char s[1024];
    for (auto _ : state) {
        const int n = io.readline("12345 3.25 widgets", "dfs", &d, &f, s);
        benchmark::DoNotOptimize(n);
    }
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_ovIO_readline);

} // namespace

BENCHMARK_MAIN();
