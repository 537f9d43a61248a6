// The library's process-wide objects outlive every static destructor.
//
// Each is built on first use (or with the library) and never destroyed, so code running
// from another object's destructor at process exit (an application's global, a library
// unloaded late) still finds it whole. The system reclaims the memory with the process;
// leak checkers see it as still reachable.
#pragma once

#include <utility>

namespace ovra_internal {

template <class T> class Immortal {
public:
    template <class... A> explicit Immortal(A&&... args) : value(std::forward<A>(args)...) {}
    Immortal(const Immortal&) = delete;
    Immortal& operator=(const Immortal&) = delete;
    // Deliberately leaves `value` alone.
    ~Immortal() {}

    // Public so that a reference to it can be bound at compile time.
    union {
        T value;
    };
};

} // namespace ovra_internal
