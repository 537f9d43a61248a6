// Helpers shared by the string tests.
#pragma once

#include "ovra/ovString.h"

#include <initializer_list>
#include <string>
#include <vector>

namespace ovtest {

typedef std::basic_string<ovChar16> u16string;
typedef std::vector<unsigned int> codes;

// UTF-16 units written as numbers, so one literal works whatever ovChar16 is.
inline u16string u16(std::initializer_list<unsigned int> units) {
    u16string s;
    for (unsigned int u : units)
        s.push_back(static_cast<ovChar16>(u));
    return s;
}

// The code points of a string.
inline codes code_points(const ovString& s) {
    const unsigned int* p = s.convert(ovSTRING_UTF32);
    return p ? codes(p, p + s.length()) : codes();
}

inline ovString from_utf8(const std::string& text) {
    int st = -1;
    return ovString(ovSTRING_UTF8, text.c_str(), st);
}

inline std::string utf8_of(const ovString& s) {
    const char* p = s.convert(ovSTRING_UTF8);
    return p ? std::string(p) : std::string("<null>");
}

} // namespace ovtest
