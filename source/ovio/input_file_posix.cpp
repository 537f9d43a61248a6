// POSIX: length and position through the stream, so that streams without a
// descriptor (fopencookie, fmemopen) recover as well; texts as the Windows runtime
// writes them.
#include "ovio/input_file_os.h"

#include <cerrno>
#include <cstring>
#include <sys/types.h>

long long ovra_internal::stream_length(FILE* stream) {
    if (fseeko(stream, 0, SEEK_END) != 0)
        return -1;
    return ftello(stream);
}

bool ovra_internal::seek_stream(FILE* stream, long long offset) {
    return fseeko(stream, static_cast<off_t>(offset), SEEK_SET) == 0;
}

std::string ovra_internal::runtime_error_text(const char* prefix) {
    const int error = errno;
    return std::string(prefix ? prefix : "") + ": " + std::strerror(error) + "\n";
}
