// Internal: the chooser's platform half for every interface but files, and the record of
// which defaults were built.
//
// The platform files (win/, posix/) name the implementation of each interface; this is
// the only place outside the chooser that knows them. Each default lives in a
// function-local static of its own, so it is built once, on its first request, safely
// even when two threads ask at once. It is never destroyed, so that code running from a
// static destructor at exit can still use it.
#pragma once

#include "common/immortal.h"

class ovISysInfoOperations;
class ovIProcessThreadOperations;
class ovILibraryLoaderOperations;
class ovIProcessEnvironmentOperations;
class ovISynchOperations;

namespace ovra_internal {

// One bit per default instance.
enum ChooserDefault : unsigned {
    CHOSEN_SYSTEM_INFO = 1u << 0,
    CHOSEN_PROCESS_THREAD = 1u << 1,
    CHOSEN_LIBRARY_LOADER = 1u << 2,
    CHOSEN_PROCESS_ENVIRONMENT = 1u << 3,
    CHOSEN_SYNCH = 1u << 4,
    CHOSEN_FILES = 1u << 5,
};

// Records that the default `which` has been built.
void note_default_built(ChooserDefault which) noexcept;

// For tests only, not exported (tests link the library's archive): the ChooserDefault
// bits of every default built so far in this process.
unsigned defaults_built_for_tests() noexcept;

// A default instance that records its construction and is never destroyed.
template <class T> struct RecordedDefault {
    explicit RecordedDefault(ChooserDefault which) { note_default_built(which); }
    T& object() { return held.value; }
    Immortal<T> held;
};

// The platform's default instances.
const ovISysInfoOperations& platform_system_info_operations();
const ovIProcessThreadOperations& platform_process_thread_operations();
const ovILibraryLoaderOperations& platform_library_loader_operations();
ovIProcessEnvironmentOperations& platform_process_environment_operations();
const ovISynchOperations& platform_synch_operations();

} // namespace ovra_internal
