// Wildcard matching and byte replacement against plain reference versions. The first
// byte chooses: 0 the file-name matcher, 1 the older finder's filter, 2 replace_all.
// The rest is split at the first zero byte into pattern (or what to find) and name
// (or the bytes to search); for replace_all the replacement is the pattern reversed.
// Long inputs are still run, to show the matchers stay fast; only short ones are
// compared with the exponential reference.
#include "ovra/ovByteArray.h"
#include "ovra/ovFileFinder.h"
#include "ovra/ovStringCompare.h"

#include "../tests/support/literal_match.h"

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

namespace {

using ovtest::literal_filter;
using ovtest::literal_match;

class Probe : public ovFileFinder {
public:
    Probe() : ovFileFinder(utString(".")) {}
    int matches(const char* n, const char* f) const { return filename_matches_filter(n, f); }
};

// The single scan, byte by byte, as the byte array describes it.
std::string reference_replace(const std::string& text, const std::string& find,
                              const std::string& by, int& count) {
    std::vector<size_t> starts;
    size_t counter = 0;
    for (size_t i = 0; i < text.size(); ++i) {
        if (text[i] == find[counter]) {
            if (++counter == find.size()) {
                starts.push_back(i + 1 - counter);
                counter = 0;
            }
        } else {
            counter = 0;
        }
    }
    count = static_cast<int>(starts.size());
    std::string out;
    size_t from = 0;
    for (size_t at : starts) {
        out += text.substr(from, at - from) + by;
        from = at + find.size();
    }
    return out + text.substr(from);
}

bool short_enough(const std::string& pattern, const std::string& name) {
    return pattern.size() <= 12 && name.size() <= 16;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size == 0)
        return 0;
    const std::string rest(reinterpret_cast<const char*>(data) + 1, size - 1);
    const size_t zero = rest.find('\0');
    const std::string first = rest.substr(0, zero);
    const std::string second = zero == std::string::npos ? std::string() : rest.substr(zero + 1);
    switch (data[0] % 3) {
    case 0: {
        // ASCII only, so that code points and bytes agree for the reference.
        for (char c : first + second)
            if (static_cast<unsigned char>(c) >= 0x80 || c == '/' || c == '\0')
                return 0;
        if (first.empty() || second.empty())
            return 0;
        int st = 0;
        static const ovStringCompareNumeric exact;
        const ovFileMatch m(ovString(ovSTRING_UTF8, first.c_str(), st), &exact);
        const int got = m.match(ovFileName(ovString(ovSTRING_UTF8, second.c_str(), st)));
        if (short_enough(first, second) && (got != 0) != literal_match(second, 0, first, 0))
            std::abort();
        break;
    }
    case 1: {
        static const Probe probe;
        const int got = probe.matches(second.c_str(), first.c_str());
        if (short_enough(first, second) &&
            (got != 0) != literal_filter(second.c_str(), first.c_str()))
            std::abort();
        break;
    }
    default: {
        if (first.empty())
            return 0;
        const std::string by(first.rbegin(), first.rend());
        ovByteArray a(second.data(), second.size());
        const ovByteArray before = a;
        int expected = 0;
        const std::string want = reference_replace(second, first, by, expected);
        const int got = a.replace_all(ovByteArray(first.data(), first.size()),
                                      ovByteArray(by.data(), by.size()));
        if (got != expected || std::string(a.get_ptr(), static_cast<size_t>(a.length())) != want)
            std::abort();
        if (std::string(before.get_ptr(), static_cast<size_t>(before.length())) != second)
            std::abort();
        break;
    }
    }
    return 0;
}
