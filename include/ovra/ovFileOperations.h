/// @file
/// File operations: the one way the library's file-system objects reach the operating
/// system.
///
/// `ovIFileOperations` is an abstract service shared by every thread. A platform
/// supplies a few primitives (path type, remove, create and delete a directory, list,
/// the three opening modes, encoding check, OS form of a path, rename); whole-file
/// reads and writes, sizes, moves, renames and full paths have portable bodies written
/// on those primitives and the C streams, which a platform may replace. Listing is done
/// by an `ovIFileIterator` handed out through the shared handle
/// `ovIFileIteratorcoPrf`; opening by mode objects (`ovIFileMode`), each opening a C
/// stream in one fixed mode. The chooser (ovFrustrumChooser.h) hands out the
/// process-wide instance: `ovWinFileOperations` on Windows, `ovPosixFileOperations`
/// elsewhere. Applications may write their own and judge them with ovFileOpsTester.h.
///
/// Error contract: nothing here throws for bad input or reports messages, and the
/// system's error code is neither read nor kept. Failure shows only in the result: 0
/// from the int primitives, ovPATH_DOESNT_EXIST, an ovStatus built from false, 0 from
/// file_size, the empty ovPathName from full_path, a null stream, a failed advance. An
/// invalid path name (made from text that did not decode) fails check_file_exists,
/// check_directory_exists and check_encoding; every other operation hands the system
/// the empty text for it, which names nothing. Allocation failure propagates as
/// std::bad_alloc.
///
/// Kept on purpose: `rename_file` checks nothing and leaves an existing target to the
/// system's rename (refused on Windows, replaced on POSIX); `move_file` and
/// `rename_directory` never overwrite; `file_size` of a missing file is 0, as of an
/// empty one; "." is a directory without asking the system; an iterator that reached
/// its end starts again from the first entry on the next advance.
#pragma once

#include "ovra/ovByteArray.h"
#include "ovra/ovExport.h"
#include "ovra/ovPath.h"
#include "ovra/ovPathName.h"
#include "ovra/ovStatus.h"
#include "ovra/ovString.h"

#include "co/coPrf.h"

#include <cstdint>
#include <cstdio>

class ovFrustrumChooser;
class ovFileFinderEx;
class ovFileOpsTester;
namespace ovra_internal {
struct FileOperationsFactory;
}

/// What a path names.
enum ovPathType {
    ovPATH_FILE = 0,         ///< something that exists and is not a directory
    ovPATH_DIRECTORY = 1,    ///< an existing directory, and "." always
    ovPATH_DOESNT_EXIST = 2, ///< nothing the system can see
};

/// Opens a C stream in one fixed mode.
class OV_API ovIFileMode {
public:
    /// A stream, or null; the caller closes it with fclose.
    virtual FILE* file_open(const ovPathName& path) const = 0;
    virtual ~ovIFileMode();
};

/// Lists one directory, entry by entry, in the order the system gives them; files and
/// subdirectories alike, never "." or "..". Belongs to one caller at a time.
class OV_API ovIFileIterator {
public:
    /// Copies the directory to list. No entry is current yet.
    explicit ovIFileIterator(const ovPath& path);
    virtual ~ovIFileIterator();

    /// 1 when the path was not a directory when the iterator was made. An invalid
    /// iterator lists nothing.
    virtual int invalid() const = 0;
    /// 1 while no listing is open: before the first advance and after the end.
    virtual int undefined() const = 0;
    /// Reads the next raw entry ("." and ".." included) into the current entry; opens
    /// the listing when none is open. 0 at the end: the listing closes, the current
    /// entry stays, and the next call starts again from the first entry.
    virtual int get_next_file() = 0;

protected:
    /// The next entry other than "." and ".."; 0 at the end.
    int operator++();
    /// The current entry's bare name (not joined to the directory); empty before the
    /// first advance.
    ovFileName operator()() const;

    const ovPath& listed_path() const noexcept { return m_path; }
    void set_current(const ovFileName& name) { m_current = name; }

private:
    friend class ovFileFinderEx;
    friend class ovFileOpsTester;

    ovPath m_path;
    ovFileName m_current;
};

/// Shared ownership of one iterator; the last copy frees it. See co/coPrf.h.
typedef coPrf<ovIFileIterator> ovIFileIteratorcoPrf;

/// The file operations. Every operation is const and keeps no state between calls.
class OV_API ovIFileOperations {
public:
    /// Primitives.
    virtual ovPathType type_of_path(const ovPathName& path) const = 0;
    /// Non-zero when the file was removed; never removes a directory.
    virtual int remove_file(const ovPathName& path) const = 0;
    /// One level; non-zero when made. The parent must exist.
    virtual int create_directory(const ovPathName& path) const = 0;
    /// Non-zero when removed; refuses, untouched, anything but an empty directory.
    virtual int delete_directory(const ovPathName& path) const = 0;
    /// A fresh listing of the directory.
    virtual ovIFileIteratorcoPrf iterator(const ovPathName& path) const = 0;
    virtual const ovIFileMode& read_mode() const = 0;  ///< "rb"
    virtual const ovIFileMode& rw_mode() const = 0;    ///< "r+b": an existing file, in place
    virtual const ovIFileMode& write_mode() const = 0; ///< "wb": created or truncated
    /// Non-zero when the path can be handed to the system.
    virtual int check_encoding(const ovPathName& path) const = 0;
    /// The path's text in the system's own spelling.
    virtual ovString os_style_path(const ovPathName& path) const = 0;

