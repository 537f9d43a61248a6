#include "ovra/ovNarrow.h"
#include "ovra/ovStringReader.h"

#include "strings/reader_stream.h"

#include <cwchar>

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
    // mbrtowc with a state of its own: mbtowc's hidden state is shared by
    // every thread. The runtime's code pages have no shift states, so a fresh
    // state per character reads the same as one kept for the whole stream.
    std::mbstate_t state{};
    wchar_t w = 0;
    const size_t r = std::mbrtowc(&w, bytes, static_cast<size_t>(n), &state);
    if (r == static_cast<size_t>(-1) || r == static_cast<size_t>(-2)) {
        status = 1;
        return ovREADER_BAD_CHARACTER;
    }
    // mbrtowc gives one UTF-16 unit, so a surrogate here is unpaired: "?".
    const ovChar16 unit = w;
    unsigned int codes[2];
    ovOvra::ConvertUTF().utf16_to_utf32(&unit, 1, codes, 2);
    return codes[0];
}
