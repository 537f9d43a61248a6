// readline on fuzzed lines and formats, and the byte-order readers on fuzzed bytes.
// The first byte splits the input into a format (letters and "(x)" delimiters, at most
// 32 fields) and a line. Every field gets a buffer large enough for any of them, so
// whatever the letters ask, nothing may be written past a buffer (ASan watches).
#include "ovra/ovByteOrder.h"
#include "ovra/ovIO.h"

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>

namespace {

struct alignas(8) Slot {
    char bytes[1032];
};

void check_byte_order(const uint8_t* data, size_t size) {
    if (size < 8)
        return;
    const ovByteOrderHandler same(ovBYTE_ORDER_LITTLE_ENDIAN, ovBYTE_ORDER_LITTLE_ENDIAN);
    const ovByteOrderHandler other(ovBYTE_ORDER_BIG_ENDIAN, ovBYTE_ORDER_LITTLE_ENDIAN);
    unsigned char reversed[8];
    for (int i = 0; i < 8; ++i)
        reversed[i] = data[7 - i];
    const double a = other.real64(data);
    const double b = same.real64(reversed);
    if (std::memcmp(&a, &b, 8) != 0)
        std::abort();
    if (other.int32(data) != same.int32(reversed + 4) ||
        other.int16(data) != same.int16(reversed + 6))
        std::abort();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    check_byte_order(data, size);
    if (size == 0)
        return 0;
    const size_t split = std::min<size_t>(data[0], size - 1);
    std::string format(reinterpret_cast<const char*>(data + 1), split);
    std::string line(reinterpret_cast<const char*>(data + 1 + split), size - 1 - split);
    format = format.substr(0, std::strlen(format.c_str()));
    line = line.substr(0, std::strlen(line.c_str()));
    // At most 32 letters, so 32 arguments always suffice. The letters are found as
    // readline finds them: "(x" and an optional ")" come before a letter.
    size_t letters = 0;
    for (size_t i = 0; i < format.size(); ++i) {
        const size_t start = i;
        if (format[i] == '(' && i + 1 < format.size()) {
            i += 2;
            if (i < format.size() && format[i] == ')')
                ++i;
            if (i >= format.size())
                break;
        }
        if (++letters > 32) {
            format.resize(start);
            break;
        }
    }
    static Slot slots[32];
    ovIO io;
    Slot* s = slots;
    io.readline(line.c_str(), format.c_str(), s[0].bytes, s[1].bytes, s[2].bytes, s[3].bytes,
                s[4].bytes, s[5].bytes, s[6].bytes, s[7].bytes, s[8].bytes, s[9].bytes, s[10].bytes,
                s[11].bytes, s[12].bytes, s[13].bytes, s[14].bytes, s[15].bytes, s[16].bytes,
                s[17].bytes, s[18].bytes, s[19].bytes, s[20].bytes, s[21].bytes, s[22].bytes,
                s[23].bytes, s[24].bytes, s[25].bytes, s[26].bytes, s[27].bytes, s[28].bytes,
                s[29].bytes, s[30].bytes, s[31].bytes);
    return 0;
}
