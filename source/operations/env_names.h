// Internal: the one rule for which variable names and values the environment takes.
#pragma once

#include "ovra/ovString.h"

namespace ovra_internal {

// A name the environment can hold: valid, not failed, not empty, without "=".
inline bool acceptable_env_name(const ovString& name) {
    return !name.invalid() && !name.failed() && !name.empty() &&
           name.find_substring(ovString::literal("=")) == name.end();
}

// A value the environment can hold: valid and not failed ("" is allowed).
inline bool acceptable_env_value(const ovString& value) {
    return !value.invalid() && !value.failed();
}

} // namespace ovra_internal
