// Shows what ovString makes of UTF-8 text given on the command line: its code
// points, its UTF-16 units, and whether it decoded exactly.
#include "ovra/ovString.h"

#include <cstdint>
#include <cstdio>

namespace {

void show(const char* arg) {
    int status = 0;
    const ovString s(ovSTRING_UTF8, arg, status);
    std::printf("\"%s\"\n", arg);
    if (s.failed()) {
        std::printf("  failed (status %d): %s\n", status, s.convert(ovSTRING_UTF8));
        return;
    }
    std::printf("  %zu code points:", s.length());
    const unsigned int* cp = s.convert(ovSTRING_UTF32);
    for (size_t i = 0; i < s.length(); ++i)
        std::printf(" U+%04X", cp[i]);
    const ovChar16* u = s.convert(ovSTRING_UTF16);
    size_t units = 0;
    while (u[units])
        ++units;
    std::printf("\n  %zu UTF-16 units:", units);
    for (size_t i = 0; i < units; ++i)
        std::printf(" %04X", static_cast<unsigned>(static_cast<uint16_t>(u[i])));
    std::printf("\n");
}

} // namespace

int main(int argc, char** argv) {
    if (argc < 2) {
        std::printf("usage: %s TEXT...\n", argv[0]);
        show("h\xC3\xA9llo \xF0\x9F\x98\x80");
        show("bad \xC3\x28 byte");
        return 0;
    }
    for (int i = 1; i < argc; ++i)
        show(argv[i]);
    return 0;
}
