/// @file
/// Dynamic libraries (plug-in modules) loaded at run time.
///
/// `ovILibraryLoaderOperations` is the operating-system seam: load a module, look up a
/// symbol, free the module, the platform's module extension and the running executable's
/// path. `ovDynamicLibraryLoader` turns a successful load into an `ovDynamicLibrary` that
/// owns the module and frees it when destroyed. `ovDynObj` is an older interface that
/// reports it is not implemented; its enumerations and their stream operators remain.
///
/// Error contract: failures come back as ovStatus(0) with a null handle, function or
/// library pointer, or an empty path name; nothing throws, no error text is kept and the
/// system's error code is not read. Bad input (null or empty names and paths, invalid
/// path names, a null handle) fails without calling the system. A handle must come from
/// this loader; freeing one twice is the caller's error.
///
/// Platforms: Windows uses LoadLibraryW, GetProcAddress and FreeLibrary, the extension
/// ".dll", and GetModuleFileNameW (long paths are read again into a buffer of the size
/// they need). POSIX uses dlopen(RTLD_NOW | RTLD_LOCAL), dlsym and dlclose, the extension
/// ".so", and /proc/self/exe. A bare name is searched for by the system's own rules.
#pragma once

#include "ovra/ovExport.h"
#include "ovra/ovPathName.h"
#include "ovra/ovStatus.h"
#include "ut/utObserverPtr.h"
#include "ut/utString.h"

#include <iosfwd>
#include <memory>

/// Loads, looks up and frees modules. Stateless: one object may serve every thread.
class OV_API ovILibraryLoaderOperations {
public:
    /// Appends shared_library_extension() to name, always (plugin gives plugin.dll, and
    /// plugin.dll gives plugin.dll.dll), and loads that through load_library_ov. A null
    /// name or one that is not UTF-8 fails without loading anything.
    virtual ovStatus load_library(const utString& name, void*& handle) const;
    /// Loads the module at path; handle is the module, null on failure.
    virtual ovStatus load_library_ov(const ovPathName& path, void*& handle) const = 0;
    /// Looks up the exported name as it is; function is null on failure.
    virtual ovStatus get_proc_address(void* const& handle, const utString& name,
                                      void (*&function)()) const = 0;
    /// Frees a module loaded here.
    virtual ovStatus free_library(void* handle) const = 0;
    /// The platform's module extension, with its dot.
    virtual utString shared_library_extension() const = 0;
    /// The path of the running executable; the empty path name on failure.
    virtual ovPathName executable_path() const = 0;
    virtual ~ovILibraryLoaderOperations();
};

#if defined(_WIN32)
/// Modules through LoadLibraryW, GetProcAddress and FreeLibrary.
class OV_API ovWinLibraryLoaderOperations final : public ovILibraryLoaderOperations {
public:
    ovStatus load_library_ov(const ovPathName& path, void*& handle) const override;
    ovStatus get_proc_address(void* const& handle, const utString& name,
                              void (*&function)()) const override;
    ovStatus free_library(void* handle) const override;
    /// ".dll".
    utString shared_library_extension() const override;
    ovPathName executable_path() const override;
};
#else
/// Modules through dlopen, dlsym and dlclose.
class OV_API ovPosixLibraryLoaderOperations final : public ovILibraryLoaderOperations {
public:
    /// dlopen with RTLD_NOW | RTLD_LOCAL.
    ovStatus load_library_ov(const ovPathName& path, void*& handle) const override;
    ovStatus get_proc_address(void* const& handle, const utString& name,
                              void (*&function)()) const override;
    /// dlclose.
    ovStatus free_library(void* handle) const override;
    /// ".so".
    utString shared_library_extension() const override;
    /// /proc/self/exe, of any length.
    ovPathName executable_path() const override;
};
#endif

class ovDynamicLibrary;

/// Makes ovDynamicLibrary objects. The operations must outlive the loader and every
/// library it made.
class OV_API ovDynamicLibraryLoader {
public:
    /// Null operations ask the chooser for the default.
    explicit ovDynamicLibraryLoader(utObserverPtr<const ovILibraryLoaderOperations> operations);
    /// The library loaded by the operations' load_library (extension appended), or null;
    /// status is the operations' status.
    virtual std::unique_ptr<ovDynamicLibrary> load_library(const utString& name, ovStatus& status);
    /// The same through load_library_ov.
    virtual std::unique_ptr<ovDynamicLibrary> load_library_ov(const ovPathName& path,
                                                              ovStatus& status);
    virtual ~ovDynamicLibraryLoader();

private:
    utObserverPtr<const ovILibraryLoaderOperations> m_operations;
};

/// A loaded module; frees it when destroyed unless detached.
class OV_API ovDynamicLibrary {
public:
    ovDynamicLibrary(const ovDynamicLibrary&) = delete;
    ovDynamicLibrary& operator=(const ovDynamicLibrary&) = delete;
    /// The exported function, or null; status is the look-up's. The library stays usable
    /// after a failed look-up.
    void (*proc_address(utString name, ovStatus& status))();
    /// Keeps the module loaded after this object is gone.
    void detach() noexcept { m_attached = false; }
    /// Frees the module when still attached; the outcome is not reported.
    ~ovDynamicLibrary();

protected:
    ovDynamicLibrary(void* handle, utObserverPtr<const ovILibraryLoaderOperations> operations);
    friend class ovDynamicLibraryLoader;

private:
    utObserverPtr<const ovILibraryLoaderOperations> m_operations;
    void* m_handle;
    bool m_attached;
};

/// Outcomes of ovDynObj.
enum ovDynError : int {
    ovDYN_OK = 0,
    ovDYN_NOT_IMPLEMENTED = 1,
    ovDYN_FILE_NOT_FOUND = 2,
    ovDYN_PROBLEM_IN_OPEN = 3,
    ovDYN_NO_SUCH_SYMBOL = 4,
    ovDYN_ERROR_FROM_FUNCTION = 5,
};

/// Binding modes of ovDynObj.
enum ovDynOpenMode : int {
    ovDYN_LAZY = 0,
    ovDYN_NOW = 1,
};

/// The older dynamic-object interface: not implemented on any platform.
class OV_API ovDynObj {
public:
    /// Sets *error (when error is not null) to ovDYN_NOT_IMPLEMENTED; name and mode are
    /// not used.
    ovDynObj(const char* name, ovDynOpenMode mode, ovDynError* error);
    ovDynObj(const ovDynObj&) = delete;
    ovDynObj& operator=(const ovDynObj&) = delete;
    virtual ~ovDynObj();
    /// Always null.
    void* symbol_address(const char* name) const;
    /// Always null.
    const char* error_text() const noexcept { return m_error_text; }

private:
    void* m_handle;
    const char* m_error_text;
};

/// The enumerator's name ("ovDYN_NO_SUCH_SYMBOL"), or "ERROR: ovDynError type unknown".
OV_API std::ostream& operator<<(std::ostream& os, const ovDynError& e);
/// The enumerator's name, or "ERROR: ovDynOpenMode type unknown".
OV_API std::ostream& operator<<(std::ostream& os, const ovDynOpenMode& m);
