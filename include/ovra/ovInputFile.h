/// @file
/// Input files that count what they read and can recover from read errors.
///
/// `ovInputFile` wraps a C stream (it never closes one it was given, and its destructor
/// does nothing). It counts the lines `fgets` returns and the characters consumed
/// (`getc` attempts plus the length of each line). When a line read fails with a read
/// error, and either process-wide switch is on, it goes back to the position of the last
/// good read and tries again, up to five times with a 300 ms pause between attempts,
/// writing a report of every attempt:
///   "File reading error position <n> | recovery attempt 1 |<outcome> ..."
/// where the outcome is "EOF" (the error was really the end of the file), the line read
/// again, or the runtime's error text after one of the prefixes
/// "lseek error finding file length ", "lseek error finding file position ", "FAILED".
///  - read_error_recovery(1): a successful retry's line is returned to the caller.
///    With it off, a read error always gives null, even when a retry worked.
///  - check_for_read_error(1): a recovery that did not succeed is reported through
///    ut_report_assert_failure_5 (see ut/utAssert.h) with the report as its message.
///
/// Error contract: nothing throws. Every failure shows in the result (null, EOF, 0).
/// A stream that is null or the no-stream marker (ovNO_STREAM) reads as an empty file
/// in error: getc gives EOF, fgets null, feof and ferror 1, fclose EOF; nothing is
/// called on it.
///
/// Counters are 32-bit: 0x80000001 (`kUnknown`) means unknown and is set by the
/// constructor, set_stream and fclose; fopen sets 0. Counting goes on from whatever the
/// counters hold (for a stream handed in, the position means nothing), and wraps
/// rather than overflows past 2 GiB, where a recovery would seek to the wrong place.
/// `rewind` keeps the counters, so a recovery after it seeks to the old position.
///
/// Platforms: Windows finds the file's length and seeks on the stream's descriptor
/// (_fileno, _lseek) and takes the error texts of _strerror; POSIX seeks on the stream
/// itself (fseeko, ftello), so streams without a descriptor can recover too, and builds
/// the same "<prefix>: <message>\n" texts with strerror.
///
/// The switches are process-wide and unlocked: set them before threads start. An object
/// is used by one thread at a time; a recovering fgets blocks for up to 5 x 300 ms.
#pragma once

#include "ovra/ovExport.h"

#include <cstdint>
#include <cstdio>

/// The marker a stream field holds when there is deliberately no stream (distinct from
/// null, which means an open failed).
#define ovNO_STREAM (reinterpret_cast<FILE*>(static_cast<intptr_t>(-9999)))

/// A C stream read line by line or character by character, with counters and
/// recovery from read errors (see the top of this file).
class OV_API ovInputFile {
public:
    /// The value of both counters when they are unknown.
    static constexpr int32_t kUnknown = -2147483647;

    /// Reads `stream` (not owned); both counters unknown.
    explicit ovInputFile(FILE* stream) noexcept;
    /// Does nothing: the stream is not closed.
    virtual ~ovInputFile();
    ovInputFile(const ovInputFile&) = delete;
    ovInputFile& operator=(const ovInputFile&) = delete;

    /// Replaces the stream without closing the old one; both counters unknown.
    void set_stream(FILE* stream) noexcept;
    /// The stream, or null / ovNO_STREAM when there is none.
    FILE* stream() const noexcept { return m_stream; }
    /// Lines returned by fgets, and characters consumed (see the top of this file).
    /// @{
    int32_t lines_read() const noexcept { return m_lines_read; }
    int32_t position() const noexcept { return m_position; }
    /// @}

    /// Counts the attempt, then the runtime's getc (EOF included).
    int getc() noexcept;
    /// The runtime's feof of the stream; 1 when there is none.
    int feof() const noexcept;
    /// The runtime's ferror of the stream; 1 when there is none.
    int ferror() const noexcept;
    /// The runtime's clearerr of the stream, if there is one.
    void clearerr() noexcept;
    /// Back to the start of the stream; the counters stay as they are.
    void rewind() noexcept;
    /// The runtime's fgets, with the recovery described above; null on failure.
    char* fgets(char* buffer, int size);
    /// Opens `name` (UTF-8) in `mode`; counters 0; 1 when a stream was opened, else 0
    /// with a null stream.
    int fopen(const char* name, const char* mode);
    /// Closes the stream; counters unknown. The runtime's result, EOF when there is no
    /// stream. stream() still gives the closed pointer, but until fopen or set_stream
    /// the object reads as having no stream, so nothing touches the closed one.
    int fclose() noexcept;

    /// Process-wide switches, both 0 at start (see the top of this file).
    /// @{
    static void check_for_read_error(int on) noexcept;
    static void read_error_recovery(int on) noexcept;
    /// @}

protected:
    bool has_stream() const noexcept { return m_stream && m_stream != ovNO_STREAM && !m_closed; }

    FILE* m_stream;
    int32_t m_lines_read;
    int32_t m_position;
    bool m_closed;

private:
    char* recover(char* buffer, int size);
};
