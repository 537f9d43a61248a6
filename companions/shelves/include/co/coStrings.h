// The containers of narrow strings (`utString` of the basics library) that other
// libraries hand across their interfaces: a paged array and a set. Header only. The set
// orders by bytes, the null string before "", so the two stay distinct values.
#ifndef CO_STRINGS_H
#define CO_STRINGS_H

#include "co/coArrays.h"
#include "co/coSet.h"
#include "ut/utString.h"

#include <cstring>

struct utStringLess {
    bool operator()(const utString& a, const utString& b) const noexcept {
        if (a.is_null() || b.is_null())
            return a.is_null() && !b.is_null();
        const size_t n = a.length() < b.length() ? a.length() : b.length();
        const int c = n ? std::memcmp(a.c_str(), b.c_str(), n) : 0;
        return c < 0 || (c == 0 && a.length() < b.length());
    }
};

typedef coPageArr<utString> utStringcoPageArr;
typedef coSet<utString, utStringLess> utStringcoSet;

#endif // CO_STRINGS_H
