// The file operations measured beside the plain POSIX calls that do the same work, on
// the same files in the same run: listing, whole-file reads and writes, and the
// questions asked most often (type and size).
#include "ovra/ovFileOperations.h"
#include "ovra/ovFileOpsTester.h"
#include "ovra/ovFrustrumChooser.h"

#include <benchmark/benchmark.h>

#include <cstdio>
#include <cstdlib>
#include <dirent.h>
#include <filesystem>
#include <memory>
#include <string>
#include <sys/stat.h>
#include <unistd.h>

namespace fs = std::filesystem;

namespace {

constexpr int kEntries = 10000;
constexpr size_t kBig = 64u << 20;

ovPathName path_of(const fs::path& p) {
    int status = 0;
    return ovPathName(ovString(ovSTRING_UTF8, p.c_str(), status));
}

const ovIFileOperations* ops() {
    return ovFrustrumChooser(nullptr).file_operations();
}

// The files every benchmark uses, made once and removed at exit.
struct Fixture {
    fs::path root;
    fs::path listing;
    fs::path big;
    fs::path written;
    fs::path missing;

    Fixture() {
        root = fs::temp_directory_path() / ("ovra_files_bench_" + std::to_string(::getpid()));
        listing = root / "listing";
        big = root / "big.bin";
        written = root / "written.bin";
        missing = root / "missing";
        fs::create_directories(listing);
        for (int i = 0; i < kEntries; ++i)
            std::fclose(std::fopen((listing / ("entry_" + std::to_string(i))).c_str(), "wb"));
        std::unique_ptr<char[]> data(new char[kBig]);
        for (size_t i = 0; i < kBig; ++i)
            data[i] = static_cast<char>(i * 31);
        FILE* f = std::fopen(big.c_str(), "wb");
        std::fwrite(data.get(), 1, kBig, f);
        std::fclose(f);
    }
    ~Fixture() {
        std::error_code ec;
        fs::remove_all(root, ec);
    }
};

Fixture& fixture() {
    static Fixture f;
    return f;
}

struct Walk : ovFileOpsTester {
    using ovFileOpsTester::advance;
    using ovFileOpsTester::entry;
};

void BM_ListIterator(benchmark::State& state) {
    const ovPathName dir = path_of(fixture().listing);
    for (auto _ : state) {
        ovIFileIteratorcoPrf it = ops()->iterator(dir);
        int n = 0;
        while (Walk::advance(*it)) {
            benchmark::DoNotOptimize(Walk::entry(*it));
            ++n;
        }
        if (n != kEntries)
            state.SkipWithError("wrong count");
    }
    state.SetItemsProcessed(state.iterations() * kEntries);
}

void BM_ListReaddir(benchmark::State& state) {
    const std::string dir = fixture().listing.string();
    for (auto _ : state) {
        DIR* d = ::opendir(dir.c_str());
        int n = 0;
        while (const dirent* e = ::readdir(d)) {
            const char* name = e->d_name;
            if (name[0] == '.' && (name[1] == 0 || (name[1] == '.' && name[2] == 0)))
                continue;
            // A caller keeps the name.
            std::string kept(name);
            benchmark::DoNotOptimize(kept);
            ++n;
        }
        ::closedir(d);
        if (n != kEntries)
            state.SkipWithError("wrong count");
    }
    state.SetItemsProcessed(state.iterations() * kEntries);
}

void BM_ReadFile(benchmark::State& state) {
    const ovPathName big = path_of(fixture().big);
    for (auto _ : state) {
        ovByteArray data;
        if (!ops()->read_file(big, data) || data.length() != kBig)
            state.SkipWithError("read failed");
        benchmark::DoNotOptimize(data.get_ptr());
    }
    state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(kBig));
}

void BM_ReadFread(benchmark::State& state) {
    const std::string big = fixture().big.string();
    for (auto _ : state) {
        FILE* f = std::fopen(big.c_str(), "rb");
        ::fseeko(f, 0, SEEK_END);
        const off_t size = ::ftello(f);
        ::fseeko(f, 0, SEEK_SET);
        std::unique_ptr<char[]> buffer(new char[static_cast<size_t>(size)]);
        if (std::fread(buffer.get(), 1, static_cast<size_t>(size), f) != kBig)
            state.SkipWithError("read failed");
        std::fclose(f);
        benchmark::DoNotOptimize(buffer.get());
    }
    state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(kBig));
}

void BM_WriteFile(benchmark::State& state) {
    const ovPathName out = path_of(fixture().written);
    std::unique_ptr<char[]> bytes(new char[kBig]);
    std::fill(bytes.get(), bytes.get() + kBig, 'w');
    const ovByteArray data(std::move(bytes), kBig);
    for (auto _ : state) {
        if (!ops()->write_file(out, data))
            state.SkipWithError("write failed");
    }
    state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(kBig));
}

void BM_WriteFwrite(benchmark::State& state) {
    const std::string out = fixture().written.string();
    std::unique_ptr<char[]> data(new char[kBig]);
    std::fill(data.get(), data.get() + kBig, 'w');
    for (auto _ : state) {
        FILE* f = std::fopen(out.c_str(), "wb");
        std::fwrite(data.get(), 1, kBig, f);
        if (std::ferror(f))
            state.SkipWithError("write failed");
        std::fclose(f);
    }
    state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(kBig));
}

// range(0): 1 for an existing file, 0 for a missing one.
const fs::path& subject(benchmark::State& state) {
    return state.range(0) ? fixture().big : fixture().missing;
}

void BM_TypeOfPath(benchmark::State& state) {
    const ovPathName p = path_of(subject(state));
    for (auto _ : state)
        benchmark::DoNotOptimize(ops()->type_of_path(p));
}

void BM_FileSize(benchmark::State& state) {
    const ovPathName p = path_of(subject(state));
    for (auto _ : state)
        benchmark::DoNotOptimize(ops()->file_size(p));
}

void BM_Stat(benchmark::State& state) {
    const std::string p = subject(state).string();
    for (auto _ : state) {
        struct stat st;
        benchmark::DoNotOptimize(::stat(p.c_str(), &st));
    }
}

} // namespace

BENCHMARK(BM_ListIterator)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_ListReaddir)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_ReadFile)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_ReadFread)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_WriteFile)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_WriteFwrite)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_TypeOfPath)->Arg(1)->Arg(0);
BENCHMARK(BM_FileSize)->Arg(1)->Arg(0);
BENCHMARK(BM_Stat)->Arg(1)->Arg(0);

BENCHMARK_MAIN();
