// The plain conversions the fast ones are held to: ConvertUTF's own readers
// and writers of one code point, driven by the loop every whole conversion
// follows. No block, group or word-at-a-time path is involved.
#pragma once

#include "ovra/ovString.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <vector>

class PlainUtf : public ovOvra::ConvertUTF {
public:
    unsigned int read(const char*& p, const char* end) const {
        return read_code(ovOvra::CONVERT_UTF8, p, end);
    }
    unsigned int read(const ovChar16*& p, const ovChar16* end) const {
        return read_code(ovOvra::CONVERT_UTF16, p, end);
    }
    unsigned int read(const unsigned int*& p, const unsigned int*) const { return *p++; }

    size_t store(unsigned int c, char** o, const char* end) const {
        return store_code(ovOvra::CONVERT_UTF8, c, o, end);
    }
    size_t store(unsigned int c, ovChar16** o, const ovChar16* end) const {
        return store_code(ovOvra::CONVERT_UTF16, c, o, end);
    }
    size_t store(unsigned int c, unsigned int** o, const unsigned int*) const {
        if (o)
            *(*o)++ = c;
        return 1;
    }

    // A whole conversion, counting when dst is null or cap is 0.
    template <class In, class Out> size_t run(const In* src, size_t n, Out* dst, size_t cap) const {
        const In* p = src;
        const In* const end = src + n;
        unsigned int last = '?';
        if (!dst || cap == 0) {
            size_t count = 0;
            while (p < end) {
                last = read(p, end);
                count += store(last, static_cast<Out**>(nullptr), nullptr);
            }
            return last == 0 ? count : count + 1;
        }
        Out* o = dst;
        const Out* const oend = dst + cap;
        while (p < end && o < oend) {
            last = read(p, end);
            store(last, &o, oend);
        }
        if (last != 0 && o < oend)
            *o++ = 0;
        return static_cast<size_t>(o - dst);
    }
};

// The fast conversion f against the plain one on n units of src: the counted
// size and exactness, the whole output, and the output cut to `cut` units,
// never written past the capacity. Aborts on the first difference.
template <class In, class Out>
void check_against_plain(size_t (ovOvra::ConvertUTF::*f)(const In*, size_t, Out*, size_t) const,
                         const In* src, size_t n, size_t cut) {
    PlainUtf plain;
    ovOvra::ConvertUTF fast;
    const size_t need = plain.run<In, Out>(src, n, nullptr, 0);
    const bool counted_exact = plain.was_exact();
    if ((fast.*f)(src, n, nullptr, 0) != need || fast.was_exact() != counted_exact)
        std::abort();
    const size_t caps[2] = {need, cut % need + 1};
    for (size_t cap : caps) {
        PlainUtf ref;
        std::vector<Out> want(cap + 4, Out(0x23)), got(cap + 4, Out(0x23));
        const size_t want_n = ref.run<In, Out>(src, n, want.data(), cap);
        const size_t got_n = (fast.*f)(src, n, got.data(), cap);
        if (got_n != want_n || fast.was_exact() != ref.was_exact())
            std::abort();
        // Units past the count but inside the capacity are scratch space.
        if (!std::equal(got.begin(), got.begin() + got_n, want.begin()) ||
            !std::equal(got.begin() + cap, got.end(), want.begin() + cap))
            std::abort();
    }
}

// The fuzzer's bytes as units of T, whole units only.
template <class T> std::vector<T> units_of(const uint8_t* data, size_t size) {
    std::vector<T> v(size / sizeof(T));
    if (!v.empty())
        std::memcpy(v.data(), data, v.size() * sizeof(T));
    return v;
}
