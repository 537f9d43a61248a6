// Code-point helpers shared by the path-name classes.
#pragma once

#include "ovra/ovString.h"
#include "strings/text_builder.h"

#include <cstddef>

namespace ovra_internal {

constexpr size_t kNoIndex = static_cast<size_t>(-1);

// Index of the last `c` in the text, kNoIndex when none (or null).
inline size_t last_index_of(const ovString& text, unsigned int c) noexcept {
    const unsigned int* p = text.convert(ovSTRING_UTF32);
    for (size_t i = text.length(); i > 0; --i) {
        if (p[i - 1] == c)
            return i - 1;
    }
    return kNoIndex;
}

// Code points [from, to) of the text; the null string stays null, as every
// text derived from a null path or name does.
inline ovString slice(const ovString& text, size_t from, size_t to) {
    return text.invalid() ? ovString() : TextBuilder::slice(text, from, to);
}

// a, then `mid` unless it is 0, then b, built in one allocation. Null
// operands count as empty.
ovString join(const ovString& a, unsigned int mid, const ovString& b);

} // namespace ovra_internal
