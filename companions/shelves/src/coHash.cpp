#include "co/coHash.h"

#include <cstdint>

unsigned int co_hash(const void* data, int n) {
    std::uint32_t h = 2166136261u;
    if (!data || n <= 0)
        return h;
    const unsigned char* p = static_cast<const unsigned char*>(data);
    for (int i = 0; i < n; ++i) {
        h ^= p[i];
        h *= 16777619u;
    }
    return h;
}
