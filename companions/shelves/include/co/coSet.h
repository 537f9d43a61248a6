// coSet: a set of distinct values kept in a hash table, for "have I seen this one"
// questions. Values need a hasher and equality; `coSet` asks `coHasher<T>`, which
// callers specialise for their own types (std::hash is the default).
#ifndef CO_SET_H
#define CO_SET_H

#include <cstddef>
#include <functional>
#include <unordered_set>

template <class T> struct coHasher {
    size_t operator()(const T& v) const { return std::hash<T>()(v); }
};

template <class T> class coSet {
public:
    coSet() : coSet(4, 50) {}
    // Room for 2^`initial` values up front (exponent clamped to [0, 16]); the table
    // grows when it is more than `fill` percent full (clamped to [10, 400]).
    coSet(int initial, int fill) {
        const int e = initial < 0 ? 0 : (initial > 16 ? 16 : initial);
        const int f = fill < 10 ? 10 : (fill > 400 ? 400 : fill);
        m_items.max_load_factor(static_cast<float>(f) / 100.0f);
        m_items.reserve(size_t{1} << e);
    }

    int size() const noexcept { return static_cast<int>(m_items.size()); }
    bool contains(const T& v) const { return m_items.find(v) != m_items.end(); }
    // True when v was not there yet and has been added.
    bool add(const T& v) { return m_items.insert(v).second; }
    // True when v was there and has been removed.
    bool remove(const T& v) { return m_items.erase(v) != 0; }

private:
    std::unordered_set<T, coHasher<T>> m_items;
};

#endif // CO_SET_H
