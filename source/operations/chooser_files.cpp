#include "ovra/ovFrustrumChooser.h"

#include "operations/chooser_internal.h"
#include "operations/file_factory.h"

namespace {
const ovIFileOperations* make_file_operations() {
    ovra_internal::note_default_built(ovra_internal::CHOSEN_FILES);
    return ovra_internal::FileOperationsFactory::make().release();
}
} // namespace

const ovIFileOperations* ovFrustrumChooser::file_operations() const {
    // Built on the first call only, once even when threads race for it, and never
    // destroyed, like every process-wide object of the library, so that calls from
    // static destructors at exit still find it.
    static const ovIFileOperations* const the_file_operations = make_file_operations();
    return the_file_operations;
}
