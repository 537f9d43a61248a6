/// @file
/// Status values and the application error reporter.
///
/// `ovStatus` is what an operation that can fail hands back: a code (non-zero
/// is success; the library itself sets 1 and 0) and a flag that remembers
/// whether anybody has looked at it. It carries no message.
///
/// `ovError` is a process-wide reporter with one replaceable handler.
/// Applications call `ovError::error`; the installed handler builds and shows
/// a message and answers an `ovErrorResponse`. The library never reports
/// through it itself.
///
/// Error contract: nothing here throws for bad input and nothing fails
/// outward. `error` with no handler answers ovERR_HANDLED silently. The
/// default handler always answers ovERR_HANDLED: when it finds no text it
/// shows "(ovError::default_handler) failed to find message text"; a null
/// `where` counts as "". `set_error_text` may throw std::bad_alloc; exceptions
/// thrown by an application's own handler pass through `error` unchanged.
///
/// Process-wide state (handler, user data, error text, behaviour, stream) is
/// not locked: set it up before threads start. Concurrent `error` calls
/// through the default handler only read it.
///
/// Platforms: the system text of an ovERR_SYSTEM number is FormatMessageW's on
/// Windows, read as narrow text so only its first letter survives for Latin
/// scripts (kept on purpose), and strerror's, whole, on POSIX. Only Windows
/// has the message box; on POSIX ovERR_SHOW_MESSAGE_BOX writes to the stream.
#pragma once

#include "ovra/ovExport.h"

#include <cstdint>
#include <iosfwd>

/// The outcome of an operation that can fail.
class OV_API ovStatus {
public:
    /// code: 1 success, 0 failure; any non-zero value counts as success.
    /// Starts untested. There is no default constructor.
    ovStatus(int32_t code) noexcept : m_code(code), m_tested(0) {}
    /// Takes code and tested flag, then marks the source tested: the duty to
    /// look at the status passes to the copy.
    ovStatus(const ovStatus& o) noexcept : m_code(o.m_code), m_tested(o.m_tested) {
        o.m_tested = 1;
    }
    /// As the copy constructor; assigning a status to itself marks it tested.
    ovStatus& operator=(const ovStatus& o) noexcept {
        m_code = o.m_code;
        m_tested = o.m_tested;
        o.m_tested = 1;
        return *this;
    }
    /// Nothing is reported for a status nobody tested.
    virtual ~ovStatus();

    /// Marks the status tested and returns the code.
    int32_t ok() const noexcept {
        m_tested = 1;
        return m_code;
    }
    /// Marks the status tested; true for a non-zero code. Implicit, so a
    /// status also serves where a bool is expected (`bool done = op();`).
    operator bool() const noexcept { return ok() != 0; }
    /// Refused, so that `int x = status;` (which would give 1, not the code)
    /// and `status == 7` (always false) do not compile. Use ok() for the code.
    operator int() const = delete;
    /// 1 once the status was tested, copied or assigned from; does not mark it.
    int32_t tested() const noexcept { return m_tested; }

private:
    int32_t m_code;
    mutable int32_t m_tested;
};

/// The kind of number that comes with an error. Other values are unknown types.
enum ovErrorType : int32_t {
    ovERR_SYSTEM = 0,    ///< an operating-system error code
    ovERR_USER_TEXT = 1, ///< 0: use the text of ovError::set_error_text
    ovERR_NUMBER = 2,    ///< an application's own number, no text
};

/// How the default handler shows its message; only 1 selects the box.
enum ovErrorBehaviour : int32_t {
    ovERR_SHOW_STREAM = 0,      ///< the message and a line end on the stream
    ovERR_SHOW_MESSAGE_BOX = 1, ///< a modal box titled "Error" (Windows)
};

/// A handler's answer. The library only ever produces ovERR_HANDLED; the
/// others are names an application's handler may use, with no library meaning.
enum ovErrorResponse : int32_t {
    ovERR_NOT_HANDLED = 0, ///< the handler declined the error
    ovERR_ABORT = 1,       ///< the caller should give up its work
    ovERR_RETRY = 2,       ///< the caller may try again
    ovERR_IGNORE = 3,      ///< the caller should carry on
    ovERR_HANDLED = 4,     ///< the error was shown
};

/// A handler: where, line, number, type and style as given to ovError::error,
/// then the user data installed with the handler.
typedef ovErrorResponse (*ovErrorHandler)(const char* where, int32_t line, int32_t number,
                                          ovErrorType type, int32_t style, void* user_data);

/// The process-wide error reporter; all members are static.
class OV_API ovError {
public:
    ovError() = delete;

    /// Installs `handler` (null allowed) and `user_data`; returns the handler
    /// installed before (the first call returns default_handler).
    static ovErrorHandler set_handler(ovErrorHandler handler, void* user_data);
    /// ovERR_HANDLED when no handler is installed; otherwise the handler's
    /// answer for these arguments and the installed user data.
    static ovErrorResponse error(const char* where, int32_t line, int32_t number, ovErrorType type,
                                 int32_t style);

    /// Copies `text` as the error text; null or "" clears it. Earlier copies
    /// are kept, never released, so every text handed out stays valid.
    static void set_error_text(const char* text);
    /// The current error text, or null; valid for the life of the process.
    static const char* get_error_text();

    /// Builds the message for `type` and `number`, appends "(where:line)" and
    /// shows it as the behaviour says: a box (caption "Error", style `style`,
    /// 0x2010 when 0) or the stream followed by std::endl. Ignores user_data.
    /// Always answers ovERR_HANDLED.
    static ovErrorResponse default_handler(const char* where, int32_t line, int32_t number,
                                           ovErrorType type, int32_t style, void* user_data);
    /// Stores how the default handler shows messages.
    static void set_default_handler_behaviour(ovErrorBehaviour behaviour);
    /// Where the default handler writes from now on (std::cerr at first). The
    /// caller keeps `stream` alive while it is installed.
    static void set_default_handler_stream(std::ostream& stream);
};
