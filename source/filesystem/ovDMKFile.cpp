#include "ovra/ovDMKFile.h"

#include "filesystem/dmk_os.h"
#include "ovra/ovFileOperations.h"
#include "ub/ubGlyphs.h"

#include <climits>
#include <cstdint>
#include <cstdlib>
#include <cstring>

ovIDMKFile::~ovIDMKFile() {}

int ovIDMKFile::seek64(long long offset, int origin) {
    if (offset < -2147483648LL || offset >= 2147483648LL)
        return -1;
    return seek(static_cast<long>(offset), origin);
}

long long ovIDMKFile::tell64() {
    return static_cast<long long>(static_cast<int32_t>(tell()));
}

long long ovIDMKFile::length64() {
    const long long p = tell64();
    if (p < 0)
        return -1;
    if (seek64(0, SEEK_END) != 0)
        return -1;
    const long long n = tell64();
    if (n < 0)
        return -1;
    if (seek64(p, SEEK_SET) != 0)
        return -1;
    return n;
}

ovDMKFileStdio::ovDMKFileStdio() : m_stream(nullptr), m_owns(1) {}

ovDMKFileStdio::ovDMKFileStdio(const utString& path, ovDMKMode mode)
    : m_stream(nullptr), m_owns(1) {
    const char* how = mode == ovDMK_READ ? "rb" : (mode == ovDMK_WRITE ? "wb" : "");
    if (*how)
        m_stream = ub_fopen(path.c_str(), how);
}

ovDMKFileStdio::ovDMKFileStdio(FILE* stream) : m_stream(stream), m_owns(0) {}

ovDMKFileStdio::~ovDMKFileStdio() {
    if (m_owns && m_stream)
        std::fclose(m_stream);
}

int ovDMKFileStdio::open(const ovPath& path, ovDMKMode mode) {
    if (m_stream) {
        std::fclose(m_stream);
        m_stream = nullptr;
    }
    if (!path.dirname_ov().is_directory())
        return 0;
    if (mode == ovDMK_READ)
        m_stream = path.file_open(path.read_mode());
    else if (mode == ovDMK_WRITE)
        m_stream = path.file_open(path.write_mode());
    return m_stream ? 1 : 0;
}

int ovDMKFileStdio::seek(long offset, int origin) {
    return std::fseek(m_stream, offset, origin);
}

int ovDMKFileStdio::tell() {
    return static_cast<int>(std::ftell(m_stream));
}

int ovDMKFileStdio::read(void* buffer, int size, int count) {
    if (size <= 0 || count <= 0)
        return 0;
    return static_cast<int>(
        std::fread(buffer, static_cast<size_t>(size), static_cast<size_t>(count), m_stream));
}

int ovDMKFileStdio::write(const void* buffer, int size, int count) {
    if (size <= 0 || count <= 0)
        return 0;
    return static_cast<int>(
        std::fwrite(buffer, static_cast<size_t>(size), static_cast<size_t>(count), m_stream));
}

void ovDMKFileStdio::rewind() {
    std::rewind(m_stream);
}

char* ovDMKFileStdio::gets(char* buffer, int size) {
    if (!buffer || size <= 0)
        return nullptr;
    return std::fgets(buffer, size, m_stream);
}

int ovDMKFileStdio::remove(const char* name) {
    return name ? std::remove(name) : -1;
}

int ovDMKFileStdio::seek64(long long offset, int origin) {
    return ovra_internal::seek64(m_stream, offset, origin);
}

long long ovDMKFileStdio::tell64() {
    return ovra_internal::tell64(m_stream);
}

extern "C" OV_API int accessc(const char* path, int length, const char* mode) {
    if (length < 0 || length > 1023) {
        // A length outside the buffer is a caller's bug that must not go unnoticed.
        std::fputs("accessc: range check failure: length outside 0..1023\n", stderr);
        std::abort();
    }
    char copy[1024];
    int k = 0;
    while (path && k < length && path[k] != '\0') {
        copy[k] = path[k];
        ++k;
    }
    copy[k] = '\0';
    const int what = mode && mode[0] == 'r' ? 4 : (mode && mode[0] == 'w' ? 2 : 0);
    return ovra_internal::access_utf8(copy, what);
}
