// The ovra tool's verbs, shared by its two entry points: main on POSIX, wmain
// on Windows (which receives its arguments as UTF-16, not in the ANSI code page).
#pragma once

#include <string>
#include <vector>

// Runs the verb named by args[0] on the remaining arguments, all UTF-8; the
// result is the process's exit status.
int ovra_tool_run(const std::vector<std::string>& args);
