// coDList: a doubly linked list of values. Elements never move while they are in the
// list, so cursors and iterators stay good until their own element is removed.
// A cursor is a position that can walk both ways and edit the list where it stands;
// iterators are the standard library's, for range-for. Operations at a cursor that is
// off the list (`valid()` false) do nothing and give false or null.
#ifndef CO_DLIST_H
#define CO_DLIST_H

#include <iterator>
#include <list>
#include <utility>

template <class T> class coDListCursor;

template <class T> class coDList {
public:
    typedef typename std::list<T>::iterator iterator;
    typedef typename std::list<T>::const_iterator const_iterator;

    int size() const noexcept { return static_cast<int>(m_items.size()); }
    bool empty() const noexcept { return m_items.empty(); }
    void clear() noexcept { m_items.clear(); }

    void insert_first(const T& v) { m_items.push_front(v); }
    void insert_last(const T& v) { m_items.push_back(v); }
    void insert_last(T&& v) { m_items.push_back(std::move(v)); }
    // Moves every element of `o` to the end of this list; `o` becomes empty.
    void append(coDList& o) noexcept { m_items.splice(m_items.end(), o.m_items); }
    // False on an empty list.
    bool remove_first() {
        if (m_items.empty())
            return false;
        m_items.pop_front();
        return true;
    }
    bool remove_last() {
        if (m_items.empty())
            return false;
        m_items.pop_back();
        return true;
    }
    // The end elements; null on an empty list.
    T* first() noexcept { return m_items.empty() ? nullptr : &m_items.front(); }
    T* last() noexcept { return m_items.empty() ? nullptr : &m_items.back(); }
    const T* first() const noexcept { return m_items.empty() ? nullptr : &m_items.front(); }
    const T* last() const noexcept { return m_items.empty() ? nullptr : &m_items.back(); }

    iterator begin() noexcept { return m_items.begin(); }
    iterator end() noexcept { return m_items.end(); }
    const_iterator begin() const noexcept { return m_items.begin(); }
    const_iterator end() const noexcept { return m_items.end(); }

private:
    friend class coDListCursor<T>;
    std::list<T> m_items;
};

template <class T> class coDListCursor {
public:
    // Stands on the list's first element (off the list when it is empty).
    explicit coDListCursor(coDList<T>& list) : m_list(&list), m_at(list.m_items.begin()) {}

    bool valid() const noexcept { return m_at != m_list->m_items.end(); }
    // The element under the cursor; null off the list.
    T* get() const noexcept { return valid() ? &*m_at : nullptr; }

    void to_first() noexcept { m_at = m_list->m_items.begin(); }
    void to_last() noexcept {
        m_at = m_list->m_items.empty() ? m_list->m_items.end() : std::prev(m_list->m_items.end());
    }
    // Steps towards the end; stepping past the last element leaves the list.
    coDListCursor& operator++() noexcept {
        if (valid())
            ++m_at;
        return *this;
    }
    // Steps towards the front; stepping before the first element leaves the list.
    coDListCursor& operator--() noexcept {
        if (!valid())
            return *this;
        m_at = m_at == m_list->m_items.begin() ? m_list->m_items.end() : std::prev(m_at);
        return *this;
    }

    // Inserts before or after the element under the cursor, which stays where it is.
    // Off the list, before appends and after prepends.
    void insert_before(const T& v) { m_list->m_items.insert(m_at, v); }
    void insert_after(const T& v) {
        if (valid())
            m_list->m_items.insert(std::next(m_at), v);
        else
            m_list->m_items.push_front(v);
    }
    // Removes the element under the cursor and moves to the one after it.
    bool remove() {
        if (!valid())
            return false;
        m_at = m_list->m_items.erase(m_at);
        return true;
    }

private:
    coDList<T>* m_list;
    typename std::list<T>::iterator m_at;
};

#endif // CO_DLIST_H
