// The search behind both wildcard matchers. Each matcher walks its pattern straight
// ahead by its own rules until it knows the answer or meets a "*"; a "*" at pattern
// position p, reached at name position n, matches when the walk from (m, p + 1)
// matches for some m from n to the end of the name. Done literally that search is
// exponential in the number of stars. Since every walk depends only on (m, p), a star
// that failed from n fails from every later position too, so each star remembers the
// smallest position it failed from and never searches there again: the work is about
// pattern length x name length. Stars are kept on an explicit stack, so a long pattern
// cannot exhaust the call stack.
#pragma once

#include <cstddef>
#include <vector>

namespace ovra_internal {

enum class WalkEnd { FAIL, MATCH, STAR };

// walk(n, p) walks from (n, p) and returns FAIL or MATCH, or STAR with n and p left at
// a "*" (p its position).
template <class Walk> int wildcard_search(size_t name_length, size_t pattern_length, Walk walk) {
    struct Frame {
        size_t p;     // the star's position
        size_t first; // where its search began
        size_t m;     // the position being tried
    };
    const size_t none = static_cast<size_t>(-1);
    std::vector<size_t> failed_from; // made at the first star only
    std::vector<Frame> stack;
    size_t n = 0, p = 0;
    for (;;) {
        WalkEnd end = walk(n, p);
        if (end == WalkEnd::STAR) {
            if (failed_from.empty())
                failed_from.assign(pattern_length, none);
            if (n >= failed_from[p]) {
                end = WalkEnd::FAIL;
            } else {
                stack.push_back(Frame{p, n, n});
                p = p + 1;
                continue;
            }
        }
        if (end == WalkEnd::MATCH)
            return 1;
        // A failure: the innermost star tries one more character.
        for (;;) {
            if (stack.empty())
                return 0;
            Frame& f = stack.back();
            if (f.m < name_length && f.m + 1 < failed_from[f.p]) {
                ++f.m;
                n = f.m;
                p = f.p + 1;
                break;
            }
            failed_from[f.p] = f.first;
            stack.pop_back();
        }
    }
}

} // namespace ovra_internal