    /// Portable bodies.
    /// Writes the whole array in one call, creating or truncating the file; an empty
    /// array leaves an empty file. Failure may leave a partly written file.
    virtual ovStatus write_file(const ovPathName& path, const ovByteArray& data) const;
    /// Reads file_size(path) bytes, sized before opening (a file that grows meanwhile
    /// is read up to the old size; bytes it lost read as zero). A negative size fails.
    /// `data` changes only on success.
    virtual ovStatus read_file(const ovPathName& path, ovByteArray& data) const;
    /// The size in bytes; 0 when the file cannot be opened for reading, missing
    /// included. This body goes through ftell and so stops below 2 GiB; the platforms'
    /// own are 64-bit.
    virtual int64_t file_size(const ovPathName& path) const;
    /// rename(from, to) when `from` is a file and nothing exists at `to`; otherwise
    /// failure, nothing touched.
    virtual ovStatus move_file(const ovPathName& from, const ovPathName& to) const;
    /// Renames the directory within its parent when it is a directory and the new name
    /// is free; otherwise failure, nothing touched. A name that is not one component
    /// (invalid, or holding a backslash) is refused.
    virtual ovStatus rename_directory(const ovPathName& dir, const ovFileName& name) const;
    /// rename(file, its parent joined with name), with no check of the source or the
    /// target. Only a name that is not one component is refused, as rename_directory.
    virtual ovStatus rename_file(const ovPathName& file, const ovFileName& name) const;
    /// This body gives the path back unchanged.
    virtual ovPathName full_path(const ovPathName& path) const;

    virtual ~ovIFileOperations();

    /// The system's rename; what happens to an existing target is the system's affair.
    virtual ovStatus rename(const ovPathName& from, const ovPathName& to) const = 0;

    /// 1 when the path is valid and names a file.
    int check_file_exists(const ovPathName& path) const;
    /// 1 when the path is valid and names a directory.
    int check_directory_exists(const ovPathName& path) const;

protected:
    /// Stores size in out; 1 when the stored value equals size.
    int convert_file_size(long long size, unsigned long long& out) const;
};

#if defined(_WIN32)

/// "rb" through _wfopen of the UTF-16 path.
class OV_API ovWinReadMode final : public ovIFileMode {
public:
    FILE* file_open(const ovPathName& path) const override;

protected:
    ovWinReadMode() {}
    ~ovWinReadMode() override;
    friend class ovWinFileOperations;
};

/// "r+b" through _wfopen of the UTF-16 path.
class OV_API ovWinRWMode final : public ovIFileMode {
public:
    FILE* file_open(const ovPathName& path) const override;

protected:
    ovWinRWMode() {}
    ~ovWinRWMode() override;
    friend class ovWinFileOperations;
};

/// "wb" through _wfopen of the UTF-16 path.
class OV_API ovWinWriteMode final : public ovIFileMode {
public:
    FILE* file_open(const ovPathName& path) const override;

protected:
    ovWinWriteMode() {}
    ~ovWinWriteMode() override;
    friend class ovWinFileOperations;
};

/// The Windows file operations: the C runtime's wide calls, and Win32 for attributes,
/// full paths and listing. Paths go to the system with their "/" separators.
///
/// full_path: GetFullPathNameW with room for 260 characters; when the answer needs
/// more, a second call with the room the system asked for, so long paths come back
/// whole. A buffer the system did not fill is never read; failure gives the empty path.
class OV_API ovWinFileOperations final : public ovIFileOperations {
public:
    /// GetFileAttributesW; "." is a directory without asking.
    ovPathType type_of_path(const ovPathName& path) const override;
    /// _wchmod to read-write (clears read-only; result ignored), then _wremove.
    int remove_file(const ovPathName& path) const override;
    /// _wmkdir.
    int create_directory(const ovPathName& path) const override;
    /// Only a directory: _wchmod to read-write, then _wrmdir.
    int delete_directory(const ovPathName& path) const override;
    /// FindFirstFileW / FindNextFileW on path/*.
    ovIFileIteratorcoPrf iterator(const ovPathName& path) const override;
    const ovIFileMode& read_mode() const override { return m_read_mode; }
    const ovIFileMode& rw_mode() const override { return m_rw_mode; }
    const ovIFileMode& write_mode() const override { return m_write_mode; }
    int check_encoding(const ovPathName& path) const override;
    /// Every "/" becomes a backslash.
    ovString os_style_path(const ovPathName& path) const override;
    /// _fseeki64 / _ftelli64: full 64-bit sizes.
    int64_t file_size(const ovPathName& path) const override;
    ovPathName full_path(const ovPathName& path) const override;
    /// _wrename: fails when the target exists.
    ovStatus rename(const ovPathName& from, const ovPathName& to) const override;

protected:
    ovWinFileOperations() {}
    ~ovWinFileOperations() override;
    friend class ovFrustrumChooser;
    friend struct ovra_internal::FileOperationsFactory;

private:
    ovWinReadMode m_read_mode;
    ovWinRWMode m_rw_mode;
    ovWinWriteMode m_write_mode;
};

