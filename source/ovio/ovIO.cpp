#include "ovra/ovIO.h"

#include "ovio/io_os.h"
#include "ub/ubGlyphs.h"

#include <cerrno>
#include <climits>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>

namespace {

FILE* the_global_input = ovNO_STREAM;
FILE* the_global_output = ovNO_STREAM;
uint32_t the_object_counter = 0xFFFFFFFFu; // objects made since the globals were set

// Null is what an open that failed leaves; neither it nor the marker is written to.
bool is_stream(FILE* f) {
    return f && f != ovNO_STREAM;
}

// atof's value truncated toward zero, then taken modulo 2^bits as the C conversions
// of the old code did; NaN and values beyond 64 bits give 0 or the nearest end.
int64_t truncated(const char* field) {
    const double v = std::atof(field);
    if (std::isnan(v))
        return 0;
    if (v >= 9.2233720368547758e18)
        return INT64_MAX;
    if (v <= -9.2233720368547758e18)
        return INT64_MIN;
    return static_cast<int64_t>(v);
}

// One formatted field into a 1024-byte buffer; longer output is cut there.
void field(char (&out)[1024], const char* format, ...) {
    va_list args;
    va_start(args, format);
    std::vsnprintf(out, sizeof out, format, args);
    va_end(args);
}

} // namespace

ovPrintFunction ovIO::the_print_function = nullptr;

// ---- construction ------------------------------------------------------------

ovIO::ovIO()
    : ovInputFile(nullptr), m_output(nullptr), m_owns_stream(0), m_file_name(nullptr),
      m_code(ovIO_NONE), m_line_length(1024), m_print_function(nullptr), m_flush_writes(1) {
    initialise();
    set_stream(the_global_input);
    m_output = the_global_output;
}

ovIO::ovIO(const char* name) : ovIO() {
    m_code = ovIO_NOT_OPENED;
    if (!name || !*name)
        return;
    const int opened = ovInputFile::fopen(name, "wb+");
    m_output = m_stream;
    // errno counts only when the open failed; 1 (EPERM) is taken as success, as
    // it always was.
    const int error = opened ? 0 : errno;
    if (error == 0 || error == 1) {
        m_owns_stream = 1;
        m_code = ovIO_OPENED;
    }
}

ovIO::ovIO(const char* name, char mode) : ovIO() {
    if (name) {
        const size_t n = std::strlen(name);
        m_file_name = new char[n + 1];
        std::memcpy(m_file_name, name, n + 1);
    }
    open_file(mode);
}

ovIO::~ovIO() {
    if (m_owns_stream) {
        int result;
        bool output_closed = false;
        if (m_stream != ovNO_STREAM) {
            output_closed = m_output == m_stream;
            result = ovInputFile::fclose();
        } else {
            result = is_stream(m_output) ? std::fclose(m_output) : EOF;
            output_closed = true;
        }
        if (result != 0) {
            // The closed stream cannot take the message; the global output can.
            if (output_closed)
                m_output = the_global_output;
            printf("Error closing %s\n", m_file_name ? m_file_name : "");
        }
    }
    delete[] m_file_name;
}

void ovIO::initialise() {
    m_flush_writes = 1;
    if (!is_stream(the_global_input) || !is_stream(the_global_output)) {
        initialise_ovrasetio();
        the_object_counter = 0;
    }
    ++the_object_counter;
}

void ovIO::initialise_ovrasetio() {
    setglobalio(stdin, stdout);
}

void ovIO::setglobalio(FILE* in, FILE* out) {
    the_global_input = in;
    the_global_output = out;
}

int ovIO::open_file(char mode) {
    m_code = ovIO_NOT_OPENED;
    m_owns_stream = 0;
    if (mode == 'r' || mode == 'R') {
        if (exist_file(m_file_name, this)) {
            if (ovInputFile::fopen(m_file_name, "r")) {
                m_output = ovNO_STREAM;
                m_owns_stream = 1;
                m_code = ovIO_OPENED;
            } else {
                m_code = ovIO_NOT_OPENED;
            }
        }
    } else if (mode == 'w' || mode == 'W') {
        m_output = ub_fopen(m_file_name, "wb+");
        if (m_output) {
            set_stream(ovNO_STREAM);
            m_owns_stream = 1;
            m_code = ovIO_OPENED;
        }
    } else {
        ovInputFile::fopen(m_file_name, "wb+");
        m_output = m_stream;
        if (!m_stream) { // inverted on purpose: see the header
            m_owns_stream = 1;
            m_code = ovIO_OPENED;
        }
    }
    return m_owns_stream;
}

