#include "procedural/iowrap_defaults.h"

#include <io.h>

// The runtime's descriptor functions have the table's signatures exactly.
ovReadFunc ovra_io::default_read() {
    return _read;
}
ovWriteFunc ovra_io::default_write() {
    return _write;
}
ovCloseFunc ovra_io::default_close() {
    return _close;
}
ovTellFunc ovra_io::default_tell() {
    return _tell;
}
ovLseekFunc ovra_io::default_lseek() {
    return _lseek;
}
ovTruncateFunc ovra_io::default_truncate() {
    return _chsize;
}
ovIsattyFunc ovra_io::default_isatty() {
    return _isatty;
}
