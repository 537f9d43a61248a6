// POSIX: modules through dlopen, dlsym and dlclose.
#include "ovra/ovDynamicLibrary.h"

#include <dlfcn.h>
#include <unistd.h>
#include <vector>

ovStatus ovPosixLibraryLoaderOperations::load_library_ov(const ovPathName& path,
                                                         void*& handle) const {
    handle = nullptr;
    // dlopen of "" would hand back the executable itself.
    if (path.invalid() || path.string().empty())
        return ovStatus(0);
    handle = dlopen(path.string().convert(ovSTRING_UTF8), RTLD_NOW | RTLD_LOCAL);
    return ovStatus(handle ? 1 : 0);
}

ovStatus ovPosixLibraryLoaderOperations::get_proc_address(void* const& handle, const utString& name,
                                                          void (*&function)()) const {
    function = nullptr;
    if (!handle || name.empty())
        return ovStatus(0);
    void* found = dlsym(handle, name.c_str());
    function = reinterpret_cast<void (*)()>(found);
    return ovStatus(function ? 1 : 0);
}

ovStatus ovPosixLibraryLoaderOperations::free_library(void* handle) const {
    if (!handle)
        return ovStatus(0);
    return ovStatus(dlclose(handle) == 0 ? 1 : 0);
}

utString ovPosixLibraryLoaderOperations::shared_library_extension() const {
    return utString(utSTRING_LIT, ".so");
}

ovPathName ovPosixLibraryLoaderOperations::executable_path() const {
    // readlink neither terminates nor says whether it cut: a full buffer is read again.
    std::vector<char> buffer(256);
    for (;;) {
        const ssize_t n = readlink("/proc/self/exe", buffer.data(), buffer.size());
        if (n < 0)
            return ovPathName();
        if (static_cast<size_t>(n) < buffer.size()) {
            buffer[static_cast<size_t>(n)] = '\0';
            break;
        }
        buffer.resize(buffer.size() * 2);
    }
    int status = 0;
    ovString path(ovSTRING_UTF8, buffer.data(), status);
    return status == 0 ? ovPathName(path) : ovPathName();
}
