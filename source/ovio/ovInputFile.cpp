#include "ovra/ovInputFile.h"

#include "ovio/input_file_os.h"
#include "ub/ubGlyphs.h"
#include "ut/utAssert.h"

#include <chrono>
#include <cstring>
#include <string>
#include <thread>

namespace {

int the_check_for_read_error = 0;
int the_read_error_recovery = 0;

// The counters are 32-bit and wrap past 2 GiB instead of overflowing.
int32_t add(int32_t counter, size_t n) noexcept {
    return static_cast<int32_t>(static_cast<uint32_t>(counter) + static_cast<uint32_t>(n));
}

} // namespace

unsigned& ovra_internal::read_retry_pause_ms() {
    static unsigned pause = 300;
    return pause;
}

ovInputFile::ovInputFile(FILE* stream) noexcept
    : m_stream(stream), m_lines_read(kUnknown), m_position(kUnknown), m_closed(false) {}

ovInputFile::~ovInputFile() = default;

void ovInputFile::set_stream(FILE* stream) noexcept {
    m_stream = stream;
    m_closed = false;
    m_lines_read = kUnknown;
    m_position = kUnknown;
}

int ovInputFile::getc() noexcept {
    m_position = add(m_position, 1);
    return has_stream() ? std::getc(m_stream) : EOF;
}

int ovInputFile::feof() const noexcept {
    return has_stream() ? std::feof(m_stream) : 1;
}

int ovInputFile::ferror() const noexcept {
    return has_stream() ? std::ferror(m_stream) : 1;
}

void ovInputFile::clearerr() noexcept {
    if (has_stream())
        std::clearerr(m_stream);
}

void ovInputFile::rewind() noexcept {
    if (has_stream())
        std::rewind(m_stream);
}

char* ovInputFile::fgets(char* buffer, int size) {
    if (!has_stream() || !buffer || size <= 0)
        return nullptr;
    char* line = std::fgets(buffer, size, m_stream);
    if ((the_check_for_read_error || the_read_error_recovery) && std::ferror(m_stream))
        line = recover(buffer, size);
    if (line) {
        m_position = add(m_position, std::strlen(line));
        m_lines_read = add(m_lines_read, 1);
    }
    return line;
}

// Goes back to where the last good read ended and reads again; the outcome of every
// attempt goes into the report. A read error at the very end of the file was the end.
char* ovInputFile::recover(char* buffer, int size) {
    std::string report = "File reading error position ";
    bool recovered = false;
    char* line = nullptr;
    for (int attempt = 1; attempt <= 5; ++attempt) {
        std::rewind(m_stream); // also clears the error
        const long long length = ovra_internal::stream_length(m_stream);
        report +=
            std::to_string(m_position) + " | recovery attempt " + std::to_string(attempt) + " |";
        if (length < 0) {
            report += ovra_internal::runtime_error_text("lseek error finding file length ");
        } else if (length == m_position) {
            report += "EOF";
            recovered = the_read_error_recovery != 0;
            break;
        } else if (!ovra_internal::seek_stream(m_stream, m_position)) {
            report += ovra_internal::runtime_error_text("lseek error finding file position ");
        } else if (std::fgets(buffer, size, m_stream)) {
            report += buffer;
            recovered = the_read_error_recovery != 0;
            line = buffer;
            break;
        } else {
            report += ovra_internal::runtime_error_text("FAILED");
        }
        std::this_thread::sleep_for(
            std::chrono::milliseconds(ovra_internal::read_retry_pause_ms()));
    }
    if (the_check_for_read_error && !recovered)
        ut_report_assert_failure_5("source/ovio/ovInputFile", 220, report.c_str(),
                                   "ovInputFile::fgets", "recovered");
    // Without recovery a read error is never hidden, even when a retry worked.
    return the_read_error_recovery ? line : nullptr;
}

int ovInputFile::fopen(const char* name, const char* mode) {
    m_lines_read = 0;
    m_position = 0;
    m_stream = ub_fopen(name, mode);
    m_closed = false;
    return m_stream ? 1 : 0;
}

int ovInputFile::fclose() noexcept {
    m_lines_read = kUnknown;
    m_position = kUnknown;
    if (!has_stream())
        return EOF;
    m_closed = true;
    return std::fclose(m_stream);
}

void ovInputFile::check_for_read_error(int on) noexcept {
    the_check_for_read_error = on;
}

void ovInputFile::read_error_recovery(int on) noexcept {
    the_read_error_recovery = on;
}
