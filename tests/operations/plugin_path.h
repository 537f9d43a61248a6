// Where the tests' plug-in module lives: next to the test executable, as ovtestplugin
// with the platform's extension.
#pragma once

#include "ovra/ovDynamicLibrary.h"
#include "ovra/ovFrustrumChooser.h"

#include <string>

namespace ovtest {

// The plug-in's path without its extension, found through the executable's path.
inline std::string plugin_stem() {
    const ovPathName dir =
        ovFrustrumChooser(nullptr).library_loader_operations()->executable_path().dirname();
    return std::string(dir.string().convert(ovSTRING_UTF8)) + "/ovtestplugin";
}

} // namespace ovtest
