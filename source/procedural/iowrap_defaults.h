// The runtime functions behind the I/O table's defaults, one set per platform.
#pragma once

#include "ovra/ovIOWrap.h"

namespace ovra_io {

ovReadFunc default_read();
ovWriteFunc default_write();
ovCloseFunc default_close();
ovTellFunc default_tell();
ovLseekFunc default_lseek();
ovTruncateFunc default_truncate();
ovIsattyFunc default_isatty();

long commit_nothing(int fd);

} // namespace ovra_io