int ovIO::exist_file(const char* name, ovIO* io) {
    ovIOCode code = ovIO_FILE_EXISTS;
    if (!name || ovra_internal::access_exists(name) != 0)
        code = name && errno == EACCES ? ovIO_FILE_EXISTS : ovIO_NO_FILE;
    if (io)
        io->m_code = code;
    return code == ovIO_FILE_EXISTS ? 1 : 0;
}

void ovIO::assert_on_get_s_read_error(int on) noexcept {
    ovInputFile::check_for_read_error(on);
}

void ovIO::recover_get_s_read_error(int on) noexcept {
    ovInputFile::read_error_recovery(on);
}

void ovIO::set_the_print_function(ovPrintFunction function) noexcept {
    the_print_function = function;
}

// ---- writing -----------------------------------------------------------------

void ovIO::print_string(const char* text) {
    if (!text || !*text)
        return;
    if (m_output == the_global_output && (m_print_function || the_print_function)) {
        (m_print_function ? m_print_function : the_print_function)(text);
        return;
    }
    if (!is_stream(m_output))
        return;
    std::fputs(text, m_output);
    if (m_flush_writes)
        std::fflush(m_output);
}

void ovIO::put_c(char c) {
    if (!is_stream(m_output)) {
        m_code = ovIO_NO_OUTPUT;
        return;
    }
    std::fputc(static_cast<unsigned char>(c), m_output);
    if (m_flush_writes)
        std::fflush(m_output);
    m_code = ovIO_WRITE_OK;
}

void ovIO::put_s(const char* format, ...) {
    if (!is_stream(m_output)) {
        m_code = ovIO_NO_OUTPUT;
        return;
    }
    va_list args;
    va_start(args, format);
    pass_args(format, args);
    va_end(args);
    m_code = ovIO_WRITE_OK;
}

// A run of ordinary text: copied and terminated, on the stack when short.
void ovIO::write_piece(const char* text, size_t n) {
    if (n == 0)
        return;
    char scratch[128];
    std::unique_ptr<char[]> heap;
    char* copy = scratch;
    if (n > sizeof scratch - 1) {
        heap.reset(new char[n + 1]);
        copy = heap.get();
    }
    std::memcpy(copy, text, n);
    copy[n] = 0;
    print_string(copy);
}

void ovIO::pass_args(const char* format, va_list args) {
    if (!format)
        return;
    // A print function sees every piece as it is made. A stream sees only the
    // bytes, so they are gathered and written once: the same text, one call.
    const bool captured = m_output == the_global_output && (m_print_function || the_print_function);
    std::string gathered;
    auto emit = [&](const char* text) {
        if (captured)
            print_string(text);
        else
            gathered += text; // up to its first 0, as fputs would have written it
    };
    auto emit_run = [&](const char* text, size_t n) {
        if (captured)
            write_piece(text, n);
        else
            gathered.append(text, n);
    };
    const char* p = format;
    const char* run = p; // ordinary text not written yet
    while (*p) {
        if (*p != '%') {
            ++p;
            continue;
        }
        emit_run(run, static_cast<size_t>(p - run));
        const char* q = p + 1;
        int width = 0, precision = 0;
        bool plus = false;
        if (*q == '(') {
            char sizes[10];
            size_t n = 0;
            const char* s = q + 1;
            for (; *s && *s != ')'; ++s) {
                if (n == sizeof sizes) // no room for the terminator: a bounds failure
                    ovra_internal::bounds_failure();
                sizes[n++] = *s;
            }
            if (!*s) { // the format ended inside: the "%" is ordinary text
                run = p;
                ++p;
                continue;
            }
            if (n == sizeof sizes)
                ovra_internal::bounds_failure();
            sizes[n] = 0;
            const char* digits = sizes;
            if (*digits == '+') {
                plus = true;
                ++digits;
            }
            width = std::atoi(digits);
            if (const char* dot = std::strchr(sizes, '.'))
                precision = std::atoi(dot + 1);
            // A field is cut at 1023 characters, so nothing wider changes what is
            // written, and some runtimes fail on huge widths.
            width = width < 0 ? 0 : width > 1023 ? 1023 : width;
            precision = precision < 0 ? 0 : precision > 1023 ? 1023 : precision;
            q = s + 1;
        }
        const char letter = *q;
        if (!letter) { // a lone "%" at the end
            emit("%");
            run = p = q;
            break;
        }
        char out[1024];
        out[0] = 0;
        const int w = -width; // every field is left-justified
        switch (letter) {
        case '%':
            field(out, "%%");
            break;
        case 'd':
        case 'h':
            field(out, "%*d", w, va_arg(args, int));
            break;
        case 'u':
            field(out, "%*u", w, va_arg(args, unsigned int));
            break;
        case 'D':
            field(out, "%*ld", w, va_arg(args, long));
            break;
        case 'L':
            field(out, "%*lu", w, va_arg(args, unsigned long));
            break;
        case 'c':
            field(out, "%*c", w, va_arg(args, int));
            break;
        case 's': {
            const char* s = va_arg(args, const char*);
            field(out, "%*s", w, s ? s : "(null)");
            break;
        }
        case 'f':
        case 'F':
            field(out, plus ? "%+*.*f" : "%*.*f", w, precision, va_arg(args, double));
            break;
        case 'r':
        case 'R': {
            const char* s = va_arg(args, const char*);
            // Room for the longest piece ("<-128>") past the point where it is written out.
            char work[1024 + 8];
            size_t len = 0;
            bool written = false;
            for (; s && *s; ++s) {
                const signed char c = static_cast<signed char>(*s);
                if (c == '\t' || c == '\n' || c == '\r') {
                    work[len++] = '\\';
                    work[len++] = c == '\t' ? 't' : c == '\n' ? 'n' : 'r';
                } else if (c < 32) {
                    len += static_cast<size_t>(std::snprintf(work + len, 8, "<%d>", c));
                } else {
                    work[len++] = static_cast<char>(c);
                }
                if (len + 5 >= 1024) {
                    work[len] = 0;
                    emit(work);
                    len = 0;
                    written = true;
                }
            }
            work[len] = 0;
            if (written)
                emit(work);
            else
                field(out, "%*s", w, work);
            break;
        }
        default:
            field(out, "%c%c", '%', letter);
            break;
        }
        emit(out);
        p = q + 1;
        run = p;
    }
    emit_run(run, static_cast<size_t>(p - run));
    if (!gathered.empty())
        print_string(gathered.c_str());
}

