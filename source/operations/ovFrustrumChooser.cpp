// The chooser's portable half: the accessors of every interface except files. Which
// class serves each interface is decided by the platform half (win/, posix/).
#include "ovra/ovFrustrumChooser.h"

#include "operations/chooser_internal.h"
#include "ovra/ovDynamicLibrary.h"
#include "ovra/ovSystemOperations.h"

#include <atomic>

namespace {
std::atomic<unsigned> the_defaults_built{0};
} // namespace

void ovra_internal::note_default_built(ChooserDefault which) noexcept {
    the_defaults_built.fetch_or(which, std::memory_order_relaxed);
}

unsigned ovra_internal::defaults_built_for_tests() noexcept {
    return the_defaults_built.load(std::memory_order_relaxed);
}

const ovISysInfoOperations* ovFrustrumChooser::system_info_operations() const {
    return &ovra_internal::platform_system_info_operations();
}

const ovIProcessThreadOperations* ovFrustrumChooser::process_thread_operations() const {
    return &ovra_internal::platform_process_thread_operations();
}

utObserverPtr<const ovILibraryLoaderOperations>
ovFrustrumChooser::library_loader_operations() const {
    return utObserverPtr<const ovILibraryLoaderOperations>(
        &ovra_internal::platform_library_loader_operations());
}

utObserverPtr<ovIProcessEnvironmentOperations>
ovFrustrumChooser::process_environment_operations() const {
    return utObserverPtr<ovIProcessEnvironmentOperations>(
        &ovra_internal::platform_process_environment_operations());
}

const ovISynchOperations* ovFrustrumChooser::synch_operations() const {
    return &ovra_internal::platform_synch_operations();
}
