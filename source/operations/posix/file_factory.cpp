#include "operations/file_factory.h"

std::unique_ptr<const ovIFileOperations> ovra_internal::FileOperationsFactory::make() {
    return std::unique_ptr<const ovIFileOperations>(new ovPosixFileOperations);
}
