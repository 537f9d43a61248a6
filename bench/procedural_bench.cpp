// The procedural interface beside the plain calls it wraps, in one run:
// ov_read/ov_write through the I/O table against read/write, fcusta against
// stat on the same path, and fc_env_variable on a path with one $VAR/ reference.
#include "ovra/ovFileUtils.h"
#include "ovra/ovIOWrap.h"

#include <benchmark/benchmark.h>

#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <string>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace {

// One scratch file for the whole run, removed at exit.
class Scratch {
public:
    Scratch() {
        char pattern[] = "/tmp/ovra_bench_XXXXXX";
        m_fd = mkstemp(pattern);
        m_path = pattern;
        std::vector<char> block(64 * 1024, 'b');
        if (::write(m_fd, block.data(), block.size()) != static_cast<ssize_t>(block.size()))
            std::abort();
    }
    ~Scratch() {
        ::close(m_fd);
        ::unlink(m_path.c_str());
    }
    int fd() const { return m_fd; }
    const std::string& path() const { return m_path; }

private:
    int m_fd = -1;
    std::string m_path;
};

Scratch& scratch() {
    static Scratch s;
    return s;
}

void BM_write_plain(benchmark::State& state) {
    const int fd = scratch().fd();
    std::vector<char> block(static_cast<size_t>(state.range(0)), 'w');
    for (auto _ : state) {
        ::lseek(fd, 0, SEEK_SET);
        benchmark::DoNotOptimize(::write(fd, block.data(), block.size()));
    }
    state.SetBytesProcessed(state.iterations() * state.range(0));
}

void BM_write_ov(benchmark::State& state) {
    const int fd = scratch().fd();
    std::vector<char> block(static_cast<size_t>(state.range(0)), 'w');
    for (auto _ : state) {
        ov_lseek(fd, 0, SEEK_SET);
        benchmark::DoNotOptimize(ov_write(fd, block.data(), static_cast<unsigned>(block.size())));
    }
    state.SetBytesProcessed(state.iterations() * state.range(0));
}

void BM_read_plain(benchmark::State& state) {
    const int fd = scratch().fd();
    std::vector<char> block(static_cast<size_t>(state.range(0)));
    for (auto _ : state) {
        ::lseek(fd, 0, SEEK_SET);
        benchmark::DoNotOptimize(::read(fd, block.data(), block.size()));
    }
    state.SetBytesProcessed(state.iterations() * state.range(0));
}

void BM_read_ov(benchmark::State& state) {
    const int fd = scratch().fd();
    std::vector<char> block(static_cast<size_t>(state.range(0)));
    for (auto _ : state) {
        ov_lseek(fd, 0, SEEK_SET);
        benchmark::DoNotOptimize(ov_read(fd, block.data(), static_cast<unsigned>(block.size())));
    }
    state.SetBytesProcessed(state.iterations() * state.range(0));
}

void BM_stat_plain(benchmark::State& state) {
    const std::string& path = scratch().path();
    struct stat st;
    for (auto _ : state)
        benchmark::DoNotOptimize(::stat(path.c_str(), &st));
}

void BM_fcusta(benchmark::State& state) {
    const std::string& path = scratch().path();
    const int n = static_cast<int>(path.size());
    int id[2], type, ierr;
    for (auto _ : state) {
        fcusta(path.data(), n, &n, id, &type, &ierr);
        benchmark::DoNotOptimize(ierr);
    }
}

void BM_fc_env_variable(benchmark::State& state) {
    setenv("OVRA_BENCH_ROOT", "/srv/projects/engineering", 1);
    const std::string name = "$OVRA_BENCH_ROOT/models/run42/output.dat";
    char out[1025];
    for (auto _ : state) {
        fc_env_variable(name.data(), static_cast<int>(name.size()), out);
        benchmark::DoNotOptimize(out);
    }
}

} // namespace

BENCHMARK(BM_write_plain)->Arg(4096)->Arg(65536);
BENCHMARK(BM_write_ov)->Arg(4096)->Arg(65536);
BENCHMARK(BM_read_plain)->Arg(4096)->Arg(65536);
BENCHMARK(BM_read_ov)->Arg(4096)->Arg(65536);
BENCHMARK(BM_stat_plain);
BENCHMARK(BM_fcusta);
BENCHMARK(BM_fc_env_variable);

BENCHMARK_MAIN();