/// Lists with FindFirstFileW / FindNextFileW.
class OV_API ovWinFileIterator final : public ovIFileIterator {
public:
    ~ovWinFileIterator() override;
    int invalid() const override { return m_invalid; }
    int undefined() const override;
    int get_next_file() override;

protected:
    explicit ovWinFileIterator(const ovPath& path);
    friend class ovWinFileOperations;

private:
    int m_invalid;
    void* m_handle; ///< the search handle; INVALID_HANDLE_VALUE while none is open
};

#else

/// "rb" through fopen. A directory is refused (null), as Windows refuses it.
class OV_API ovPosixReadMode final : public ovIFileMode {
public:
    FILE* file_open(const ovPathName& path) const override;

protected:
    ovPosixReadMode() {}
    ~ovPosixReadMode() override;
    friend class ovPosixFileOperations;
};

/// "r+b" through fopen.
class OV_API ovPosixRWMode final : public ovIFileMode {
public:
    FILE* file_open(const ovPathName& path) const override;

protected:
    ovPosixRWMode() {}
    ~ovPosixRWMode() override;
    friend class ovPosixFileOperations;
};

/// "wb" through fopen.
class OV_API ovPosixWriteMode final : public ovIFileMode {
public:
    FILE* file_open(const ovPathName& path) const override;

protected:
    ovPosixWriteMode() {}
    ~ovPosixWriteMode() override;
    friend class ovPosixFileOperations;
};

/// The POSIX file operations, with the Windows ones' observable behaviour. Paths go to
/// the system as UTF-8. Differences from Windows:
///  - POSIX has no read-only attribute. Before removing, remove_file and
///    delete_directory add the owner's write permission to a real file or directory
///    (never through a link, never wider), which is what clearing the attribute means.
///    remove_file never removes a directory.
///  - rename replaces an existing target (Windows refuses); so rename_file onto an
///    existing name replaces it. move_file and rename_directory still refuse.
///  - full_path is lexical, as GetFullPathNameW is: the current directory joined with
///    a relative path, "." and ".." folded, links not resolved; the empty path when the
///    current directory cannot be read. Any length.
///  - os_style_path gives the text unchanged.
///  - file_size gives 0 for what the caller could not open for reading, as on
///    Windows (directories included), without opening a regular file: stat, then the
///    owner's read bit or faccessat with the effective identity. 64-bit.
///  - Entry names that are not UTF-8 come back as invalid names.
class OV_API ovPosixFileOperations final : public ovIFileOperations {
public:
    /// stat (following links); "." is a directory without asking.
    ovPathType type_of_path(const ovPathName& path) const override;
    int remove_file(const ovPathName& path) const override;
    /// mkdir, mode 0777 less the umask.
    int create_directory(const ovPathName& path) const override;
    /// Only a directory: rmdir.
    int delete_directory(const ovPathName& path) const override;
    /// opendir / readdir.
    ovIFileIteratorcoPrf iterator(const ovPathName& path) const override;
    const ovIFileMode& read_mode() const override { return m_read_mode; }
    const ovIFileMode& rw_mode() const override { return m_rw_mode; }
    const ovIFileMode& write_mode() const override { return m_write_mode; }
    int check_encoding(const ovPathName& path) const override;
    ovString os_style_path(const ovPathName& path) const override;
    int64_t file_size(const ovPathName& path) const override;
    ovPathName full_path(const ovPathName& path) const override;
    ovStatus rename(const ovPathName& from, const ovPathName& to) const override;

protected:
    ovPosixFileOperations() {}
    ~ovPosixFileOperations() override;
    friend class ovFrustrumChooser;
    friend struct ovra_internal::FileOperationsFactory;

private:
    ovPosixReadMode m_read_mode;
    ovPosixRWMode m_rw_mode;
    ovPosixWriteMode m_write_mode;
};

/// Lists with opendir / readdir.
class OV_API ovPosixFileIterator final : public ovIFileIterator {
public:
    ~ovPosixFileIterator() override;
    int invalid() const override { return m_invalid; }
    int undefined() const override { return m_dir ? 0 : 1; }
    int get_next_file() override;

protected:
    explicit ovPosixFileIterator(const ovPath& path);
    friend class ovPosixFileOperations;

private:
    int m_invalid;
    void* m_dir; ///< the open DIR*; null while none is open
};

#endif
