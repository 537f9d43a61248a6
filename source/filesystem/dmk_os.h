// The platform's 64-bit stream positions and access test, for the DMK files.
#pragma once

#include <cstdio>

namespace ovra_internal {

int seek64(FILE* f, long long offset, int origin);
long long tell64(FILE* f);
// _access (access on POSIX) of a UTF-8 path: 0 allowed, -1 not. `what` is 4 read,
// 2 write, 0 existence.
int access_utf8(const char* path, int what);

} // namespace ovra_internal
