// Code points (any 32-bit values, as the UTF-32 constructor keeps them) to
// UTF-8 and UTF-16, by the vector and word-at-a-time writers, held to the plain
// writer; so are ovString's cached UTF-8 and UTF-16 forms.
#include "plain_utf.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size < 2)
        return 0;
    const size_t cut = data[0] | (size_t(data[1]) << 8);
    std::vector<unsigned int> codes = units_of<unsigned int>(data + 2, size - 2);
    // Small values too, so runs of ASCII reach the wide paths.
    if (data[0] & 1)
        for (unsigned int& c : codes)
            c %= data[1] | 1u;
    check_against_plain(&ovOvra::ConvertUTF::utf32_to_utf8, codes.data(), codes.size(), cut);
    check_against_plain(&ovOvra::ConvertUTF::utf32_to_utf16, codes.data(), codes.size(), cut);

    int status = -1;
    const ovString s(ovSTRING_UTF32, codes.data(), codes.size(), status);
    if (s.invalid()) // no code points at all: a null pointer
        return 0;
    PlainUtf plain;
    std::vector<char> utf8(
        plain.run<unsigned int, char>(s.convert(ovSTRING_UTF32), s.length(), nullptr, 0));
    plain.run<unsigned int, char>(s.convert(ovSTRING_UTF32), s.length(), utf8.data(), utf8.size());
    if (std::memcmp(s.convert(ovSTRING_UTF8), utf8.data(), utf8.size()) != 0)
        std::abort();
    std::vector<ovChar16> utf16(
        plain.run<unsigned int, ovChar16>(s.convert(ovSTRING_UTF32), s.length(), nullptr, 0));
    plain.run<unsigned int, ovChar16>(s.convert(ovSTRING_UTF32), s.length(), utf16.data(),
                                      utf16.size());
    if (std::memcmp(s.convert(ovSTRING_UTF16), utf16.data(), 2 * utf16.size()) != 0)
        std::abort();
    return 0;
}
