// Windows: the descriptor's own length and position, and the runtime's error texts.
#include "ovio/input_file_os.h"

#include <io.h>
#include <stdio.h>
#include <string.h>

long long ovra_internal::stream_length(FILE* stream) {
    return _lseek(_fileno(stream), 0, SEEK_END);
}

bool ovra_internal::seek_stream(FILE* stream, long long offset) {
    return _lseek(_fileno(stream), static_cast<long>(offset), SEEK_SET) >= 0;
}

std::string ovra_internal::runtime_error_text(const char* prefix) {
    const char* text = _strerror(prefix);
    return text ? text : prefix;
}
