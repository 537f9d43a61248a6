/// @file
/// Finders and matchers: listing directories, with or without wildcards, one level or
/// a whole tree.
///
/// `ovFileMatch` is a wildcard pattern ("*" any run of characters, "?" exactly one)
/// whose literal parts are compared by an ovIStringCompare, so the compare object
/// decides about case. `ovFileFinderEx` lists one directory through the file
/// operations' iterator (never "." or ".."); `ovFileMatchFinder` keeps only the names a
/// matcher accepts; `ovRecursiveFileFinder` collects the matching files of a whole tree.
/// `ovFileFinder` is the older narrow-text finder: it lists with FindFirstFileU and
/// FindNextFileU (ub/ubGlyphs.h; opendir and readdir on POSIX), returns "." and ".."
/// like any other entry, matches with its own character-level wildcard routine and
/// offers static checks of narrow paths that answer with an ovFileError.
///
/// Error contract: nothing throws for bad input or reports messages; allocation failure
/// propagates as std::bad_alloc. A listing's end is a zero advance, a bad pattern is
/// `invalid()`, a failed path check is an ovFileError value or 0.
///
/// Kept on purpose: a literal run followed by a wildcard must leave at least one
/// character of the name, so "abc*" does not match "abc" (it matches "abcd"); "?" does
/// not match the empty name. An invalid pattern (empty, or holding "/") matches
/// nothing. Matching takes at most about pattern length x name length steps, whatever
/// the pattern.
#pragma once

#include "ovra/ovExport.h"
#include "ovra/ovFileOperations.h"
#include "ovra/ovPath.h"
#include "ovra/ovPathName.h"
#include "ovra/ovString.h"

#include "co/coDList.h"
#include "ub/ubGlyphs.h"
#include "ut/utString.h"

class ovIStringCompare;

/// The in-house list of paths that the recursive finder fills.
typedef coDList<ovPath> ovPathcoDList;

/// Whether a file name is wanted.
class OV_API ovIFileMatch {
public:
    /// 1 when the matcher can never be used.
    virtual int invalid() const = 0;
    /// Non-zero when the name matches.
    virtual int match(const ovFileName& name) const = 0;
    virtual ~ovIFileMatch();
};

/// A wildcard pattern compared through an ovIStringCompare.
class OV_API ovFileMatch final : public ovIFileMatch {
public:
    /// `compare` is borrowed and must not be null. A pattern that is empty or holds "/"
    /// is invalid.
    ovFileMatch(const ovString& pattern, const ovIStringCompare* compare);
    /// Copies pattern, compare object and validity.
    ovFileMatch(const ovFileMatch& o);
    /// As the copy.
    ovFileMatch& operator=(const ovFileMatch& o);
    ~ovFileMatch() override;

    int invalid() const override { return m_valid ? 0 : 1; }
    /// Non-zero when the name matches; 0 for an invalid pattern or name.
    int match(const ovFileName& name) const override;
    /// A copy of the pattern.
    ovString string() const { return m_pattern; }

private:
    ovString m_pattern;
    const ovIStringCompare* m_compare;
    int m_valid;
};

/// One directory, entry by entry, in the system's order; never "." or "..". Copies share
/// one listing.
class OV_API ovFileFinderEx {
public:
    /// A listing of the directory from the path's file operations.
    explicit ovFileFinderEx(const ovPath& path);

    /// Non-zero while entries remain.
    int operator++();
    /// The current entry's bare name.
    ovFileName operator()() const;
    /// 1 when the path was not a directory.
    int invalid() const;
    /// 1 while no listing is open (before the first advance, after the end).
    int undefined() const;

private:
    ovIFileIteratorcoPrf m_iterator;
};

/// The entries of one directory that a matcher accepts.
class OV_API ovFileMatchFinder {
public:
    /// `match` is borrowed.
    ovFileMatchFinder(const ovPath& path, const ovIFileMatch* match);

