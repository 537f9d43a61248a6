// The platform's file operations, made for the chooser and nowhere else.
#pragma once

#include "ovra/ovFileOperations.h"

#include <memory>

namespace ovra_internal {

// Defined once per platform (win/, posix/): the only code that names the class.
struct FileOperationsFactory {
    static std::unique_ptr<const ovIFileOperations> make();
};

} // namespace ovra_internal
