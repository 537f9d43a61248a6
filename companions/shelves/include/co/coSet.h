// coSet: an ordered set of values without duplicates, ordered by `Less`.
#ifndef CO_SET_H
#define CO_SET_H

#include <functional>
#include <set>
#include <utility>

template <class T, class Less = std::less<T>> class coSet {
public:
    typedef typename std::set<T, Less>::const_iterator const_iterator;

    int size() const noexcept { return static_cast<int>(m_items.size()); }
    bool empty() const noexcept { return m_items.empty(); }
    void clear() noexcept { m_items.clear(); }

    // True when the value was not there yet.
    bool insert(const T& v) { return m_items.insert(v).second; }
    bool contains(const T& v) const { return m_items.find(v) != m_items.end(); }
    // True when the value was there.
    bool remove(const T& v) { return m_items.erase(v) != 0; }

    // In order, smallest first.
    const_iterator begin() const noexcept { return m_items.begin(); }
    const_iterator end() const noexcept { return m_items.end(); }

private:
    std::set<T, Less> m_items;
};

#endif // CO_SET_H
