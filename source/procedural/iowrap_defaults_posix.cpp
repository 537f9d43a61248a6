#include "procedural/iowrap_defaults.h"

#include <unistd.h>

// Only POSIX file: adapters from the table's runtime-style signatures (int
// counts, long offsets) to the descriptor calls.
namespace {

int posix_read(int fd, void* buffer, unsigned int count) {
    return static_cast<int>(::read(fd, buffer, count));
}
int posix_write(int fd, const void* buffer, unsigned int count) {
    return static_cast<int>(::write(fd, buffer, count));
}
int posix_close(int fd) {
    return ::close(fd);
}
long posix_tell(int fd) {
    return static_cast<long>(::lseek(fd, 0, SEEK_CUR));
}
long posix_lseek(int fd, long offset, int origin) {
    return static_cast<long>(::lseek(fd, offset, origin));
}
int posix_truncate(int fd, long size) {
    return ::ftruncate(fd, size);
}
int posix_isatty(int fd) {
    return ::isatty(fd);
}

} // namespace

ovReadFunc ovra_io::default_read() {
    return posix_read;
}
ovWriteFunc ovra_io::default_write() {
    return posix_write;
}
ovCloseFunc ovra_io::default_close() {
    return posix_close;
}
ovTellFunc ovra_io::default_tell() {
    return posix_tell;
}
ovLseekFunc ovra_io::default_lseek() {
    return posix_lseek;
}
ovTruncateFunc ovra_io::default_truncate() {
    return posix_truncate;
}
ovIsattyFunc ovra_io::default_isatty() {
    return posix_isatty;
}
