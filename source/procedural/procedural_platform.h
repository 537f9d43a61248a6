// What the procedural functions need from each platform.
#pragma once

#include <cstdint>
#include <ctime>
#include <string>

namespace ovra_proc {

// The Windows runtime's number for the platform's errno value e; 0, negative
// values and the Windows platform pass unchanged. A POSIX value without a
// Windows counterpart gives kNoWindowsErrno.
constexpr int kNoWindowsErrno = 0x7fffffff;
int windows_errno(int e);

// The text that gives `path` to the command interpreter as one word; false
// when no quoting makes it safe there.
bool shell_word(const std::string& path, std::string& word);

// Broken-down time of t (seconds since the epoch) in UTC or local time; false
// when the platform cannot convert it.
bool to_tm(int64_t t, bool utc, std::tm& out);

// The current time in whole seconds since the epoch.
int64_t now_seconds();

// _mktime64 / mktime of the fields, read as local time; -1 on failure.
int64_t from_local_tm(std::tm& fields);

} // namespace ovra_proc
