// The two UTF-8 decoders must agree on every input: the block scanner behind
// ovString's UTF-8 constructor and the character-by-character reader behind
// ConvertUTF. Both follow one lead table; this holds the scanner's bit masks to
// it on inputs no test thought of. Then the text must survive UTF-16 and back.
#include "ovra/ovString.h"

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    // The constructor reads up to the first 0 byte; give both the same bytes.
    const size_t n = strnlen(reinterpret_cast<const char*>(data), size);
    const std::string text(reinterpret_cast<const char*>(data), n);

    int status = -1;
    const ovString scanned(ovSTRING_UTF8, text.c_str(), status);

    ovOvra::ConvertUTF cv;
    const size_t need = cv.utf8_to_utf32(text.data(), n, nullptr, 0);
    std::vector<unsigned int> read(need);
    const size_t got = cv.utf8_to_utf32(text.data(), n, read.data(), need);
    if (got != need)
        std::abort(); // the counted size must be what the conversion writes
    const bool exact = cv.was_exact();

    if ((status == 0) != exact || scanned.failed() != !exact)
        std::abort(); // one says well-formed, the other not
    if (!exact)
        return 0;
    // read holds the code points and a terminator.
    if (scanned.length() != got - 1 ||
        std::memcmp(scanned.convert(ovSTRING_UTF32), read.data(), scanned.length() * 4) != 0)
        std::abort();

    // The code points go to UTF-16 and back unchanged. (Not the bytes: a lone
    // 0x80 is accepted as U+0080, which is written back as C2 80.)
    int back_status = -1;
    const ovString back(ovSTRING_UTF16, scanned.convert(ovSTRING_UTF16), back_status);
    if (back_status != 0 || !(back == scanned))
        std::abort();
    return 0;
}
