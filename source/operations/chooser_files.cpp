#include "ovra/ovFrustrumChooser.h"

#include "operations/file_factory.h"

const ovIFileOperations* ovFrustrumChooser::file_operations() const {
    // Built on the first call only, once even when threads race for it, and never
    // destroyed, like every process-wide object of the library, so that calls from
    // static destructors at exit still find it.
    static const ovIFileOperations* const the_file_operations =
        ovra_internal::FileOperationsFactory::make().release();
    return the_file_operations;
}
