// The procedural interface under fuzzed input, three properties in one target
// (the first byte chooses) so that CI spends one short run on them:
//  0: environment expansion and path preparation never write past their
//     1025-byte buffer, never give more than 1024 characters, and prepared
//     paths hold no backslash. The input sets a few variables first
//     ("NAME=value\n" lines up to an empty line, names from a small fixed set so
//     chains and loops form); the rest is the name, with a leading byte that
//     switches expansion off when odd.
//  1: ovpos agrees with a plain search (and its one kept quirk), and ovstrrep
//     with std::string::replace, for ranges inside the text and room for the
//     result. Input: needle, a 0 byte, haystack; the replacement range comes
//     from the needle's first two bytes, the replacement is the rest of it.
//  2: ut_date_seconds takes any seven ints without harm; what it accepts
//     converts back to the same seconds when not before the epoch (the zone is
//     UTC here, so daylight saving plays no part); ut_date_array and
//     ut_date_string take any seconds.
#include "ovra/ovDateArray.h"
#include "ovra/ovFileUtils.h"
#include "ovra/ovNarrowHelpers.h"

#include "ut/utString.h"

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <memory>
#include <string>

namespace {

const char* const kNames[] = {"HOME", "HOMEa", "A", "B", "C", "AB"};

void clear_environment() {
    for (const char* name : kNames)
        unsetenv(name);
}

// The first occurrence's end (an empty needle "occurs" at the end); when absent, 1 exactly when the
// last candidate tried (the needle's first character) is the haystack's last character.
int expected_pos(const std::string& needle, const std::string& hay) {
    if (hay.empty())
        return 0;
    if (needle.empty())
        return static_cast<int>(hay.size());
    const size_t at = hay.find(needle);
    if (at != std::string::npos)
        return static_cast<int>(at + needle.size());
    return needle.size() > 1 && hay.back() == needle[0] ? 1 : 0;
}

int env_and_paths(const uint8_t* data, size_t size) {
    std::string input(reinterpret_cast<const char*>(data), size);
    clear_environment();
    size_t pos = 0;
    while (pos < input.size()) {
        const size_t eol = input.find('\n', pos);
        if (eol == std::string::npos || eol == pos) {
            pos = eol == std::string::npos ? pos : eol + 1;
            break;
        }
        const std::string line = input.substr(pos, eol - pos);
        pos = eol + 1;
        const size_t eq = line.find('=');
        if (eq == std::string::npos || line.find('\0') != std::string::npos)
            continue;
        const std::string name = line.substr(0, eq);
        for (const char* known : kNames) {
            if (name == known)
                setenv(known, line.substr(eq + 1).c_str(), 1);
        }
    }
    std::string name = input.substr(pos);
    int allow = 1;
    if (!name.empty()) {
        allow = (static_cast<unsigned char>(name[0]) & 1) == 0;
        name.erase(0, 1);
    }
    // Exactly the documented size, on the heap, so ASan sees any overrun; the name
    // too, so nothing reads past its n characters.
    std::unique_ptr<char[]> in(new char[name.size() + 1]);
    std::memcpy(in.get(), name.data(), name.size());
    std::unique_ptr<char[]> out(new char[1025]);
    const int n = static_cast<int>(name.size());

    fc_env_variable(in.get(), n, out.get());
    if (strnlen(out.get(), 1025) > 1024)
        std::abort();

    fc_allow_env_in_paths(allow);
    fc_process_pathname(in.get(), n, out.get());
    fc_allow_env_in_paths(1);
    if (strnlen(out.get(), 1025) > 1024 || std::strchr(out.get(), '\\'))
        std::abort();
    return 0;
}

int narrow_text(const uint8_t* data, size_t size) {
    const std::string input(reinterpret_cast<const char*>(data), size);
    const size_t split = input.find('\0');
    if (split == std::string::npos)
        return 0;
    const std::string needle = input.substr(0, split);
    std::string hay = input.substr(split + 1);
    hay = hay.substr(0, hay.find('\0'));

    if (ovpos(needle.c_str(), hay.c_str()) != expected_pos(needle, hay))
        std::abort();

    if (hay.empty() || needle.size() < 2)
        return 0;
    const int len = static_cast<int>(hay.size());
    const int first = static_cast<unsigned char>(needle[0]) % (len + 1);
    const int last = first - 1 + static_cast<unsigned char>(needle[1]) % (len - first + 1);
    const std::string with = needle.substr(2);
    std::string expected = hay;
    expected.replace(static_cast<size_t>(first), static_cast<size_t>(last + 1 - first), with);
    std::unique_ptr<char[]> text(new char[hay.size() + with.size() + 1]);
    std::memcpy(text.get(), hay.c_str(), hay.size() + 1);
    ovstrrep(text.get(), first, last, with.c_str());
    if (expected != text.get())
        std::abort();
    return 0;
}

int date_arrays(const uint8_t* data, size_t size) {
    int date[7] = {};
    std::memcpy(date, data, size < sizeof date ? size : sizeof date);
    const int utc = size > sizeof date ? data[sizeof date] & 1 : 0;
    int seconds = -1;
    const int ok = ut_date_seconds(date, utc, seconds);
    if (!ok) {
        if (seconds != 0)
            std::abort();
        return 0;
    }
    // Fields may normalise to before the epoch; those arrays are refused on the way back.
    if (seconds < 0)
        return 0;
    int again[7];
    ut_date_array(seconds, 0, again);
    int back = -1;
    if (ut_date_seconds(again, 0, back) != 1 || back != seconds)
        std::abort();
    utString text;
    ut_date_string(seconds, utc, text);
    if (text.length() != 24)
        std::abort();
    return 0;
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    setenv("TZ", "UTC", 1);
    tzset();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size == 0)
        return 0;
    switch (data[0] % 3) {
    case 0:
        return env_and_paths(data + 1, size - 1);
    case 1:
        return narrow_text(data + 1, size - 1);
    default:
        return date_arrays(data + 1, size - 1);
    }
}
