/// @file
/// The formatted text channel for legacy code.
///
/// `ovIO` reads lines and characters from an input stream and writes formatted text to an
/// output stream, keeping the outcome of its last operation as an `ovIOCode`. By default
/// every object reads standard input and writes standard output; `setglobalio` changes the
/// streams of objects made afterwards, and a process-wide print function
/// (`the_print_function`) captures everything written to the global output, for instance
/// into a window. An object can instead be bound to a named file.
///
/// Output: `printf`/`vprintf` take the C runtime's format syntax; `put_s`/`pass_args`
/// take the library's own: "%" [ "(" [+]width[.precision] ")" ] letter, every field
/// left-justified in its width, with these letters:
///   d h int   u unsigned   D long   L unsigned long   c character   s string
///   f F double ("+" in the parentheses asks for a sign; the precision defaults to 0,
///       so a plain "%f" of 3.7 writes 4, on purpose)
///   r R string with control characters made visible (`\t` `\n` `\r`, others as `<code>`)
///   %   a single "%";  any other letter is written as it stands, with its "%".
/// Each field is cut at 1023 characters (so widths and precisions above 1023 act as
/// 1023). Ten or more characters between the parentheses terminate the process at once
/// (a bounds failure, kept on purpose), and so do eleven after a "(" that is never closed;
/// shorter parentheses the format ends inside are written as text. A format ending in a lone "%"
/// writes the "%" and stops.
///
/// Input: `get_c`, `get_s` (a line with its line end made a single "\n") and `readline`,
/// which splits a line into fields and converts each by a letter (see below).
///
/// Error contract: nothing throws. Failures show in the last code (see `ovIOCode`) and
/// the results. Writing without output sets ovIO_NO_OUTPUT and writes nothing; reading
/// without input sets ovIO_NO_INPUT. Null texts and formats write nothing.
///
/// Process-wide state (the global streams, `the_print_function`) is unlocked: set it up
/// before threads write. An object is used by one thread at a time.
///
/// Platforms: the null device that measures `printf` output is "nul" on Windows and
/// "/dev/null" on POSIX. `ovSpaceballInput` takes the window as an opaque handle (an
/// HWND on Windows).
#pragma once

#include "ovra/ovExport.h"
#include "ovra/ovInputFile.h"

#include <cstdarg>
#include <cstdint>
#include <cstdio>
#include <streambuf>

/// The outcome of an ovIO's last operation.
enum ovIOCode : int32_t {
    ovIO_NONE = 0,         ///< nothing done yet (default constructor)
    ovIO_OPENED = 1,       ///< a file was opened
    ovIO_NOT_OPENED = 2,   ///< opening was asked for and did not happen
    ovIO_FILE_EXISTS = 3,  ///< exist_file: there (also when access is denied)
    ovIO_NO_FILE = 5,      ///< exist_file: not there
    ovIO_READ_ERROR = 10,  ///< get_c saw a stream error; get_s got nothing
    ovIO_NO_INPUT = 11,    ///< read on an object without input
    ovIO_END_OF_FILE = 12, ///< get_c reached the end of the file
    ovIO_READ_OK = 13,     ///< read something
    ovIO_WRITE_OK = 14,    ///< wrote something
    ovIO_NO_OUTPUT = 15,   ///< write on an object without output
};

/// Captures output; receives one piece of text at a time.
typedef void (*ovPrintFunction)(const char* text);

/// Formatted text output and line input over C streams (see the top of this file).
class OV_API ovIO : public ovInputFile {
public:
    /// Reads the global input, writes the global output (standard input and output
    /// unless setglobalio said otherwise before the first object was made).
    ovIO();
    /// Opens `name` for reading and writing (created or truncated, "wb+") as both input
    /// and output. An empty or null name opens nothing: the object then writes to the
    /// global output. Code ovIO_OPENED, or ovIO_NOT_OPENED when the open failed.
    explicit ovIO(const char* name);
    /// Opens `name` by `mode` (see open_file).
    ovIO(const char* name, char mode);
    /// Closes what the object opened; a failure to close writes "Error closing <name>\n"
    /// through the object itself.
    ~ovIO() override;
    ovIO(const ovIO&) = delete;
    ovIO& operator=(const ovIO&) = delete;

    /// Opens the name given at construction: "r"/"R" for reading if it exists, "w"/"W"
    /// for writing (created or truncated). Any other letter opens it "wb+" for both, but
    /// then, as kept on purpose, the object owns the stream and says ovIO_OPENED only when
    /// the open failed. Returns whether the object owns a stream.
    int open_file(char mode);
    /// 1 when `name` exists (also when access to it is denied), else 0; sets the code of
    /// `io` when it is not null.
    static int exist_file(const char* name, ovIO* io);
    /// Streams for objects constructed from now on.
    static void setglobalio(FILE* in, FILE* out);

    /// Whether every write is flushed (1 after construction).
    /// @{
    int flush_writes() const noexcept { return m_flush_writes; }
    void flush_writes(int on) noexcept { m_flush_writes = on; }
    /// @}
    /// The code of the last operation, and comparisons with it.
    /// @{
    ovIOCode last_code() const noexcept { return m_code; }
    bool operator==(ovIOCode c) const noexcept { return m_code == c; }
    bool operator!=(ovIOCode c) const noexcept { return m_code != c; }
    /// @}

