/// @file
/// Operations through which the library reaches the operating system for anything other
/// than files: system information, synchronisation objects, processes and threads, and
/// the process environment.
///
/// Objects receive these as observer pointers (the caller owns them and keeps them alive
/// longer than their users); `ovFrustrumChooser` hands out the platform's own ones. None
/// of them keeps state, so one object may be shared by every thread.
///
/// Error contract: no operation throws or takes an ovStatus. A failure gives an empty
/// result, false, a null pointer, or (computer_name only) the error text in place of the
/// name: "GetComputerNameW failed in ovWinSysInfoOperations::computer_name". Bad input
/// (null or failed strings, empty or "="-holding names, a null task) is refused the same
/// way and changes nothing.
///
/// Platforms: the `ovWin…` classes exist on Windows, the `ovPosix…` classes elsewhere;
/// `ovNoSynchOperations` everywhere. The POSIX forms differ only where said below.
#pragma once

#include "ovra/ovExport.h"
#include "ovra/ovPathName.h"
#include "ovra/ovString.h"
#include "ovra/ovThread.h"

#include <memory>

/// Facts about the machine.
class OV_API ovISysInfoOperations {
public:
    /// The computer's name, or the failure text above.
    virtual ovString computer_name() const = 0;
    virtual ~ovISysInfoOperations();
};

/// Locks and waiting.
class OV_API ovISynchOperations {
public:
    /// A new native lock, owned by the caller.
    virtual std::unique_ptr<ovICriticalSection> create() const = 0;
    /// Waits for the given number of milliseconds.
    virtual void sleep(unsigned long milliseconds) const = 0;
    virtual ~ovISynchOperations();
};

/// The process and its threads.
class OV_API ovIProcessThreadOperations {
public:
    /// This process's identifier.
    virtual int current_process_id() const = 0;
    /// A new native thread, already running the task's run; null for a null task or when
    /// no thread could be started.
    virtual std::unique_ptr<ovINativeThread>
    create_joinable_thread(std::shared_ptr<ovIThreadTask> task) const = 0;
    virtual ~ovIProcessThreadOperations();
};

/// The process environment. Not const: put changes what every thread sees.
class OV_API ovIProcessEnvironmentOperations {
public:
    /// Sets the variable; true when it was set. Null or failed texts, an empty name and
    /// a name holding "=" are refused (false).
    virtual bool put(const ovString& name, const ovString& value) = 0;
    /// The variable's value; a valid empty string when it is not set, is set to "", or
    /// the name is refused, or the value does not convert.
    virtual ovString get(const ovString& name) = 0;
    /// The current directory; the empty path name on failure.
    virtual ovPathName current_directory() = 0;
    virtual ~ovIProcessEnvironmentOperations();
};

/// For single-threaded use: locks that never lock, and no waiting.
class OV_API ovNoSynchOperations final : public ovISynchOperations {
public:
    /// An ovDummyCriticalSection.
    std::unique_ptr<ovICriticalSection> create() const override;
    /// Returns at once.
    void sleep(unsigned long milliseconds) const override;
};

#if defined(_WIN32)
/// The computer name on Windows.
class OV_API ovWinSysInfoOperations final : public ovISysInfoOperations {
public:
    /// GetComputerNameW, asked first for the size it needs.
    ovString computer_name() const override;
};

/// Windows critical sections and Sleep.
class OV_API ovWinSynchOperations final : public ovISynchOperations {
public:
    /// An ovWinCriticalSection.
    std::unique_ptr<ovICriticalSection> create() const override;
    /// Sleep.
    void sleep(unsigned long milliseconds) const override;
};

/// The Windows process and its threads.
class OV_API ovWinProcessThreadOperations final : public ovIProcessThreadOperations {
public:
    /// GetCurrentProcessId.
    int current_process_id() const override;
    /// An ovWinNativeThread.
    std::unique_ptr<ovINativeThread>
    create_joinable_thread(std::shared_ptr<ovIThreadTask> task) const override;
};

/// The environment through the C runtime's wide functions.
class OV_API ovWinProcessEnvironmentOperations final : public ovIProcessEnvironmentOperations {
public:
    /// _wputenv_s; true when it returns 0. Putting "" removes the variable, which then
    /// reads back as "" all the same.
    bool put(const ovString& name, const ovString& value) override;
    /// _wgetenv_s, asked first for the size.
    ovString get(const ovString& name) override;
    /// GetCurrentDirectoryW into 260 characters; a longer directory is read again into a
    /// buffer of the size the system asks for, so long paths are supported too.
    ovPathName current_directory() override;
};
#else
/// The host name on POSIX.
class OV_API ovPosixSysInfoOperations final : public ovISysInfoOperations {
public:
    /// gethostname. Failure gives the same text as on Windows, so callers see one message.
    ovString computer_name() const override;
};

/// Recursive mutexes and nanosleep.
class OV_API ovPosixSynchOperations final : public ovISynchOperations {
public:
    /// An ovPosixCriticalSection (recursive, as on Windows).
    std::unique_ptr<ovICriticalSection> create() const override;
    /// nanosleep, resumed after signals.
    void sleep(unsigned long milliseconds) const override;
};

/// The POSIX process and its standard-library threads.
class OV_API ovPosixProcessThreadOperations final : public ovIProcessThreadOperations {
public:
    /// getpid.
    int current_process_id() const override;
    /// An ovLinuxNativeThread: destroying it unjoined ends the process, unlike Windows.
    std::unique_ptr<ovINativeThread>
    create_joinable_thread(std::shared_ptr<ovIThreadTask> task) const override;
};

/// The environment through setenv, getenv and getcwd.
class OV_API ovPosixProcessEnvironmentOperations final : public ovIProcessEnvironmentOperations {
public:
    /// setenv with the UTF-8 texts. Putting "" keeps the variable, set to "".
    bool put(const ovString& name, const ovString& value) override;
    /// getenv, read as UTF-8; a value that is not UTF-8 gives "".
    ovString get(const ovString& name) override;
    /// getcwd, of any length.
    ovPathName current_directory() override;
};
#endif
