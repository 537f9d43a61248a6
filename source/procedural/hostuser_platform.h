// What the host, user and directory functions need from each platform.
#pragma once

#include <string>

namespace ovra_proc {

// The host name; false when the system gives none.
bool host_name(std::string& name);

// The login name of the user running the process; false when unknown.
bool login_name(std::string& name);

// Changes the working directory to a UTF-8 path: 0 or -1.
int change_directory(const char* path);

} // namespace ovra_proc