    /// One character, straight to the output stream: no print function sees it.
    void put_c(char c);
    /// The library's own format language (see the top of this file).
    void put_s(const char* format, ...);
    /// As put_s with a va_list; sets no code.
    void pass_args(const char* format, va_list args);
    /// The C runtime's format language.
    /// @{
    void printf(const char* format, ...);
    void vprintf(const char* format, va_list args);
    /// @}
    /// n line feeds: one write below 32, n single put_c calls from 32 on.
    void newline(int n);

    /// One character; the code says whether it is good, the end of the file or an error.
    ovIOCode get_c(char& c);
    /// A line into `buffer`, which must hold 1024 bytes: its line end becomes one "\n",
    /// and a last line without one gets it.
    ovIOCode get_s(char* buffer);
    /// Splits `line` (or, when null, the next line read with get_s) into fields and stores
    /// each through the next pointer argument, by the letters of `format`:
    ///   D l  int32_t* (atol)           F f  double* (atof)
    ///   L    unsigned long* (counted only when it converts)
    ///   d    int32_t*   h int16_t*   U uint16_t*   u uint32_t*  (atof, truncated)
    ///   s    char* (the field)         r    char* (the rest of the line)
    ///   any other letter skips a field and takes no argument.
    /// "(x)" before a letter makes x the field's delimiter: text up to and including the
    /// next x is skipped, and the field ends at the following x. Otherwise fields are
    /// separated by blanks and tabs. Lines are taken up to 1023 characters. Returns the
    /// number of fields converted.
    int readline(const char* line, const char* format, ...);

    /// The process-wide read-error switches of ovInputFile (check_for_read_error and
    /// read_error_recovery), under their ovIO names.
    /// @{
    static void assert_on_get_s_read_error(int on) noexcept;
    static void recover_get_s_read_error(int on) noexcept;
    /// @}

    /// Installs the process-wide print function (null stops capturing).
    static void set_the_print_function(ovPrintFunction function) noexcept;
    /// This object's own print function, used before the process-wide one and, like it,
    /// only while the object writes to the global output; null at construction.
    void set_print_function(ovPrintFunction function) noexcept { m_print_function = function; }

protected:
    void initialise();
    void initialise_ovrasetio();
    /// Every write but put_c goes here: to the print function when the object writes to
    /// the global output and one is set, else to the output stream.
    void print_string(const char* text);

    /// Captures the output of every object that writes to the global output; null at start.
    static ovPrintFunction the_print_function;

    FILE* m_output;
    int32_t m_owns_stream;
    char* m_file_name;
    ovIOCode m_code;
    int32_t m_line_length;
    ovPrintFunction m_print_function;
    int32_t m_flush_writes;

private:
    void write_piece(const char* text, size_t n);
};

/// The code on either side.
/// @{
inline bool operator==(ovIOCode c, const ovIO& io) noexcept {
    return io == c;
}
inline bool operator!=(ovIOCode c, const ovIO& io) noexcept {
    return io != c;
}
/// @}

/// A standard stream buffer that writes through an ovIO (and so through the print
/// function): `std::ostream out(new ovStreamBuffer)` style use. Output is gathered up to
/// 1023 characters and written with the ovIO's printf; it offers no input.
class OV_API ovStreamBuffer : public std::basic_streambuf<char> {
public:
    /// Writes through an ovIO of its own, made with the default constructor.
    ovStreamBuffer();
    /// Writes what is left, then deletes its ovIO.
    ~ovStreamBuffer() override;
    ovStreamBuffer(const ovStreamBuffer&) = delete;
    ovStreamBuffer& operator=(const ovStreamBuffer&) = delete;

    /// The ovIO it writes through.
    ovIO* get_ovio() const noexcept { return m_io; }

protected:
    /// Takes ownership of `io`.
    explicit ovStreamBuffer(ovIO* io);
    int overflow(int c) override;
    int underflow() override;
    int sync() override;

private:
    ovIO* m_io;
    char* m_buffer;
};

extern "C" {
/// Formats with the C runtime's syntax and writes through a fresh default ovIO.
OV_API void ovprintf(const char* format, ...);
/// Formats with the library's own syntax and writes through a fresh default ovIO.
OV_API void ovoutstring(const char* format, ...);
}

/// A process-wide hook through which a window procedure hands a Spaceball device's
/// messages to whoever registered for them. No instances.
class OV_API ovSpaceballInput {
public:
    /// What receives the messages: the message number and its two parameters.
    typedef int (*Callback)(unsigned int message, unsigned long long wparam, long long lparam);

    ovSpaceballInput() = delete;
    /// The window the device talks to (an opaque handle; HWND on Windows).
    /// @{
    static void set_window(void* window) noexcept;
    static void* get_window() noexcept;
    /// @}
    /// Installs the receiver (null for none).
    static void set_callback(Callback callback) noexcept;
    /// The callback's answer; 0 when none is set.
    static int dispatch_event(unsigned int message, unsigned long long wparam, long long lparam);

protected:
    static void* the_hwnd;
    static Callback the_callback;
};
