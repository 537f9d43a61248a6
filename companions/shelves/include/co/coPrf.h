// coPrf: a shared, reference-counted handle to one object, and coPrg: a single-owner
// pointer. Both are thin layers over the standard smart pointers so that interfaces can be
// passed around by handle. An empty handle is valid; dereferencing one is the caller's
// error, so test `empty()` (or the handle as a condition) first.
#ifndef CO_PRF_H
#define CO_PRF_H

#include <memory>
#include <utility>

// Marks a raw pointer that the handle must never delete (the caller owns it).
enum coPrfExtern { coPRF_EXTERN };

// The deleter of external handles: it leaves the object alone.
struct coPrfExternalDeleter {
    template <class T> void operator()(T*) const noexcept {}
};

template <class T> class coPrf {
public:
    // Empty handle.
    coPrf() noexcept = default;
    // Owns `p` (deleted when the last copy goes); null gives an empty handle.
    explicit coPrf(T* p) : m_ptr(p), m_external(false) {}
    // Refers to `p` without ever deleting it.
    coPrf(T* p, coPrfExtern) : m_ptr(p, coPrfExternalDeleter()), m_external(p != nullptr) {}
    // Shares ownership with a standard shared pointer.
    coPrf(std::shared_ptr<T> p) noexcept : m_ptr(std::move(p)), m_external(false) {}
    // From a handle to a derived type.
    template <class U, class = std::enable_if_t<std::is_convertible<U*, T*>::value>>
    coPrf(const coPrf<U>& o) noexcept : m_ptr(o.shared()), m_external(o.external()) {}

    // 1 when the handle holds an object it will never delete.
    bool external() const noexcept { return m_external; }
    bool empty() const noexcept { return !m_ptr; }
    explicit operator bool() const noexcept { return static_cast<bool>(m_ptr); }

    T* get() const noexcept { return m_ptr.get(); }
    T* operator->() const noexcept { return m_ptr.get(); }
    T& operator*() const noexcept { return *m_ptr; }

    const std::shared_ptr<T>& shared() const noexcept { return m_ptr; }
    operator std::shared_ptr<T>() const noexcept { return m_ptr; }

    // Number of handles sharing the object (0 when empty).
    long use_count() const noexcept { return m_ptr.use_count(); }
    void reset() noexcept {
        m_ptr.reset();
        m_external = false;
    }

    friend bool operator==(const coPrf& a, const coPrf& b) noexcept { return a.m_ptr == b.m_ptr; }
    friend bool operator!=(const coPrf& a, const coPrf& b) noexcept { return a.m_ptr != b.m_ptr; }

private:
    std::shared_ptr<T> m_ptr;
    bool m_external = false;
};

// Single owner of one object, deleted when the pointer is destroyed or reset.
template <class T> class coPrg {
public:
    coPrg() noexcept = default;
    explicit coPrg(T* p) noexcept : m_ptr(p) {}
    coPrg(coPrg&& o) noexcept = default;
    coPrg& operator=(coPrg&& o) noexcept = default;
    coPrg(const coPrg&) = delete;
    coPrg& operator=(const coPrg&) = delete;

    // Deletes what it held and takes `p`.
    coPrg& operator=(T* p) noexcept {
        reset(p);
        return *this;
    }
    // Gives up ownership without deleting.
    T* release() noexcept { return m_ptr.release(); }
    void reset(T* p = nullptr) noexcept { m_ptr.reset(p); }
    // Takes over what `o` holds; `o` becomes empty.
    void become(coPrg& o) noexcept {
        if (&o != this)
            m_ptr = std::move(o.m_ptr);
    }
    void swap(coPrg& o) noexcept { m_ptr.swap(o.m_ptr); }

    T* get() const noexcept { return m_ptr.get(); }
    T* operator->() const noexcept { return m_ptr.get(); }
    T& operator*() const noexcept { return *m_ptr; }
    bool empty() const noexcept { return !m_ptr; }
    explicit operator bool() const noexcept { return static_cast<bool>(m_ptr); }

private:
    std::unique_ptr<T> m_ptr;
};

#endif // CO_PRF_H
