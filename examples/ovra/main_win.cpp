// Windows hands main its arguments in the ANSI code page, which cannot hold
// most text; wmain (linked with -municode) gets them as UTF-16.
#include "ovra_tool.h"

#include "ovra/ovString.h"

#include <windows.h>

int wmain(int argc, wchar_t** argv) {
    // The tool writes UTF-8; a console shows it as such only when told.
    SetConsoleOutputCP(CP_UTF8);
    std::vector<std::string> args;
    for (int i = 1; i < argc; ++i)
        args.push_back(ovString(ovSTRING_L, argv[i]).to_utf8());
    return ovra_tool_run(args);
}
