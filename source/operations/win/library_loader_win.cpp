// Windows: modules through LoadLibraryW, GetProcAddress and FreeLibrary.
#include "ovra/ovDynamicLibrary.h"

#include "common/win32.h"

#include <memory>

ovStatus ovWinLibraryLoaderOperations::load_library_ov(const ovPathName& path,
                                                       void*& handle) const {
    handle = nullptr;
    if (path.invalid() || path.string().empty())
        return ovStatus(0);
    handle = LoadLibraryW(path.string().convert(ovSTRING_WCS));
    return ovStatus(handle ? 1 : 0);
}

ovStatus ovWinLibraryLoaderOperations::get_proc_address(void* const& handle, const utString& name,
                                                        void (*&function)()) const {
    function = nullptr;
    // GetProcAddress of a null module searches the executable: not what was asked.
    if (!handle || name.empty())
        return ovStatus(0);
    FARPROC found = GetProcAddress(static_cast<HMODULE>(handle), name.c_str());
    function = reinterpret_cast<void (*)()>(reinterpret_cast<void*>(found));
    return ovStatus(function ? 1 : 0);
}

ovStatus ovWinLibraryLoaderOperations::free_library(void* handle) const {
    if (!handle)
        return ovStatus(0);
    return ovStatus(FreeLibrary(static_cast<HMODULE>(handle)) ? 1 : 0);
}

utString ovWinLibraryLoaderOperations::shared_library_extension() const {
    return utString(utSTRING_LIT, ".dll");
}

ovPathName ovWinLibraryLoaderOperations::executable_path() const {
    // A full buffer means the name was cut: read it again into twice the room, up to
    // the longest path Windows has.
    std::unique_ptr<wchar_t[]> buffer;
    for (DWORD size = MAX_PATH; size <= 32768 * 2; size *= 2) {
        buffer.reset(new wchar_t[size]());
        const DWORD n = GetModuleFileNameW(nullptr, buffer.get(), size);
        if (n == 0)
            return ovPathName();
        if (n < size) {
            int status = 0;
            ovString path(ovSTRING_WCS, buffer.get(), status);
            return status == 0 ? ovPathName(path) : ovPathName();
        }
    }
    return ovPathName();
}
