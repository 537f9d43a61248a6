/// @file
/// Small Windows services: one WMI property as text (`ovWMI`), whether the process
/// runs under Wow64 (`ovProcessWow64`), the process's id and executable path
/// (`ovProcessControl`), and side-by-side activation contexts made from a module's
/// manifest (`ovActivationContext`).
///
/// Error contract: nothing throws. `ovWMI::value` gives an empty text and writes one
/// of its six messages (see there) to `error`; `ovProcessWow64` reports through
/// `ok()`; `ovActivationContext` reports nothing: a context that could not be made
/// is simply not there, and activating it does nothing.
///
/// Platforms: on POSIX there is no WMI, Wow64 or activation context. `ovWMI::value`
/// fails at its first step ("Instantiation of IWbemLocator failed"); `ovProcessWow64`
/// answers ok 1, Wow64 0; `ovActivationContext` never holds a context. The process id
/// (getpid) and path (/proc/self/exe) work on both.
#pragma once

#include "ovra/ovExport.h"

#include "ut/utString.h"

#include <cstdint>

/// One WMI property as text.
class OV_API ovWMI {
public:
    /// The `property` of the first instance of `class_name` in `root\cimv2` as text,
    /// or "" with `error` set to the step that failed: "Instantiation of IWbemLocator
    /// failed", "Couldn't connect to service", "Query failed", "Enumeration failed",
    /// "Enumeration empty" (no instance), "IWbemClassObject::Get failed" (no such
    /// property, a null value, or one that has no text form). `error` is written
    /// only on failure. COM must already be initialised on the calling thread. The
    /// names are taken, and the text given, in the thread's ANSI code page.
    static utString value(const utString& class_name, const utString& property, utString& error);
};

/// Whether the process runs under Wow64, asked once at construction.
class OV_API ovProcessWow64 {
public:
    /// Asks the system at once.
    ovProcessWow64();
    /// 0 only when the system has IsWow64Process and it failed.
    int ok() const { return m_ok; }
    /// 1 when the process runs under Wow64 (never for a 64-bit process).
    int is_wow_64() const { return m_is_wow64; }

protected:
    /// Fills both answers; IsWow64Process is looked up at run time.
    void get_wow64_info();

    int32_t m_ok;       ///< 0 only when the system's query failed
    int32_t m_is_wow64; ///< 1 under Wow64
};

/// The running process's id and executable.
class OV_API ovProcessControl {
public:
    /// The process identifier.
    int getpid() const;
    /// The executable's path in UTF-8, "" when it cannot be had. A path of 1024 bytes
    /// or more is cut to at most 1023, on a character boundary on Windows.
    utString process_path();
};

/// Owns one activation context and at most one activation of it on the activating
/// thread. Not copyable: the context is released once.
class OV_API ovActivationContext {
public:
    /// No context.
    ovActivationContext();
    /// become(module).
    explicit ovActivationContext(const utString& module);
    /// Not copyable.
    ovActivationContext(const ovActivationContext&) = delete;
    /// Not assignable.
    ovActivationContext& operator=(const ovActivationContext&) = delete;
    /// Deactivates (on the thread that activated) and releases.
    virtual ~ovActivationContext();

    /// become(module, 2): the manifest resource meant for isolation-aware components.
    void become(const utString& module);
    /// Releases the context held (an activation stays until deactivate), then, unless
    /// `module` is empty, makes one from the manifest resource `resource` of the
    /// module file `module` (a UTF-8 path).
    void become(const utString& module, int resource);
    /// Deactivates a current activation, then activates the context if there is one.
    void activate();
    /// Undoes this object's activation, if any. Same thread as activate().
    void deactivate();

private:
    void* m_context;    ///< INVALID_HANDLE_VALUE when there is none
    uintptr_t m_cookie; ///< non-zero while activated
};
