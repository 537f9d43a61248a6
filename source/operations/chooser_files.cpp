#include "ovra/ovFrustrumChooser.h"

#include "operations/file_factory.h"

const ovIFileOperations* ovFrustrumChooser::file_operations() const {
    // Built on the first call only, once even when threads race for it, and
    // destroyed at process exit.
    static const std::unique_ptr<const ovIFileOperations> the_file_operations =
        ovra_internal::FileOperationsFactory::make();
    return the_file_operations.get();
}
