// Whole-tree work and matching, beside the plain tools in the same run: a recursive
// "*.txt" listing against std::filesystem, a tree copy against "cp -r", a tree
// deletion against "rm -r", wildcard matching against fnmatch, and replace_all on
// 64 MiB against a memmem loop. The tree is 10,000 files of 1 KiB in 100 directories
// under the system's temporary directory.
#include "ovra/ovByteArray.h"
#include "ovra/ovFileFinder.h"
#include "ovra/ovFileSystem.h"
#include "ovra/ovStringCompare.h"

#include <benchmark/benchmark.h>

#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fnmatch.h>
#include <fstream>
#include <string>
#include <unistd.h>
#include <vector>

namespace fs = std::filesystem;

namespace {

ovString text(const std::string& s) {
    int status = 0;
    return ovString(ovSTRING_UTF8, s.c_str(), status);
}

ovPathName path_of(const fs::path& p) {
    return ovPathName(text(p.string()));
}

struct Tree {
    fs::path root;
    fs::path src;
    Tree() {
        root = fs::temp_directory_path() / ("ovra_tree_bench_" + std::to_string(::getpid()));
        src = root / "src";
        const std::string kib(1024, 'x');
        for (int d = 0; d < 100; ++d) {
            const fs::path dir = src / ("dir" + std::to_string(d));
            fs::create_directories(dir);
            for (int f = 0; f < 100; ++f)
                std::ofstream(dir / ("file" + std::to_string(f) + (f % 2 ? ".txt" : ".dat")),
                              std::ios::binary)
                    << kib;
        }
    }
    ~Tree() {
        std::error_code ec;
        fs::remove_all(root, ec);
    }
};

Tree& tree() {
    static Tree t;
    return t;
}

void run(const std::string& command) {
    if (std::system(command.c_str()) != 0)
        std::abort();
}

void BM_RecursiveTxt_ovRecursiveFileFinder(benchmark::State& state) {
    const ovPath top(path_of(tree().src), nullptr, nullptr);
    for (auto _ : state) {
        ovPathcoDList result;
        ovRecursiveFileFinder(top).get_files_including_sub_folders(utString("*.txt"), 1, 0, result);
        if (result.size() != 5000)
            state.SkipWithError("wrong count");
        benchmark::DoNotOptimize(result);
    }
}
BENCHMARK(BM_RecursiveTxt_ovRecursiveFileFinder)->Unit(benchmark::kMillisecond);

void BM_RecursiveTxt_std_filesystem(benchmark::State& state) {
    for (auto _ : state) {
        std::vector<fs::path> result;
        for (const auto& e : fs::recursive_directory_iterator(tree().src))
            if (e.is_regular_file() && fnmatch("*.txt", e.path().filename().c_str(), 0) == 0)
                result.push_back(e.path());
        if (result.size() != 5000)
            state.SkipWithError("wrong count");
        benchmark::DoNotOptimize(result);
    }
}
BENCHMARK(BM_RecursiveTxt_std_filesystem)->Unit(benchmark::kMillisecond);

void BM_CopyTree_ovDirectory(benchmark::State& state) {
    const fs::path dst = tree().root / "copy";
    const ovDirectory src(path_of(tree().src), nullptr);
    for (auto _ : state) {
        if (!src.copy_to(ovDirectory(path_of(dst), nullptr)).ok())
            state.SkipWithError("copy failed");
        state.PauseTiming();
        fs::remove_all(dst);
        state.ResumeTiming();
    }
}
BENCHMARK(BM_CopyTree_ovDirectory)->Unit(benchmark::kMillisecond)->Iterations(5);

void BM_CopyTree_cp(benchmark::State& state) {
    const fs::path dst = tree().root / "copy";
    for (auto _ : state) {
        run("cp -r '" + tree().src.string() + "' '" + dst.string() + "'");
        state.PauseTiming();
        fs::remove_all(dst);
        state.ResumeTiming();
    }
}
BENCHMARK(BM_CopyTree_cp)->Unit(benchmark::kMillisecond)->Iterations(5);

void BM_DeleteTree_ovDirectory(benchmark::State& state) {
    const fs::path dst = tree().root / "gone";
    for (auto _ : state) {
        state.PauseTiming();
        run("cp -r '" + tree().src.string() + "' '" + dst.string() + "'");
        state.ResumeTiming();
        if (!ovDirectory(path_of(dst), nullptr).delete_tree().ok())
            state.SkipWithError("delete failed");
    }
}
BENCHMARK(BM_DeleteTree_ovDirectory)->Unit(benchmark::kMillisecond)->Iterations(5);

void BM_DeleteTree_rm(benchmark::State& state) {
    const fs::path dst = tree().root / "gone";
    for (auto _ : state) {
        state.PauseTiming();
        run("cp -r '" + tree().src.string() + "' '" + dst.string() + "'");
        state.ResumeTiming();
        run("rm -r '" + dst.string() + "'");
    }
}
BENCHMARK(BM_DeleteTree_rm)->Unit(benchmark::kMillisecond)->Iterations(5);

const char* const kPatterns[] = {"*.txt", "data_??.csv", "*", "*a*a*a*a*a*a*a*b"};
const char* const kNames[] = {
    "report.txt",   "data_07.csv", "data_7.csv", "notes.md", "a_rather_longer_file_name_with.txt",
    "image0001.png"};

void BM_Match_ovFileMatch(benchmark::State& state) {
    const ovStringCompareNumeric exact;
    const ovFileMatch m(text(kPatterns[state.range(0)]), &exact);
    std::vector<ovFileName> names;
    if (state.range(0) == 3)
        names.emplace_back(text(std::string(40, 'a')));
    else
        for (const char* n : kNames)
            names.emplace_back(text(n));
    for (auto _ : state)
        for (const auto& n : names)
            benchmark::DoNotOptimize(m.match(n));
    state.SetLabel(kPatterns[state.range(0)]);
}
BENCHMARK(BM_Match_ovFileMatch)->DenseRange(0, 3);

void BM_Match_fnmatch(benchmark::State& state) {
    const char* pattern = kPatterns[state.range(0)];
    std::vector<std::string> names;
    if (state.range(0) == 3)
        names.emplace_back(40, 'a');
    else
        for (const char* n : kNames)
            names.emplace_back(n);
    for (auto _ : state)
        for (const auto& n : names)
            benchmark::DoNotOptimize(fnmatch(pattern, n.c_str(), 0));
    state.SetLabel(pattern);
}
BENCHMARK(BM_Match_fnmatch)->DenseRange(0, 3);

// 64 MiB of text with a match every 4 KiB or so.
const std::string& big_text() {
    static const std::string s = [] {
        std::string t;
        t.reserve(64u << 20);
        while (t.size() < (64u << 20) - 64)
            t += std::string(4000, 'q') + "needle" + std::string(90, 'z');
        return t;
    }();
    return s;
}

void BM_ReplaceAll_ovByteArray(benchmark::State& state) {
    const std::string& t = big_text();
    const ovByteArray find("needle", 6), by("thread!", 7);
    for (auto _ : state) {
        state.PauseTiming();
        ovByteArray a(t.data(), t.size());
        state.ResumeTiming();
        benchmark::DoNotOptimize(a.replace_all(find, by));
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * t.size()));
}
BENCHMARK(BM_ReplaceAll_ovByteArray)->Unit(benchmark::kMillisecond);

void BM_ReplaceAll_memmem(benchmark::State& state) {
    const std::string& t = big_text();
    for (auto _ : state) {
        std::string out;
        out.reserve(t.size() + t.size() / 1000);
        const char* p = t.data();
        const char* end = t.data() + t.size();
        while (const char* hit =
                   static_cast<const char*>(memmem(p, static_cast<size_t>(end - p), "needle", 6))) {
            out.append(p, hit);
            out.append("thread!", 7);
            p = hit + 6;
        }
        out.append(p, end);
        benchmark::DoNotOptimize(out);
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * t.size()));
}
BENCHMARK(BM_ReplaceAll_memmem)->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();