void ovIO::printf(const char* format, ...) {
    va_list args;
    va_start(args, format);
    vprintf(format, args);
    va_end(args);
}

void ovIO::vprintf(const char* format, va_list args) {
    if (!is_stream(m_output)) {
        m_code = ovIO_NO_OUTPUT;
        return;
    }
    m_code = ovIO_WRITE_OK;
    if (!format)
        return;
    // Measured by writing once to the null device; vsnprintf measures when it is missing.
    int length = -1;
    va_list measure;
    va_copy(measure, args);
    if (FILE* null = std::fopen(ovra_internal::null_device(), "w")) {
        length = std::vfprintf(null, format, measure);
        std::fclose(null);
    } else {
        length = std::vsnprintf(nullptr, 0, format, measure);
    }
    va_end(measure);
    if (length <= 0)
        return;
    std::unique_ptr<char[]> text(new char[static_cast<size_t>(length) + 1]);
    std::vsnprintf(text.get(), static_cast<size_t>(length) + 1, format, args);
    print_string(text.get());
}

void ovIO::newline(int n) {
    if (n <= 0)
        return;
    if (n < 32) {
        char text[32];
        std::memset(text, '\n', static_cast<size_t>(n));
        text[n] = 0;
        print_string(text);
        return;
    }
    for (int i = 0; i < n; ++i)
        put_c('\n');
}

// ---- reading -----------------------------------------------------------------

ovIOCode ovIO::get_c(char& c) {
    if (m_stream == ovNO_STREAM)
        return m_code = ovIO_NO_INPUT;
    c = static_cast<char>(ovInputFile::getc());
    if (feof())
        m_code = ovIO_END_OF_FILE;
    else if (ferror())
        m_code = ovIO_READ_ERROR;
    else
        m_code = ovIO_READ_OK;
    return m_code;
}

ovIOCode ovIO::get_s(char* buffer) {
    if (m_stream == ovNO_STREAM)
        return m_code = ovIO_NO_INPUT;
    // One byte short of the line length, so that the line feed always added after the
    // text still leaves room for its terminator.
    if (!buffer || !ovInputFile::fgets(buffer, m_line_length - 1))
        return m_code = ovIO_READ_ERROR;
    size_t n = std::strlen(buffer);
    while (n > 0 && (buffer[n - 1] == '\n' || buffer[n - 1] == '\r'))
        --n;
    buffer[n] = '\n';
    buffer[n + 1] = 0;
    return m_code = ovIO_READ_OK;
}

