// Builders outside ovString write their text straight into a new string's
// shared block: one allocation, no copy.
#pragma once

#include "ovra/ovString.h"

namespace ovra_internal {

class TextBuilder final : public ovString {
public:
    using ovString::shorten;
    using ovString::with_room;
    // Code points [from, to) of s, clamped to it; valid (possibly empty) for a null s.
    static ovString slice(const ovString& s, size_t from, size_t to) { return s.slice(from, to); }
};

} // namespace ovra_internal
