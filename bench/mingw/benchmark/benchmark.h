// The part of Google Benchmark's interface that the Windows benchmarks use, for the
// MinGW cross-build, for which no build of the library is packaged. Each benchmark gets
// an iteration count that makes a round last about 0.2 s; then all take turns for seven
// rounds and the median time per iteration is printed, as Google Benchmark prints it.
#pragma once

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace benchmark {

class State {
public:
    explicit State(int64_t iterations) : m_iterations(iterations) {}

    // Marked unused, so `for (auto _ : state)` draws no warning.
    struct __attribute__((unused)) Value {};

    class Iterator {
    public:
        explicit Iterator(int64_t left) : m_left(left) {}
        bool operator!=(const Iterator&) const { return m_left > 0; }
        void operator++() { --m_left; }
        Value operator*() const { return Value(); }

    private:
        int64_t m_left;
    };
    Iterator begin() { return Iterator(m_error.empty() ? m_iterations : 0); }
    Iterator end() { return Iterator(0); }

    int64_t iterations() const { return m_iterations; }
    void SkipWithError(const char* message) { m_error = message; }
    const std::string& error() const { return m_error; }
    void SetBytesProcessed(int64_t bytes) { m_bytes = bytes; }
    int64_t bytes() const { return m_bytes; }

private:
    int64_t m_iterations;
    int64_t m_bytes = 0;
    std::string m_error;
};

template <class T> inline void DoNotOptimize(T& value) {
    asm volatile("" : : "g"(&value) : "memory");
}
template <class T> inline void DoNotOptimize(const T& value) {
    asm volatile("" : : "g"(&value) : "memory");
}

namespace internal {

typedef std::function<void(State&)> Function;

inline std::vector<std::pair<std::string, Function>>& registry() {
    static std::vector<std::pair<std::string, Function>> all;
    return all;
}

inline int add(const char* name, Function f) {
    registry().emplace_back(name, std::move(f));
    return 0;
}

// One round of n iterations; seconds taken, or a negative value after SkipWithError.
// `bytes` gets what the benchmark said it processed.
inline double round(const Function& f, int64_t n, std::string& error, int64_t& bytes) {
    State state(n);
    const auto start = std::chrono::steady_clock::now();
    f(state);
    const double seconds =
        std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    error = state.error();
    bytes = state.bytes();
    return error.empty() ? seconds : -1;
}

inline int run_all() {
    const auto& all = registry();
    constexpr int kRounds = 7;
    std::vector<int64_t> counts(all.size(), 1), bytes(all.size(), 0);
    std::vector<std::vector<double>> times(all.size());
    std::vector<std::string> errors(all.size());
    // Counts that make a round last about 0.2 s.
    for (size_t i = 0; i < all.size(); ++i) {
        for (;;) {
            const double s = round(all[i].second, counts[i], errors[i], bytes[i]);
            if (s < 0 || s >= 0.2 || counts[i] >= (int64_t{1} << 40))
                break;
            const double grow = s > 0 ? 0.25 / s : 100.0;
            counts[i] =
                static_cast<int64_t>(static_cast<double>(counts[i]) * (grow > 100 ? 100 : grow)) +
                1;
        }
    }
    // Rounds take turns, so a machine that gets busier slows every benchmark alike.
    for (int r = 0; r < kRounds; ++r)
        for (size_t i = 0; i < all.size(); ++i)
            if (errors[i].empty())
                times[i].push_back(round(all[i].second, counts[i], errors[i], bytes[i]));
    std::printf("%-40s %15s %12s %12s   (median of %d interleaved rounds)\n", "Benchmark", "Time",
                "Iterations", "MB/s", kRounds);
    for (size_t i = 0; i < all.size(); ++i) {
        if (!errors[i].empty()) {
            std::printf("%-40s ERROR OCCURRED: '%s'\n", all[i].first.c_str(), errors[i].c_str());
            continue;
        }
        std::vector<double> t = times[i];
        std::sort(t.begin(), t.end());
        const double median = t[t.size() / 2];
        std::printf("%-40s %12.0f ns %12lld", all[i].first.c_str(),
                    median * 1e9 / static_cast<double>(counts[i]),
                    static_cast<long long>(counts[i]));
        if (bytes[i] > 0)
            std::printf(" %12.1f", static_cast<double>(bytes[i]) / median / 1e6);
        std::printf("\n");
    }
    return 0;
}

} // namespace internal

// A benchmark under a name made at run time, given extra arguments.
template <class F, class... Args> void RegisterBenchmark(const char* name, F f, Args... args) {
    internal::add(name, [=](State& state) { f(state, args...); });
}

} // namespace benchmark

#define BENCHMARK_CAT2(a, b) a##b
#define BENCHMARK_CAT(a, b) BENCHMARK_CAT2(a, b)
#define BENCHMARK(f)                                                                               \
    static const int BENCHMARK_CAT(benchmark_registered_, __LINE__) =                              \
        ::benchmark::internal::add(#f, f)
#define BENCHMARK_MAIN()                                                                           \
    int main() {                                                                                   \
        return ::benchmark::internal::run_all();                                                   \
    }
