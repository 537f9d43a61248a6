// Reading one string value through ovRegistry (UTF-8 names and data, a key opened and
// closed per call) beside the plain wide-character sequence a caller would write, on
// the same value in the same run. Windows only.
#include "ovra/ovRegistry.h"

#include "common/win32.h"

#include <benchmark/benchmark.h>

#include <string>

namespace {

const std::string& key_path() {
    static const std::string path = "Software\\ovraBench-" + std::to_string(GetCurrentProcessId());
    return path;
}

std::wstring wide_key_path() {
    const std::string& p = key_path();
    return std::wstring(p.begin(), p.end());
}

// The value read by every benchmark; made by the first and removed at exit.
bool prepare() {
    static const bool ready = [] {
        ovRegistry reg(ovHKEY_CURRENT_USER);
        return reg.set_value_data(key_path().c_str(), "InstallDir", ovREG_STRING,
                                  "C:\\Program Files\\Engineering\\Solver 12.4") == 1;
    }();
    return ready;
}

struct Cleanup {
    ~Cleanup() { RegDeleteTreeW(HKEY_CURRENT_USER, wide_key_path().c_str()); }
} cleanup;

// The reference: open, query into a 1024-byte buffer, close, all wide.
void BM_plain_RegQueryValueExW(benchmark::State& state) {
    if (!prepare()) {
        state.SkipWithError("cannot write the test value");
        return;
    }
    const std::wstring path = wide_key_path();
    for (auto _ : state) {
        HKEY key;
        wchar_t data[512];
        DWORD size = sizeof data, type = 0;
        LONG r = RegOpenKeyExW(HKEY_CURRENT_USER, path.c_str(), 0, KEY_QUERY_VALUE, &key);
        if (r == ERROR_SUCCESS) {
            r = RegQueryValueExW(key, L"InstallDir", nullptr, &type, reinterpret_cast<BYTE*>(data),
                                 &size);
            RegCloseKey(key);
        }
        benchmark::DoNotOptimize(r);
        benchmark::DoNotOptimize(data);
    }
}
BENCHMARK(BM_plain_RegQueryValueExW);

void BM_ovRegistry_value_data(benchmark::State& state) {
    if (!prepare()) {
        state.SkipWithError("cannot write the test value");
        return;
    }
    const ovRegistry reg(ovHKEY_CURRENT_USER);
    const utString path(key_path().c_str()), name("InstallDir");
    for (auto _ : state) {
        utString data;
        const int ok = reg.value_data(path, name, data);
        benchmark::DoNotOptimize(ok);
        benchmark::DoNotOptimize(data);
    }
}
BENCHMARK(BM_ovRegistry_value_data);

void BM_ovRegistry_value_data_utf8(benchmark::State& state) {
    if (!prepare()) {
        state.SkipWithError("cannot write the test value");
        return;
    }
    const ovRegistry reg(ovHKEY_CURRENT_USER);
    const utString path(key_path().c_str()), name("InstallDir");
    for (auto _ : state) {
        utString data;
        const int ok = reg.value_data_utf8(path, name, data);
        benchmark::DoNotOptimize(ok);
        benchmark::DoNotOptimize(data);
    }
}
BENCHMARK(BM_ovRegistry_value_data_utf8);

} // namespace

BENCHMARK_MAIN();
