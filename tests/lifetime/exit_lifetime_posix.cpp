// The library used after every C++ static destructor has run, the latest an
// application can reach it at exit: from a function in the executable's
// finalisation list, which the loader runs after the static destructors of the
// executable and of every shared library. Run under ASan, any use of a freed
// constant shows; a wrong answer exits with 1.
#include "ovra/ovFileOperations.h"
#include "ovra/ovFrustrumChooser.h"
#include "ovra/ovPathName.h"
#include "ovra/ovStringEncoding.h"
#include "ovra/ovStringParse.h"
#include "ovra/ovSystemOperations.h"

#include <cstdio>
#include <cstring>
#include <unistd.h>

namespace {

int use_the_library(const char* when) {
    int failures = 0;
    auto expect = [&](bool ok, const char* what) {
        if (!ok) {
            std::fprintf(stderr, "%s: %s\n", when, what);
            ++failures;
        }
    };
    // An empty path name and a parent-less dirname both share the library's "." text.
    expect(std::strcmp(ovPathName(ovString(ovSTRING_EMPTY)).string().convert(ovSTRING_UTF8), ".") ==
               0,
           "empty path name is \".\"");
    expect(std::strcmp(ovPathName(OVSTRING("a")).dirname().string().convert(ovSTRING_UTF8), ".") ==
               0,
           "dirname of a bare name is \".\"");
    // Leading white space is skipped with the library's space set.
    const ovStringParseIntResult n = ovStringHandIntParser().parse(OVSTRING(" \t42"));
    expect(n.success() && n.result() == 42, "\" \\t42\" parses as 42");
    expect(OVSTRING("x\ty").first_non_matching_character(ovSTRING_SPACE_CHARS).index() == 0,
           "space set is whole");
    // The default encodings are process-wide objects too.
    int status = -1;
    const utString narrow =
        ovStringEncodingChooser().ut_encoding()->out(OVSTRING("caf\xC3\xA9"), status);
    expect(status == 0 && std::strcmp(narrow.c_str(), "caf\xC3\xA9") == 0, "UTF-8 encoding");
    // So are the chooser's operations.
    const ovIFileOperations* files = ovFrustrumChooser(nullptr).file_operations();
    expect(files && files->type_of_path(ovPathName(OVSTRING("."))) == ovPATH_DIRECTORY,
           "the default file operations answer");
    ovCriticalSection section(nullptr);
    { ovCriticalSectionLocker locker(&section); }
    expect(!ovFrustrumChooser(nullptr).system_info_operations()->computer_name().empty(),
           "computer name");
    return failures;
}

__attribute__((destructor)) void after_every_static_destructor() {
    if (use_the_library("at exit") != 0)
        _exit(1);
}

} // namespace

int main() {
    // Builds the library's first-use constants now, so that they are destroyed
    // (if they ever are) before the function above runs.
    return use_the_library("in main") == 0 ? 0 : 1;
}
