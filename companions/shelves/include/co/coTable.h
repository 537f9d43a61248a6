// coTable: a table from keys to values, one value per key, ordered by `Less` on the
// keys. Pointers returned by `find` stay good until their entry is removed.
#ifndef CO_TABLE_H
#define CO_TABLE_H

#include <functional>
#include <map>
#include <utility>

template <class K, class V, class Less = std::less<K>> class coTable {
public:
    typedef typename std::map<K, V, Less>::const_iterator const_iterator;

    int size() const noexcept { return static_cast<int>(m_items.size()); }
    bool empty() const noexcept { return m_items.empty(); }
    void clear() noexcept { m_items.clear(); }

    // Adds the entry only when the key is new; true when it was added.
    bool insert(const K& k, const V& v) { return m_items.emplace(k, v).second; }
    // Adds the entry or replaces the key's value.
    void set(const K& k, const V& v) { m_items[k] = v; }
    // The key's value; null when the key is not there.
    V* find(const K& k) {
        auto it = m_items.find(k);
        return it == m_items.end() ? nullptr : &it->second;
    }
    const V* find(const K& k) const {
        auto it = m_items.find(k);
        return it == m_items.end() ? nullptr : &it->second;
    }
    bool contains(const K& k) const { return m_items.find(k) != m_items.end(); }
    // True when the key was there.
    bool remove(const K& k) { return m_items.erase(k) != 0; }

    // Entries (first the key, second the value) in key order.
    const_iterator begin() const noexcept { return m_items.begin(); }
    const_iterator end() const noexcept { return m_items.end(); }

private:
    std::map<K, V, Less> m_items;
};

#endif // CO_TABLE_H
