// The wildcard rules as plain recursions, exponential but obviously right: the oracle the
// bounded matchers are compared with, in the tests and in the fuzz target.
#pragma once

#include <cstring>
#include <string>

namespace ovtest {

// ovFileMatch's rules: name[n..] against pat[p..].
inline bool literal_match(const std::string& name, size_t n, const std::string& pat, size_t p) {
    if (p < pat.size() && pat[p] == '*') {
        if (literal_match(name, n, pat, p + 1))
            return true;
        return n < name.size() && literal_match(name, n + 1, pat, p);
    }
    if (p < pat.size() && pat[p] == '?' && n < name.size())
        return literal_match(name, n + 1, pat, p + 1);
    const size_t s = pat.find_first_of("*?", p);
    if (s == std::string::npos)
        return name.substr(n) == pat.substr(p);
    const size_t after = n + (s - p);
    if (after >= name.size())
        return false;
    return name.substr(n, s - p) == pat.substr(p, s - p) && literal_match(name, after, pat, s);
}

// The older finder's filter rules.
inline bool literal_filter(const char* name, const char* filter) {
    if (std::strcmp(filter, "*") == 0)
        return true;
    for (; *filter; ++filter) {
        if (*filter != '*') {
            if (!*name || (*filter != '?' && *filter != *name))
                return false;
            ++name;
        } else if (*name && literal_filter(name + 1, filter)) {
            return true;
        }
    }
    return *name == '\0';
}

} // namespace ovtest
