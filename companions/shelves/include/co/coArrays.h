// coDynArr: a growable array; coPageArr: an array that grows by fixed-size pages, so
// elements never move once stored and appending never copies what is already there.
// Indexes are ints; an index outside [0, size()) is the caller's error (checked by
// `at`, which returns null instead).
#ifndef CO_ARRAYS_H
#define CO_ARRAYS_H

#include <algorithm>
#include <memory>
#include <utility>
#include <vector>

template <class T> class coDynArr {
public:
    coDynArr() = default;
    // n default-constructed elements (none when n <= 0).
    explicit coDynArr(int n) : m_items(n > 0 ? static_cast<size_t>(n) : 0) {}

    int size() const noexcept { return static_cast<int>(m_items.size()); }
    // Grows with default-constructed elements or shrinks; n < 0 counts as 0.
    void set_size(int n) { m_items.resize(n > 0 ? static_cast<size_t>(n) : 0); }
    void append(const T& v) { m_items.push_back(v); }
    void append(T&& v) { m_items.push_back(std::move(v)); }

    T& operator[](int i) noexcept { return m_items[static_cast<size_t>(i)]; }
    const T& operator[](int i) const noexcept { return m_items[static_cast<size_t>(i)]; }
    T* at(int i) noexcept {
        return i >= 0 && i < size() ? &m_items[static_cast<size_t>(i)] : nullptr;
    }
    const T* at(int i) const noexcept {
        return i >= 0 && i < size() ? &m_items[static_cast<size_t>(i)] : nullptr;
    }

    auto begin() noexcept { return m_items.begin(); }
    auto end() noexcept { return m_items.end(); }
    auto begin() const noexcept { return m_items.begin(); }
    auto end() const noexcept { return m_items.end(); }

private:
    std::vector<T> m_items;
};

// The three numbers are exponents of two, each clamped to [0, 24]: room for
// 2^`initial` elements is set aside in the page table up front (never more than
// 2^16 elements' worth, so a wild size hint costs little), every page holds
// 2^`page` elements, and the page table doubles, by at most 2^`table` entries
// at a time.
// Pages are allocated only as elements arrive.
template <class T> class coPageArr {
public:
    coPageArr() : coPageArr(0, 5, 10) {}
    coPageArr(int initial, int page, int table) : m_shift(clamp(page)), m_table(clamp(table)) {
        const int hint = clamp(initial) < 16 ? clamp(initial) : 16;
        m_pages.reserve((size_t{1} << hint) >> m_shift);
    }

    int size() const noexcept { return static_cast<int>(m_size); }
    // Elements that fit in the pages allocated so far.
    int capacity() const noexcept { return static_cast<int>(m_pages.size() * page_size()); }

    void append(const T& v) {
        slot_for_append() = v;
        ++m_size;
    }
    void append(T&& v) {
        slot_for_append() = std::move(v);
        ++m_size;
    }

    T& operator[](int i) noexcept { return element(static_cast<size_t>(i)); }
    const T& operator[](int i) const noexcept {
        return const_cast<coPageArr*>(this)->element(static_cast<size_t>(i));
    }
    const T* at(int i) const noexcept {
        return i >= 0 && static_cast<size_t>(i) < m_size ? &(*this)[i] : nullptr;
    }

private:
    static int clamp(int e) noexcept { return e < 0 ? 0 : (e > 24 ? 24 : e); }
    size_t page_size() const noexcept { return size_t{1} << m_shift; }
    T& element(size_t i) noexcept { return m_pages[i >> m_shift][i & (page_size() - 1)]; }
    void add_page() {
        if (m_pages.size() == m_pages.capacity()) {
            const size_t step = std::max<size_t>(1, m_pages.size());
            m_pages.reserve(m_pages.size() + std::min(step, size_t{1} << m_table));
        }
        m_pages.emplace_back(new T[page_size()]);
    }
    T& slot_for_append() {
        if (m_size == m_pages.size() * page_size())
            add_page();
        return element(m_size);
    }

    std::vector<std::unique_ptr<T[]>> m_pages;
    size_t m_size = 0;
    int m_shift;
    int m_table;
};

#endif // CO_ARRAYS_H
