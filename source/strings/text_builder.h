// Builders outside ovString write their text straight into a new string's
// shared block: one allocation, no copy.
#pragma once

#include "ovra/ovString.h"

namespace ovra_internal {

class TextBuilder final : public ovString {
public:
    using ovString::shorten;
    using ovString::with_room;
};

} // namespace ovra_internal
