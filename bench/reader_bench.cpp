// ovStringReaderUTF8::read_line over 50 MiB of mostly-ASCII UTF-8 text, beside
// std::getline plus a UTF-8 decode of each line into an ovString, and beside
// read_token(is, 0, "\n", status), the character-at-a-time reading that gives
// the same lines (read_line's speed before it scanned the buffer in place),
// from the same streams in the same run.
#include "ovra/ovStringReader.h"

#include <benchmark/benchmark.h>

#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <memory>
#include <random>
#include <sstream>
#include <string>

namespace {

constexpr size_t kBytes = size_t(50) << 20;

// Lines of 10 to 120 characters: about 95% ASCII letters and blanks, the rest
// two-, three- and four-byte characters; every third line ends in CR LF.
std::string make_text() {
    std::mt19937 rng(20240611u);
    std::uniform_int_distribution<int> pct(0, 99);
    std::uniform_int_distribution<int> length(10, 120);
    std::uniform_int_distribution<int> letter(0, 25);
    static const char* const others[] = {"\xC3\xA9", "\xC3\x9F", "\xE2\x82\xAC", "\xE6\x97\xA5",
                                         "\xF0\x9F\x98\x80"};
    std::string s;
    s.reserve(kBytes + 256);
    for (unsigned line = 0; s.size() < kBytes; ++line) {
        for (int i = length(rng); i > 0; --i) {
            const int r = pct(rng);
            if (r < 15)
                s += ' ';
            else if (r < 95)
                s += static_cast<char>('a' + letter(rng));
            else
                s += others[r % 5];
        }
        s += line % 3 == 2 ? "\r\n" : "\n";
    }
    return s;
}

const std::string& text() {
    static const std::string t = make_text();
    return t;
}

// The text in a temporary file, removed at exit.
class TempFile {
public:
    TempFile() {
        std::random_device rd;
        m_path = std::filesystem::temp_directory_path() /
                 ("ovra_reader_bench_" + std::to_string(rd()) + ".txt");
        std::ofstream(m_path, std::ios::binary)
            .write(text().data(), static_cast<std::streamsize>(text().size()));
    }
    ~TempFile() {
        std::error_code ec;
        std::filesystem::remove(m_path, ec);
    }
    const std::filesystem::path& path() const { return m_path; }

private:
    std::filesystem::path m_path;
};

const TempFile& temp_file() {
    static const TempFile f;
    return f;
}

size_t read_lines_ovra(std::istream& is) {
    ovStringReaderUTF8 reader;
    size_t chars = 0;
    while (!is.eof()) {
        int status;
        chars += reader.read_line(is, status).length();
    }
    return chars;
}

size_t read_tokens_plain(std::istream& is) {
    ovStringReaderUTF8 reader;
    ovStringReader& plain = reader;
    size_t chars = 0;
    while (!is.eof()) {
        int status;
        chars += plain.read_token(is, 0, "\n", status).length();
    }
    return chars;
}

size_t read_lines_getline(std::istream& is) {
    size_t chars = 0;
    std::string line;
    while (std::getline(is, line)) {
        if (!line.empty() && line.back() == '\r')
            line.pop_back();
        int status;
        chars += ovString(ovSTRING_UTF8, line.c_str(), status).length();
    }
    return chars;
}

template <size_t (*Read)(std::istream&)> void from_string(benchmark::State& state) {
    for (auto _ : state) {
        state.PauseTiming();
        auto is = std::make_unique<std::istringstream>(text());
        state.ResumeTiming();
        benchmark::DoNotOptimize(Read(*is));
        state.PauseTiming();
        is.reset();
        state.ResumeTiming();
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * text().size()));
}

template <size_t (*Read)(std::istream&)> void from_file(benchmark::State& state) {
    const std::filesystem::path& path = temp_file().path();
    for (auto _ : state) {
        std::ifstream is(path, std::ios::binary);
        benchmark::DoNotOptimize(Read(is));
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * text().size()));
}

} // namespace

BENCHMARK(from_string<read_lines_ovra>)
    ->Name("read_line/istringstream")
    ->Unit(benchmark::kMillisecond);
BENCHMARK(from_string<read_lines_getline>)
    ->Name("getline+UTF8/istringstream")
    ->Unit(benchmark::kMillisecond);
BENCHMARK(from_string<read_tokens_plain>)
    ->Name("read_token(LF)/istringstream")
    ->Unit(benchmark::kMillisecond);
BENCHMARK(from_file<read_lines_ovra>)->Name("read_line/ifstream")->Unit(benchmark::kMillisecond);
BENCHMARK(from_file<read_lines_getline>)
    ->Name("getline+UTF8/ifstream")
    ->Unit(benchmark::kMillisecond);
BENCHMARK(from_file<read_tokens_plain>)
    ->Name("read_token(LF)/ifstream")
    ->Unit(benchmark::kMillisecond);

BENCHMARK_MAIN();