int ovIO::readline(const char* line, const char* format, ...) {
    char text[1024];
    text[0] = 0;
    if (line) {
        std::strncpy(text, line, sizeof text - 1);
        text[sizeof text - 1] = 0;
    } else if (get_s(text) != ovIO_READ_OK) {
        text[0] = 0;
    }
    if (!text[0] || !format)
        return 0;

    va_list args;
    va_start(args, format);
    int count = 0;
    char* t = text;
    char* const end = text + std::strlen(text);
    for (const char* f = format; *f && t < end; ++f) {
        char delimiter = 0;
        if (*f == '(' && f[1]) {
            delimiter = f[1];
            f += 2;
            if (*f == ')')
                ++f;
            if (!*f)
                break;
        }
        char* field;
        char* stop;
        if (delimiter) {
            if (char* d = std::strchr(t, delimiter))
                t = d + 1;
            field = t;
            stop = std::strchr(field, delimiter);
            if (!stop)
                stop = end;
        } else {
            while (t < end && (*t == ' ' || *t == '\t'))
                ++t;
            field = t;
            stop = field;
            while (stop < end && *stop != ' ' && *stop != '\t')
                ++stop;
        }
        if (field >= end)
            break;
        if (stop > field && (stop[-1] == '\r' || stop[-1] == '\n'))
            --stop;
        *stop = 0;
        ++count;
        switch (*f) {
        case 'D':
        case 'l':
            *va_arg(args, int32_t*) = static_cast<int32_t>(std::atol(field));
            break;
        case 'F':
        case 'f':
            *va_arg(args, double*) = std::atof(field);
            break;
        case 'L': {
            unsigned long* out = va_arg(args, unsigned long*);
            if (std::sscanf(field, "%lu", out) != 1)
                --count;
            break;
        }
        case 'd':
            *va_arg(args, int32_t*) = static_cast<int32_t>(static_cast<uint32_t>(truncated(field)));
            break;
        case 'h':
            *va_arg(args, int16_t*) = static_cast<int16_t>(static_cast<uint16_t>(truncated(field)));
            break;
        case 'U':
            *va_arg(args, uint16_t*) = static_cast<uint16_t>(truncated(field));
            break;
        case 'u':
            *va_arg(args, uint32_t*) = static_cast<uint32_t>(truncated(field));
            break;
        case 's':
            std::strcpy(va_arg(args, char*), field);
            break;
        case 'r': {
            // The rest of the line, from the field on, without its final line feed.
            if (stop < end)
                *stop = ' ';
            std::string rest(field, static_cast<size_t>(end - field));
            if (!rest.empty() && rest.back() == '\n')
                rest.pop_back();
            std::memcpy(va_arg(args, char*), rest.c_str(), rest.size() + 1);
            break;
        }
        default:
            break;
        }
        t = stop + 1;
    }
    va_end(args);
    return count;
}

// ---- ovStreamBuffer ------------------------------------------------------------

ovStreamBuffer::ovStreamBuffer() : ovStreamBuffer(new ovIO()) {}

ovStreamBuffer::ovStreamBuffer(ovIO* io) : m_io(io), m_buffer(new char[1024]) {
    setp(m_buffer, m_buffer + 1023);
}

ovStreamBuffer::~ovStreamBuffer() {
    if (m_io) {
        sync();
        delete m_io;
    }
    setp(nullptr, nullptr);
    delete[] m_buffer;
}

int ovStreamBuffer::overflow(int c) {
    sync();
    if (c == traits_type::eof())
        return 0;
    return sputc(static_cast<char>(c));
}

int ovStreamBuffer::underflow() {
    return 0;
}

int ovStreamBuffer::sync() {
    const std::ptrdiff_t n = pptr() - pbase();
    if (m_io && n > 0) {
        m_buffer[n] = 0;
        m_io->printf("%s", m_buffer);
    }
    setp(m_buffer, m_buffer + 1023);
    return 0;
}

// ---- procedural ----------------------------------------------------------------

extern "C" OV_API void ovprintf(const char* format, ...) {
    ovIO io;
    va_list args;
    va_start(args, format);
    io.vprintf(format, args);
    va_end(args);
}

extern "C" OV_API void ovoutstring(const char* format, ...) {
    ovIO io;
    va_list args;
    va_start(args, format);
    io.pass_args(format, args);
    va_end(args);
}

// ---- ovSpaceballInput -------------------------------------------------------------

void* ovSpaceballInput::the_hwnd = nullptr;
ovSpaceballInput::Callback ovSpaceballInput::the_callback = nullptr;

void ovSpaceballInput::set_window(void* window) noexcept {
    the_hwnd = window;
}

void* ovSpaceballInput::get_window() noexcept {
    return the_hwnd;
}

void ovSpaceballInput::set_callback(Callback callback) noexcept {
    the_callback = callback;
}

int ovSpaceballInput::dispatch_event(unsigned int message, unsigned long long wparam,
                                     long long lparam) {
    return the_callback ? the_callback(message, wparam, lparam) : 0;
}
