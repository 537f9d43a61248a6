// The UTF-8 reader's read_line, which scans the stream's buffer in place,
// against read_token(is, 0, "\n", status), which reads one character at a
// time. The first byte chooses how the buffer hands the rest out: 0 without a
// get area, 1 to 63 in chunks of that many bytes, anything else all at once.
#include "../tests/support/line_agreement.h"

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size == 0)
        return 0;
    const size_t chunk = data[0] < 64 ? data[0] : size;
    const std::string bytes(reinterpret_cast<const char*>(data) + 1, size - 1);
    const std::string why = ovtest::line_disagreement(bytes, chunk);
    if (!why.empty()) {
        std::fprintf(stderr, "chunk %zu: %s\n", chunk, why.c_str());
        std::abort();
    }
    return 0;
}
