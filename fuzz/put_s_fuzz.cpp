// put_s on fuzzed formats and texts. Every conversion that takes an argument is turned
// into "s" or "r" (strings, so that one argument type serves all: the format language
// cannot be checked against real arguments, as printf's cannot), at most 16 of them get
// fuzzed texts, and parentheses of ten or more characters, which end the process on
// purpose (found or not), are cut short. Output goes through a print function that checks each
// piece is a proper string.
#include "ovra/ovIO.h"

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>

namespace {

size_t the_bytes = 0;

void count(const char* text) {
    the_bytes += std::strlen(text);
}

// The format as pass_args reads it, made safe for the argument list below.
std::string tame(std::string format) {
    int conversions = 0;
    for (size_t i = 0; i < format.size(); ++i) {
        if (format[i] != '%')
            continue;
        size_t q = i + 1;
        if (q < format.size() && format[q] == '(') {
            const size_t close = format.find(')', q + 1);
            if (close == std::string::npos) {
                // Written as text, once the scan has found no ")"; an eleventh
                // character copied on the way ends the process all the same.
                if (format.size() - q - 1 > 10)
                    format.resize(q + 11);
                continue;
            }
            if (close - q - 1 >= 10)
                format.erase(q + 10, close - q - 10); // keep nine inside
            q = format.find(')', q + 1) + 1;
        }
        if (q >= format.size())
            break;
        char& letter = format[q];
        if (std::strchr("dhuDLcsfFrR", letter)) {
            if (++conversions > 16)
                letter = '%';
            else if (letter != 'r' && letter != 'R')
                letter = 's';
        }
        i = q;
    }
    return format;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::string input(reinterpret_cast<const char*>(data), size);
    const size_t split = input.find('\0');
    const std::string format = tame(input.substr(0, split));
    const char* text = split == std::string::npos ? "" : input.c_str() + split + 1;
    ovIO io;
    io.set_print_function(&count);
    io.put_s(format.c_str(), text, text, text, text, text, text, text, text, text, text, text, text,
             text, text, text, text);
    return 0;
}
