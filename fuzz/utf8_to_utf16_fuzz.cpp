// UTF-8 to UTF-16 and to code points, by the checked-block decoder, held to the
// plain reader on arbitrary bytes; the first two bytes choose where to cut the output.
#include "plain_utf.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size < 2)
        return 0;
    const size_t cut = data[0] | (size_t(data[1]) << 8);
    const char* text = reinterpret_cast<const char*>(data + 2);
    check_against_plain(&ovOvra::ConvertUTF::utf8_to_utf16, text, size - 2, cut);
    check_against_plain(&ovOvra::ConvertUTF::utf8_to_utf32, text, size - 2, cut);
    return 0;
}
