// The containers of narrow strings (`utString` of the basics library) that other
// libraries hand across their interfaces: a paged array and a set. Header only; the
// hash is co_hash of the text's bytes, so the null string and "" hash alike but stay
// distinct values.
#ifndef CO_STRINGS_H
#define CO_STRINGS_H

#include "co/coArrays.h"
#include "co/coHash.h"
#include "co/coSet.h"
#include "ut/utString.h"

template <> struct coHasher<utString> {
    size_t operator()(const utString& s) const {
        return co_hash(s.c_str(), static_cast<int>(s.length()));
    }
};

typedef coPageArr<utString> utStringcoPageArr;
typedef coSet<utString> utStringcoSet;

#endif // CO_STRINGS_H
