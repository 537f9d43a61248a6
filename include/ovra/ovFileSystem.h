/// @file
/// Files and directories: a path bound to file operations, with whole-file and
/// whole-tree operations on top.
///
/// `ovFileSystemComponent` is a path and the ovIFileOperations that answer for it
/// (borrowed; null asks for the chooser's). `ovFile` reads, writes, renames, copies and
/// moves one file whole; `ovDirectory` creates, lists, copies, moves and deletes whole
/// trees; `ovDirectoryIterator` lists a directory as components. Everything reaches the
/// system through the file operations only, except that tree walks ask the system
/// whether an entry is a link (see below).
///
/// Error contract: results are ovStatus (or int where said); nothing throws for bad
/// input and no message is reported; allocation failure propagates as std::bad_alloc.
/// Tree operations stop at the first failing entry and leave what they already did.
/// Nothing overwrites: copy_to refuses an existing target file, move_to an existing
/// target file, and a directory's copy_to and move_to any existing target.
///
/// Links: a symbolic link (POSIX) or a junction or other reparse point (Windows) inside
/// a tree is deleted as a link by delete_tree and moved as a link by move_to; neither
/// ever enters it or touches what it points to. copy_to copies what a link points to.
///
/// Kept on purpose: create_directory_tree on an existing directory succeeds at once and
/// creates nothing, whatever relative part it is given.
#pragma once

#include "ovra/ovByteArray.h"
#include "ovra/ovExport.h"
#include "ovra/ovFileFinder.h"
#include "ovra/ovPathName.h"
#include "ovra/ovStatus.h"
#include "ovra/ovString.h"

#include <cstdint>

class ovIFileOperations;

/// A path and the file operations that answer for it. Copies copy both.
class OV_API ovFileSystemComponent {
public:
    /// Null operations ask for the chooser's.
    ovFileSystemComponent(const ovPathName& path, const ovIFileOperations* operations);

    /// The path.
    const ovPathName& path_name() const noexcept { return m_path; }
    /// The file operations; never null.
    const ovIFileOperations* file_operations() const noexcept { return m_operations; }
    /// The path in the system's own spelling.
    ovString os_string() const;
    int something_exists() const; ///< 1 when anything is at the path
    int is_file() const;          ///< 1 for a file
    int is_directory() const;     ///< 1 for a directory

protected:
    const ovIFileOperations* m_operations;
    ovPathName m_path;
};

/// One file, read and written whole.
class OV_API ovFile : public ovFileSystemComponent {
public:
    /// Null operations ask for the chooser's.
    ovFile(const ovPathName& path, const ovIFileOperations* operations);
    /// The component's path and operations.
    explicit ovFile(const ovFileSystemComponent& c);
    virtual ~ovFile();

    /// 1 for a file.
    int file_exists() const { return is_file(); }
    /// Bytes; 0 for a missing file.
    int64_t size() const;
    /// Writes the whole array, creating or truncating the file.
    ovStatus write_file(const ovByteArray& data) const;
    /// `data` changes only on success.
    ovStatus read_file(ovByteArray& data) const;
    /// Removes the file.
    ovStatus delete_file() const;
    /// Renames within the directory; on success the path follows. An existing name is
    /// the system's affair (refused on Windows, replaced on POSIX).
    ovStatus rename(const ovFileName& name);
    /// Reads this file whole and writes it to the target; fails, writing nothing, when
    /// this file is missing or the target exists.
    ovStatus copy_to(const ovFile& target) const;
    /// Fails when the target exists; on success the path becomes the target's.
    ovStatus move_to(const ovFile& target);
};

class ovDirectoryIterator;

/// A directory and the tree under it.
class OV_API ovDirectory : public ovFileSystemComponent {
public:
    /// Null operations ask for the chooser's.
    ovDirectory(const ovPathName& path, const ovIFileOperations* operations);
    /// The component's path and operations.
    explicit ovDirectory(const ovFileSystemComponent& c);
    virtual ~ovDirectory();

    /// 1 for a directory.
    int directory_exists() const { return is_directory(); }
    /// 1 when a fresh listing has no entry ("." and ".." never count).
    int empty() const;
    /// Entries that are files.
    int number_of_files() const;
    /// Entries that are directories.
    int number_of_directories() const;
    /// Entries, with the same operations.
    ovFile file(const ovFileName& name) const;
    /// The subdirectory, same operations.
    ovDirectory directory(const ovFileName& name) const;
    /// A listing of this directory.
    ovDirectoryIterator iterator() const;

    /// One level.
    ovStatus create() const;
    /// Creates this path joined with `relative` ("." for this path) and its missing
    /// parents. Succeeds at once, creating nothing, when this directory exists.
    ovStatus create_directory_tree(const ovPathName& relative) const;
    /// Renames within the parent; on success the path follows.
    ovStatus rename(const ovFileName& name);
    /// Copies the whole tree into a new directory; fails before copying anything when
    /// anything exists at the target. A failure part-way leaves what was copied.
    ovStatus copy_to(const ovDirectory& target) const;
    /// Moves every entry into a new directory, then removes this one; on success the
    /// path becomes the target's. A failure part-way leaves every entry either here or
    /// there.
    ovStatus move_to(const ovDirectory& target);
    /// Fails on a directory that is not empty.
    ovStatus delete_empty_directory() const;
    /// Removes the directory and everything in it; links are removed as links. A
    /// missing directory fails.
    ovStatus delete_tree() const;
};

/// The entries of one directory, as components with the directory's operations.
class OV_API ovDirectoryIterator {
public:
    /// Lists `path`; null operations ask for the chooser's.
    ovDirectoryIterator(const ovPathName& path, const ovIFileOperations* operations);

    /// Non-zero while entries remain.
    int operator++() { return ++m_finder; }
    /// The current entry joined to the directory.
    ovFileSystemComponent operator()() const;
    /// 1 while no listing is open.
    int undefined() const { return m_finder.undefined(); }
    /// Starts again: the next advance gives the first entry.
    void reset();

private:
    ovPathName m_path;
    const ovIFileOperations* m_operations;
    ovFileFinderEx m_finder;
};
