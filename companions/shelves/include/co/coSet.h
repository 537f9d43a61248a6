// coSet: an ordered set of values without duplicates, ordered by `Less`, for "have I
// seen this one" questions and sorted listings.
#ifndef CO_SET_H
#define CO_SET_H

#include <functional>
#include <set>
#include <utility>

template <class T, class Less = std::less<T>> class coSet {
public:
    typedef typename std::set<T, Less>::const_iterator const_iterator;

    coSet() = default;
    // Sizing hints (initial size exponent, fill percentage) for callers written against
    // hash tables; an ordered set needs none, so any values are accepted and ignored.
    coSet(int initial, int fill) noexcept {
        (void)initial;
        (void)fill;
    }

    int size() const noexcept { return static_cast<int>(m_items.size()); }
    bool empty() const noexcept { return m_items.empty(); }
    void clear() noexcept { m_items.clear(); }

    // True when the value was not there yet and has been added.
    bool insert(const T& v) { return m_items.insert(v).second; }
    bool add(const T& v) { return insert(v); }
    bool contains(const T& v) const { return m_items.find(v) != m_items.end(); }
    // True when the value was there and has been removed.
    bool remove(const T& v) { return m_items.erase(v) != 0; }

    // In order, smallest first.
    const_iterator begin() const noexcept { return m_items.begin(); }
    const_iterator end() const noexcept { return m_items.end(); }

private:
    std::set<T, Less> m_items;
};

#endif // CO_SET_H
