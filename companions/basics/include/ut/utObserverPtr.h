// utObserverPtr<T>: a non-owning pointer that documents "borrowed, never deleted here".
// Header-only. Dereferencing a null utObserverPtr is undefined, as for a raw pointer.
#ifndef UT_OBSERVER_PTR_H
#define UT_OBSERVER_PTR_H

#include <cstddef>
#include <type_traits>

template <class T> class utObserverPtr {
public:
    constexpr utObserverPtr() noexcept = default;               // null
    constexpr utObserverPtr(std::nullptr_t) noexcept {}         // null
    constexpr explicit utObserverPtr(T* p) noexcept : m_p(p) {} // observes p

    // Converts from a pointer to a derived (or less qualified) type.
    template <class U, class = std::enable_if_t<std::is_convertible<U*, T*>::value>>
    constexpr utObserverPtr(utObserverPtr<U> o) noexcept : m_p(o.get()) {}

    constexpr T* get() const noexcept { return m_p; }                            // the raw pointer
    constexpr T& operator*() const noexcept { return *m_p; }                     // the pointee
    constexpr T* operator->() const noexcept { return m_p; }                     // member access
    constexpr explicit operator bool() const noexcept { return m_p != nullptr; } // non-null?
    constexpr void reset(T* p = nullptr) noexcept { m_p = p; } // observe p instead

private:
    T* m_p = nullptr;
};

// Pointer equality, across compatible types.
template <class T, class U>
constexpr bool operator==(utObserverPtr<T> a, utObserverPtr<U> b) noexcept {
    return a.get() == b.get();
}
// Pointer inequality, across compatible types.
template <class T, class U>
constexpr bool operator!=(utObserverPtr<T> a, utObserverPtr<U> b) noexcept {
    return !(a == b);
}
// Null tests in either order.
template <class T> constexpr bool operator==(utObserverPtr<T> a, std::nullptr_t) noexcept {
    return !a;
}
template <class T> constexpr bool operator==(std::nullptr_t, utObserverPtr<T> a) noexcept {
    return !a;
}
template <class T> constexpr bool operator!=(utObserverPtr<T> a, std::nullptr_t) noexcept {
    return static_cast<bool>(a);
}
template <class T> constexpr bool operator!=(std::nullptr_t, utObserverPtr<T> a) noexcept {
    return static_cast<bool>(a);
}

#endif // UT_OBSERVER_PTR_H
