// UTF-16 to UTF-8 and to code points, by the 8-unit groups, held to the plain
// reader on arbitrary units; so is ovString's UTF-16 constructor, which must
// fail exactly when the conversion is not exact and else hold its code points
// up to the first 0.
#include "plain_utf.h"

#include <algorithm>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size < 2)
        return 0;
    const size_t cut = data[0] | (size_t(data[1]) << 8);
    const std::vector<ovChar16> units = units_of<ovChar16>(data + 2, size - 2);
    check_against_plain(&ovOvra::ConvertUTF::utf16_to_utf8, units.data(), units.size(), cut);
    check_against_plain(&ovOvra::ConvertUTF::utf16_to_utf32, units.data(), units.size(), cut);

    PlainUtf plain;
    std::vector<unsigned int> codes(
        plain.run<ovChar16, unsigned int>(units.data(), units.size(), nullptr, 0));
    plain.run<ovChar16, unsigned int>(units.data(), units.size(), codes.data(), codes.size());
    int status = -1;
    const ovString s(ovSTRING_UTF16, units.data(), units.size(), status);
    if ((status != 0) != !plain.was_exact() || s.failed() != (status != 0))
        std::abort();
    if (status == 0) {
        const size_t length =
            static_cast<size_t>(std::find(codes.begin(), codes.end(), 0u) - codes.begin());
        if (s.length() != length ||
            std::memcmp(s.convert(ovSTRING_UTF32), codes.data(), 4 * length) != 0)
            std::abort();
    }
    return 0;
}
