/// @file
/// Conformance suites for implementations of the system operations interfaces
/// (ovSystemOperations.h) and of the dynamic-library loader (ovDynamicLibrary.h).
///
/// An application that writes its own implementation (another platform, a test double)
/// runs the matching suite against it: construct the suite with a pointer to the object,
/// call execute(), then read passed(), failed() and report() (see ut/utUnitTest.h). The
/// suite borrows the object; it must outlive the suite. A null pointer is reported as one
/// failed check, never dereferenced.
///
/// Error contract: a suite never throws and never stops at a failed check. Checks that
/// need a second thread wait for it a bounded time; a thread that never comes back (a
/// lock that deadlocks itself, say) is reported as a failure and left behind, detached,
/// with what it uses. The environment suite sets and then empties the variable
/// OVRA_CONFORMANCE_PROBE.
#pragma once

#include "ovra/ovExport.h"
#include "ut/utString.h"
#include "ut/utUnitTest.h"

class ovISysInfoOperations;
class ovISynchOperations;
class ovIProcessThreadOperations;
class ovIProcessEnvironmentOperations;
class ovILibraryLoaderOperations;

/// computer_name gives a usable name, the same on every call.
class OV_API ovSysInfoOpsTester : public utUnitTest {
public:
    /// Borrows the implementation to judge.
    explicit ovSysInfoOpsTester(const ovISysInfoOperations* ops);
    /// States every check of the suite; execute() runs it.
    void run() override;

private:
    const ovISysInfoOperations* m_ops;
};

/// create gives a new lock on every call; the thread holding a lock may enter it again;
/// sleep returns. With `locks` (the default) a held lock keeps other threads out until it
/// is left; without (ovNoSynchOperations' kind), entering never blocks, even while
/// another thread holds the lock.
class OV_API ovSynchOpsTester : public utUnitTest {
public:
    /// Borrows the implementation to judge.
    explicit ovSynchOpsTester(const ovISynchOperations* ops, bool locks = true);
    /// States every check of the suite; execute() runs it.
    void run() override;

private:
    void check_recursion();
    void check_other_thread();

    const ovISynchOperations* m_ops;
    bool m_locks;
};

/// The process id is positive and stable; a created thread runs the task once, on
/// another thread, join waits for it, and the thread shares the task: it runs even when
/// the caller lets go at once, and is released once the thread is gone.
class OV_API ovProcessThreadOpsTester : public utUnitTest {
public:
    /// Borrows the implementation to judge.
    explicit ovProcessThreadOpsTester(const ovIProcessThreadOperations* ops);
    /// States every check of the suite; execute() runs it.
    void run() override;

private:
    const ovIProcessThreadOperations* m_ops;
};

/// put then get gives back the value (non-ASCII too); a variable set to "" or never set
/// reads as ""; the current directory is an absolute path.
class OV_API ovProcessEnvironmentOpsTester : public utUnitTest {
public:
    /// Borrows the implementation to judge.
    explicit ovProcessEnvironmentOpsTester(ovIProcessEnvironmentOperations* ops);
    /// States every check of the suite; execute() runs it.
    void run() override;

private:
    ovIProcessEnvironmentOperations* m_ops;
};

/// Loads a real module given by `library`, its path without the extension, and looks up
/// `symbol`, which it must export: load_library appends the extension (so a name that
/// has it already fails), look-ups of missing symbols fail and leave the module usable,
/// free_library succeeds, a missing path fails with a null handle, the extension starts
/// with "." and the executable's path is absolute.
class OV_API ovLibraryLoaderOpsTester : public utUnitTest {
public:
    /// Borrows the implementation to judge.
    ovLibraryLoaderOpsTester(const ovILibraryLoaderOperations* ops, const utString& library,
                             const utString& symbol);
    /// States every check of the suite; execute() runs it.
    void run() override;

private:
    const ovILibraryLoaderOperations* m_ops;
    utString m_library;
    utString m_symbol;
};
