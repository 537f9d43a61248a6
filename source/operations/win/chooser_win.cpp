// The chooser's Windows half: the classes that serve each interface by default.
#include "operations/chooser_internal.h"
#include "ovra/ovDynamicLibrary.h"
#include "ovra/ovSystemOperations.h"

using namespace ovra_internal;

const ovISysInfoOperations& ovra_internal::platform_system_info_operations() {
    static RecordedDefault<ovWinSysInfoOperations> the_default(CHOSEN_SYSTEM_INFO);
    return the_default.object();
}

const ovIProcessThreadOperations& ovra_internal::platform_process_thread_operations() {
    static RecordedDefault<ovWinProcessThreadOperations> the_default(CHOSEN_PROCESS_THREAD);
    return the_default.object();
}

const ovILibraryLoaderOperations& ovra_internal::platform_library_loader_operations() {
    static RecordedDefault<ovWinLibraryLoaderOperations> the_default(CHOSEN_LIBRARY_LOADER);
    return the_default.object();
}

ovIProcessEnvironmentOperations& ovra_internal::platform_process_environment_operations() {
    static RecordedDefault<ovWinProcessEnvironmentOperations> the_default(
        CHOSEN_PROCESS_ENVIRONMENT);
    return the_default.object();
}

const ovISynchOperations& ovra_internal::platform_synch_operations() {
    static RecordedDefault<ovWinSynchOperations> the_default(CHOSEN_SYNCH);
    return the_default.object();
}
