// Internal: the platform's part of ovIO.
#pragma once

namespace ovra_internal {

// The device that swallows output: "nul" or "/dev/null".
const char* null_device();
// 0 when `name` (UTF-8) exists, else -1 with errno set, as _access(name, 0).
int access_exists(const char* name);
// What a bounds failure does: ends the process at once.
[[noreturn]] void bounds_failure();

} // namespace ovra_internal
