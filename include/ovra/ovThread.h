/// @file
/// Threads and critical sections that do not depend on the platform.
///
/// A task is a class derived from `ovIThreadTask`; an `ovThread` runs it on a native
/// thread obtained from an `ovIProcessThreadOperations` (see ovSystemOperations.h). Data
/// shared with a task is guarded with an `ovCriticalSection`, whose native lock comes
/// from an `ovISynchOperations`, usually through the scope guard `ovCriticalSectionLocker`.
/// A null operations pointer asks `ovFrustrumChooser` for the process-wide default.
///
/// Error contract: nothing here throws across the library boundary or reports messages.
/// Bad input gives an object that does nothing: a null task, or operations that hand out
/// no thread or no lock, make `join`, `enter` and `leave` return at once. An exception
/// thrown by a task's `run` is caught where the native thread starts, so it never reaches
/// std::terminate: the thread ends as if `run` had returned and `join` returns normally.
/// A thread the system cannot start leaves nothing to join. Allocation failure
/// propagates as std::bad_alloc.
///
/// Native forms: `ovWinNativeThread` and `ovWinCriticalSection` (Windows),
/// `ovLinuxNativeThread` (the standard-library thread, on every platform) and
/// `ovPosixCriticalSection` (POSIX). Every native critical section is recursive: the
/// thread that holds it may enter again and must leave as often. `ovDummyCriticalSection`
/// never locks.
///
/// Threads that were not joined: destroying an `ovWinNativeThread` leaves its thread
/// running, detached; destroying an `ovLinuxNativeThread` whose thread was not joined ends
/// the process (std::terminate), as the standard library does. Join before destroying.
#pragma once

#include "ovra/ovExport.h"

#include <memory>
#include <mutex>
#include <thread>

class ovIProcessThreadOperations;
class ovISynchOperations;

/// The work of a thread. The task object is shared between the thread that made the
/// ovThread and the new thread; it synchronises its own data.
class OV_API ovIThreadTask {
public:
    /// The task's work, run once on the new thread.
    virtual void run() = 0;
    virtual ~ovIThreadTask() = 0;
};

/// A running operating-system thread that shares ownership of its task.
class OV_API ovINativeThread {
public:
    /// Keeps the task; not joined yet.
    explicit ovINativeThread(std::shared_ptr<ovIThreadTask> task) noexcept
        : m_task(std::move(task)), m_joined(0) {}
    ovINativeThread(const ovINativeThread&) = delete;
    ovINativeThread& operator=(const ovINativeThread&) = delete;
    /// Waits until the task's run has returned; at once when it already has.
    virtual void join() = 0;
    virtual ~ovINativeThread();

    /// Runs the task's run (nothing for null) and swallows whatever it throws. Every
    /// native start routine goes through here; an application's own threads may use it.
    static void run_task(ovIThreadTask* task) noexcept;

protected:
    std::shared_ptr<ovIThreadTask> m_task;
    int m_joined;
};

#if defined(_WIN32)
/// A Windows thread (CreateThread). Destroying it closes the handle without waiting: a
/// thread that was not joined runs on, detached, and keeps its own share of the task so
/// the task outlives it. A thread that could not be created has a null handle and its
/// join returns at once.
class OV_API ovWinNativeThread final : public ovINativeThread {
public:
    /// Starts the task at once.
    explicit ovWinNativeThread(std::shared_ptr<ovIThreadTask> task);
    /// Waits without time limit.
    void join() override;
    ~ovWinNativeThread() override;

private:
    void* m_handle;
};
#endif

/// A standard-library thread that runs the task through its own copy of the shared
/// pointer. Destroying one that was not joined ends the process (std::terminate).
class OV_API ovLinuxNativeThread final : public ovINativeThread {
public:
    /// Starts the task at once.
    explicit ovLinuxNativeThread(std::shared_ptr<ovIThreadTask> task);
    /// Joins the thread; a second join returns at once.
    void join() override;
    ~ovLinuxNativeThread() override;

private:
    std::thread m_thread;
};

