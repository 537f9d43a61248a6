// Links inside trees. The tree walks (deleting, moving) must never step through a
// symbolic link (POSIX) or a reparse point such as a junction (Windows) into what it
// points to, and the file operations follow links when they answer a path's type. So
// the walks ask the system about links directly, on the path's own text: a path that
// names nothing on the disk (a test double's) is simply not a link.
#pragma once

#include "ovra/ovPathName.h"

namespace ovra_internal {

// True when the path itself is a link (not what it points to).
bool is_link(const ovPathName& path);
// Removes the link itself, never its target; true on success.
bool remove_link(const ovPathName& path);

} // namespace ovra_internal
