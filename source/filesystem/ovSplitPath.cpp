#include "ovra/ovPathName.h"

#include <cstddef>

namespace {

constexpr size_t kNone = static_cast<size_t>(-1);

bool is_sep(char c) noexcept {
    return c == '/' || c == '\\';
}

// What both rules give for the null path.
void split_null(utString& directory, utString& name, utString& extension) {
    directory = "";
    name = utString();
    extension = "";
}

} // namespace

// Both rules read from a copy, so the path may also be one of the outputs.

void ovSplitPath::split_path(const utString& path, utString& directory, utString& name,
                             utString& extension) {
    const utString text(path);
    if (text.is_null()) {
        split_null(directory, name, extension);
        return;
    }
    const char* s = text.c_str();
    const size_t n = text.length();
    size_t dot = kNone;
    size_t sep = kNone;
    for (size_t i = n; i > 0; --i) {
        if (is_sep(s[i - 1])) {
            sep = i - 1;
            break;
        }
        if (s[i - 1] == '.' && dot == kNone)
            dot = i - 1;
    }
    const size_t name_end = dot == kNone ? n : dot;
    const size_t name_start = sep == kNone ? 0 : sep + 1;
    directory = sep == kNone ? utString("") : text.substr(0, sep);
    name = text.substr(name_start, name_end - name_start);
    extension = dot == kNone ? utString("") : text.substr(dot + 1);
}

void ovSplitPath::split_path_with_dot(const utString& path, utString& directory, utString& name,
                                      utString& extension) {
    const utString text(path);
    if (text.is_null()) {
        split_null(directory, name, extension);
        return;
    }
    if (text == "..") {
        directory = text.substr(0);
        name = "";
        extension = "";
        return;
    }
    const char* s = text.c_str();
    const size_t n = text.length();
    size_t start = n;
    while (start > 0 && !is_sep(s[start - 1]))
        --start;
    size_t dot = start;
    while (dot < n && s[dot] != '.')
        ++dot;
    directory = text.substr(0, start);
    name = text.substr(start, dot - start);
    extension = text.substr(dot);
}
