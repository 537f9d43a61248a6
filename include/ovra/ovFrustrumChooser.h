/// @file
/// The chooser of default operations.
///
/// `ovFrustrumChooser` is the one place that decides which implementation of each
/// operations interface the library uses when a caller passes none: every object that
/// takes an operations pointer and is given null asks a temporary chooser. Each accessor
/// owns one process-wide instance, built on the first call of that accessor only (asking
/// for one interface builds no other) and never destroyed, so that calls from static
/// destructors at process exit still find it. All choosers share the same instances;
/// the caller never deletes what an accessor returns.
///
/// The platform's own implementations are returned: the `ovWin…` classes on Windows,
/// the `ovPosix…` ones elsewhere. First-use construction is thread-safe.
///
/// The name is spelt as it is on purpose; it is part of the interface.
#pragma once

#include "ovra/ovExport.h"

#include "ut/utObserverPtr.h"

class ovIStringOsEncoding;
class ovIFileOperations;
class ovISysInfoOperations;
class ovIProcessThreadOperations;
class ovILibraryLoaderOperations;
class ovIProcessEnvironmentOperations;
class ovISynchOperations;

/// Hands out the process-wide default operations: each is made on first use
/// and never destroyed; every chooser shares the same instances.
class OV_API ovFrustrumChooser {
public:
    /// Keeps encoding (usually null) for choosers that may one day depend on it; no
    /// accessor consults it.
    explicit ovFrustrumChooser(const ovIStringOsEncoding* encoding) noexcept
        : m_encoding(encoding) {}

    /// The process-wide file operations.
    const ovIFileOperations* file_operations() const;
    /// The process-wide system information operations.
    const ovISysInfoOperations* system_info_operations() const;
    /// The process-wide process and thread operations.
    const ovIProcessThreadOperations* process_thread_operations() const;
    /// The process-wide dynamic-library loader.
    utObserverPtr<const ovILibraryLoaderOperations> library_loader_operations() const;
    /// The process-wide environment operations (not const: they change the environment).
    utObserverPtr<ovIProcessEnvironmentOperations> process_environment_operations() const;
    /// The process-wide synchronisation operations.
    const ovISynchOperations* synch_operations() const;

private:
    utObserverPtr<const ovIStringOsEncoding> m_encoding;
};