/// A caller's task on a thread of its own, started at construction.
class OV_API ovThread {
public:
    /// Asks ops (null: the chooser's default) for a running native thread. A null task,
    /// or operations that give no thread, leave the object without one: join returns.
    ovThread(std::shared_ptr<ovIThreadTask> task, const ovIProcessThreadOperations* ops);
    ovThread(const ovThread&) = delete;
    ovThread& operator=(const ovThread&) = delete;
    /// Waits until the task's run has returned.
    void join();
    /// Destroys the native thread; see the header comment for threads not joined.
    ~ovThread();

private:
    std::unique_ptr<ovINativeThread> m_thread;
    int m_joined;
};

/// A native lock.
class OV_API ovICriticalSection {
public:
    /// Waits until the calling thread holds the lock.
    virtual void enter() = 0;
    /// Lets the lock go once: as often as it was entered.
    virtual void leave() = 0;
    virtual ~ovICriticalSection() = 0;
};

#if defined(_WIN32)
/// A Windows CRITICAL_SECTION: recursive.
class OV_API ovWinCriticalSection final : public ovICriticalSection {
public:
    ovWinCriticalSection();
    ovWinCriticalSection(const ovWinCriticalSection&) = delete;
    ovWinCriticalSection& operator=(const ovWinCriticalSection&) = delete;
    /// EnterCriticalSection.
    void enter() override;
    /// LeaveCriticalSection.
    void leave() override;
    ~ovWinCriticalSection() override;

private:
    /// Room for the CRITICAL_SECTION itself (40 bytes on 64-bit Windows; checked where
    /// it is used), so that this header needs no <windows.h>.
    alignas(8) unsigned char m_section[40];
};
#else
/// A recursive mutex, so that it behaves as the Windows critical section does.
class OV_API ovPosixCriticalSection final : public ovICriticalSection {
public:
    ovPosixCriticalSection();
    /// Locks the mutex (again, when this thread holds it).
    void enter() override;
    /// Unlocks it once.
    void leave() override;
    ~ovPosixCriticalSection() override;

private:
    std::recursive_mutex m_mutex;
};
#endif

/// No locking at all, for single-threaded use: enter and leave do nothing and never block.
class OV_API ovDummyCriticalSection final : public ovICriticalSection {
public:
    /// Does nothing.
    void enter() override {}
    /// Does nothing.
    void leave() override {}
    ~ovDummyCriticalSection() override;
};

/// A critical section that owns its native lock.
class OV_API ovCriticalSection {
public:
    /// Takes a new lock from ops' create (null ops: the chooser's default). When ops
    /// gives none, enter and leave do nothing.
    explicit ovCriticalSection(const ovISynchOperations* ops);
    ovCriticalSection(const ovCriticalSection&) = delete;
    ovCriticalSection& operator=(const ovCriticalSection&) = delete;
    ~ovCriticalSection();

    /// Enters the native lock.
    void enter() {
        if (m_section)
            m_section->enter();
    }
    /// Leaves the native lock.
    void leave() {
        if (m_section)
            m_section->leave();
    }

private:
    std::unique_ptr<ovICriticalSection> m_section;
};

/// Enters a critical section for the life of a scope, and leaves it however the scope is
/// left (exceptions included). A null section is allowed and does nothing.
class OV_API ovCriticalSectionLocker {
public:
    /// Enters section (null: nothing) until this object is destroyed.
    explicit ovCriticalSectionLocker(ovCriticalSection* section) : m_section(section) {
        if (m_section)
            m_section->enter();
    }
    ovCriticalSectionLocker(const ovCriticalSectionLocker&) = delete;
    ovCriticalSectionLocker& operator=(const ovCriticalSectionLocker&) = delete;
    ~ovCriticalSectionLocker() {
        if (m_section)
            m_section->leave();
    }

private:
    ovCriticalSection* m_section;
};
