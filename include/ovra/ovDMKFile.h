/// @file
/// DMK files: binary file streams behind an interface, so that code reading or writing
/// binary data need not care where the bytes come from, with 64-bit positions on top.
///
/// `ovIDMKFile` has the C stream operations as virtual members; an implementation with
/// only 32-bit positions gets 64-bit seek and tell that refuse what does not fit, and
/// everyone gets length64. `ovDMKFileStdio` implements it on a C stream. `accessc`
/// tests access to a path given with an explicit length.
///
/// Error contract: results are those of the C stream functions (0 from seek on
/// success, -1 for failure, element counts from read and write, null from gets);
/// nothing throws and no message is reported. An object without a stream must not be
/// used for stream operations: file_open() says whether one is open.
///
/// Kept on purpose: open() leaves the ownership flag as it was, so a stream opened on
/// an object made from a caller's FILE* is not closed at destruction; open() closes
/// whatever stream the object held first, whoever owned it. accessc ends the process
/// when its length is outside 0..1023.
#pragma once

#include "ovra/ovExport.h"
#include "ovra/ovPath.h"
#include "ut/utString.h"

#include <cstdio>

/// How ovDMKFileStdio opens a path.
enum ovDMKMode {
    ovDMK_READ = 0,  ///< binary read, "rb"
    ovDMK_WRITE = 1, ///< binary write, "wb": created or truncated
};

/// A binary file stream.
class OV_API ovIDMKFile {
public:
    virtual ~ovIDMKFile();
    /// Non-zero when a stream is open.
    virtual int file_open() const = 0;
    /// fseek: 0 on success.
    virtual int seek(long offset, int origin) = 0;
    /// ftell.
    virtual int tell() = 0;
    /// fread and fwrite: elements transferred.
    virtual int read(void* buffer, int size, int count) = 0;
    /// fwrite: elements written.
    virtual int write(const void* buffer, int size, int count) = 0;
    /// Back to the start, errors cleared.
    virtual void rewind() = 0;
    /// fgets: null at the end or on error.
    virtual char* gets(char* buffer, int size) = 0;
    /// Deletes the named file (not this object's stream): 0 on success.
    virtual int remove(const char* name) = 0;
    /// 64-bit seek: this body refuses (-1, not moving) an offset outside the 32-bit
    /// range and otherwise calls seek.
    virtual int seek64(long long offset, int origin);
    /// 64-bit tell: this body sign-extends tell().
    virtual long long tell64();
    /// The stream's length in bytes, the position kept; -1 when it cannot be found.
    virtual long long length64();
};

/// An ovIDMKFile on a C stream.
class OV_API ovDMKFileStdio : public ovIDMKFile {
public:
    /// No stream; a stream opened later is closed at destruction.
    ovDMKFileStdio();
    /// Opens a UTF-8 path with ub_fopen; any mode but the two opens nothing.
    ovDMKFileStdio(const utString& path, ovDMKMode mode);
    /// Uses the caller's stream, never closing it.
    explicit ovDMKFileStdio(FILE* stream);
    ~ovDMKFileStdio() override;
    ovDMKFileStdio(const ovDMKFileStdio&) = delete;
    ovDMKFileStdio& operator=(const ovDMKFileStdio&) = delete;

    /// Closes any stream held, then opens the path through its file operations; 0, with
    /// no stream, when the path's directory does not exist. Non-zero when open.
    int open(const ovPath& path, ovDMKMode mode);

    int file_open() const override { return m_stream ? 1 : 0; }
    int seek(long offset, int origin) override;
    int tell() override;
    int read(void* buffer, int size, int count) override;
    /// fwrite.
    int write(const void* buffer, int size, int count) override;
    /// rewind.
    void rewind() override;
    char* gets(char* buffer, int size) override;
    int remove(const char* name) override;
    /// Full 64-bit positions (_fseeki64 and _ftelli64; fseeko and ftello on POSIX).
    int seek64(long long offset, int origin) override;
    long long tell64() override;

private:
    FILE* m_stream;
    int m_owns;
};

extern "C" {
/// 0 when the first `length` characters of `path` (fewer at a zero byte) name something
/// the caller may read (mode starting with r), write (w), or that exists (anything
/// else); -1 otherwise. A length outside 0..1023 ends the process.
OV_API int accessc(const char* path, int length, const char* mode);
}
