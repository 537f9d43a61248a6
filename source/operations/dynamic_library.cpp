// Dynamic libraries: the portable part of the loader interface, the loader, the library
// object and the older dynamic-object interface.
#include "ovra/ovDynamicLibrary.h"

#include "ovra/ovFrustrumChooser.h"
#include "ovra/ovStringEncoding.h"

#include <ostream>
#include <string>

ovStatus ovILibraryLoaderOperations::load_library(const utString& name, void*& handle) const {
    handle = nullptr;
    const utString extension = shared_library_extension();
    if (name.is_null() || extension.is_null())
        return ovStatus(0);
    // Appended even when the name has an extension already: callers give bare names.
    const std::string full = std::string(name.c_str()) + extension.c_str();
    int status = 0;
    const ovString text = ovStringEncodingChooser().ut_encoding()->in(full.c_str(), status);
    if (status != 0)
        return ovStatus(0);
    return load_library_ov(ovPathName(text), handle);
}

ovILibraryLoaderOperations::~ovILibraryLoaderOperations() = default;

ovDynamicLibraryLoader::ovDynamicLibraryLoader(
    utObserverPtr<const ovILibraryLoaderOperations> operations)
    : m_operations(operations ? operations
                              : ovFrustrumChooser(nullptr).library_loader_operations()) {}

std::unique_ptr<ovDynamicLibrary> ovDynamicLibraryLoader::load_library(const utString& name,
                                                                       ovStatus& status) {
    void* handle = nullptr;
    // The caller's status is left untested: the test here is made on the original.
    const ovStatus loaded = m_operations->load_library(name, handle);
    status = loaded;
    if (!loaded.ok())
        return nullptr;
    return std::unique_ptr<ovDynamicLibrary>(new ovDynamicLibrary(handle, m_operations));
}

std::unique_ptr<ovDynamicLibrary> ovDynamicLibraryLoader::load_library_ov(const ovPathName& path,
                                                                          ovStatus& status) {
    void* handle = nullptr;
    const ovStatus loaded = m_operations->load_library_ov(path, handle);
    status = loaded;
    if (!loaded.ok())
        return nullptr;
    return std::unique_ptr<ovDynamicLibrary>(new ovDynamicLibrary(handle, m_operations));
}

ovDynamicLibraryLoader::~ovDynamicLibraryLoader() = default;

ovDynamicLibrary::ovDynamicLibrary(void* handle,
                                   utObserverPtr<const ovILibraryLoaderOperations> operations)
    : m_operations(operations), m_handle(handle), m_attached(true) {}

void (*ovDynamicLibrary::proc_address(utString name, ovStatus& status))() {
    void (*function)() = nullptr;
    const ovStatus found = m_operations->get_proc_address(m_handle, name, function);
    status = found;
    return found.ok() ? function : nullptr;
}

ovDynamicLibrary::~ovDynamicLibrary() {
    if (m_attached)
        m_operations->free_library(m_handle).ok();
}

ovDynObj::ovDynObj(const char*, ovDynOpenMode, ovDynError* error)
    : m_handle(nullptr), m_error_text(nullptr) {
    if (error)
        *error = ovDYN_NOT_IMPLEMENTED;
}

ovDynObj::~ovDynObj() = default;

void* ovDynObj::symbol_address(const char*) const {
    return m_handle;
}

std::ostream& operator<<(std::ostream& os, const ovDynError& e) {
    switch (e) {
    case ovDYN_OK:
        return os << "ovDYN_OK";
    case ovDYN_NOT_IMPLEMENTED:
        return os << "ovDYN_NOT_IMPLEMENTED";
    case ovDYN_FILE_NOT_FOUND:
        return os << "ovDYN_FILE_NOT_FOUND";
    case ovDYN_PROBLEM_IN_OPEN:
        return os << "ovDYN_PROBLEM_IN_OPEN";
    case ovDYN_NO_SUCH_SYMBOL:
        return os << "ovDYN_NO_SUCH_SYMBOL";
    case ovDYN_ERROR_FROM_FUNCTION:
        return os << "ovDYN_ERROR_FROM_FUNCTION";
    }
    return os << "ERROR: ovDynError type unknown";
}

std::ostream& operator<<(std::ostream& os, const ovDynOpenMode& m) {
    switch (m) {
    case ovDYN_LAZY:
        return os << "ovDYN_LAZY";
    case ovDYN_NOW:
        return os << "ovDYN_NOW";
    }
    return os << "ERROR: ovDynOpenMode type unknown";
}
