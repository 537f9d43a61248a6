// Internal: what the read-error recovery of ovInputFile asks of the platform, and the
// pause between its attempts, which tests shorten.
#pragma once

#include <cstdio>
#include <string>

namespace ovra_internal {

// The length of the stream's file; negative, errno set, when it cannot be found.
long long stream_length(FILE* stream);
// Moves the stream's file to `offset`; false, errno set, on failure.
bool seek_stream(FILE* stream, long long offset);
// The runtime's text for errno: "<prefix>: <message>\n".
std::string runtime_error_text(const char* prefix);

// Milliseconds between recovery attempts: 300.
unsigned& read_retry_pause_ms();

} // namespace ovra_internal
