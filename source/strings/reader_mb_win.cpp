#include "ovra/ovNarrow.h"
#include "ovra/ovStringReader.h"

#include "strings/reader_stream.h"

#include <cstdlib>

unsigned int ovra_internal::read_mb_rest(std::istream& is, int b, int& status) {
    char bytes[2] = {static_cast<char>(b), 0};
    int n = 1;
    if (ov_lead_byte(bytes[0])) {
        const int c = next_byte(is);
        if (c == kEndOfStream) {
            status = 1;
            return ovREADER_CUT_CHARACTER;
        }
        bytes[1] = static_cast<char>(c);
        n = 2;
    }
    wchar_t w = 0;
    if (std::mbtowc(&w, bytes, static_cast<size_t>(n)) < 0) {
        status = 1;
        return ovREADER_BAD_CHARACTER;
    }
    // mbtowc gives one UTF-16 unit, so a surrogate here is unpaired: "?".
    const ovChar16 unit = w;
    unsigned int codes[2];
    ovOvra::ConvertUTF().utf16_to_utf32(&unit, 1, codes, 2);
    return codes[0];
}