    /// 1 at the next accepted entry, 0 at the end of the listing.
    int operator++();
    /// The current entry's bare name.
    ovFileName operator()() const { return m_finder(); }
    /// 1 when the path was not a directory.
    int invalid() const { return m_finder.invalid(); }
    /// 1 while no listing is open.
    int undefined() const { return m_finder.undefined(); }

private:
    ovFileFinderEx m_finder;
    const ovIFileMatch* m_match;
};

/// The matching files of a whole tree, depth first in listing order. Directories are
/// never listed themselves. Links to directories are walked like directories.
class OV_API ovRecursiveFileFinder {
public:
    /// Lists the tree under `top`, with its file operations.
    explicit ovRecursiveFileFinder(const ovPath& top);
    virtual ~ovRecursiveFileFinder();

    /// list_files with a wildcard filter in narrow UTF-8 text; exact comparison when
    /// case_sensitive is non-zero, else case-insensitive.
    void get_files_including_sub_folders(const utString& filter, int case_sensitive, int relative,
                                         ovPathcoDList& result);
    /// Appends every matching file of the tree to `result`: relative to the top (such as
    /// sub/inner/x.txt) when `relative` is non-zero, else joined to the top path.
    void list_files(const ovFileMatch& match, int relative, ovPathcoDList& result);

private:
    ovPath m_top;
};

/// Results of ovFileFinder's static path checks.
enum ovFileError {
    ovFILE_IS_DIRECTORY = 0,   ///< the path is a directory
    ovFILE_IS_FILE = 3,        ///< the path exists and is not a directory
    ovFILE_NOT_FOUND = 4,      ///< remove_file: nothing to remove
    ovFILE_IS_A_DIRECTORY = 5, ///< remove_file: refused, a directory
    ovFILE_REMOVED = 6,        ///< remove_file: deleted
    ovFILE_REMOVE_FAILED = 7,  ///< remove_file: the deletion failed
    ovFILE_NO_SUCH_PATH = 8,   ///< check_path_exists: the status query failed
};

/// The older finder on narrow UTF-8 paths. Lists every entry, "." and ".." included,
/// whose name matches the filter ("*" any run, "?" one character).
class OV_API ovFileFinder {
public:
    /// Filter "*".
    explicit ovFileFinder(const utString& path);
    /// Keeps the entries matching `filter`.
    ovFileFinder(const utString& path, const utString& filter);
    ~ovFileFinder();
    ovFileFinder(const ovFileFinder&) = delete;
    ovFileFinder& operator=(const ovFileFinder&) = delete;

    /// Case sensitive from construction (1); 0 compares with ovchcasecmp.
    void set_case_sensitive(int on) { m_case_sensitive = on; }
    /// 1 when case sensitive.
    int case_sensitive() const { return m_case_sensitive; }
    /// Non-zero at the next matching entry; 0 at the end (the search stays open).
    int operator++();
    /// The current entry's name.
    utString operator()() const { return file_name(); }
    /// The current entry's name.
    utString file_name() const;
    /// 1 while no search is open (before the first advance, or when it failed).
    int invalid() const { return m_handle == UB_INVALID_HANDLE ? 1 : 0; }

    /// The path's kind, from fcusta.
    static ovFileError check_path_exists(const utString& path);
    /// A directory, trailing "/" and backslashes ignored (unless nothing else is left).
    static int check_directory_exists(const utString& path);
    /// Not null, not empty, and not a directory.
    static int check_file_exists(const utString& path);
    /// Deletes a file with fcudel; a directory is refused and left alone.
    static ovFileError remove_file(const utString& path);
    /// Non-empty and free of the characters " / : < > \ |.
    static int check_filter_valid(const utString& filter);
    /// Not null and not empty.
    static int check_path_valid(const utString& path);

protected:
    void initialise(const utString& path);
    int get_next_file();
    /// The wildcard match of a whole name; at most about filter length x name length
    /// steps.
    int filename_matches_filter(const char* name, const char* filter) const;
    int compare_char(char a, char b) const;
    static int check_filter_character_valid(char c);

private:
    void* m_handle;
    ubFindData m_data;
    utString m_pattern;
    utString m_filter;
    int m_case_sensitive;
};
