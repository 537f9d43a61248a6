/// @file
/// ovPath: a path name bound to the file operations that answer for it and to the
/// narrow encoding in which it gives its text.
///
/// A path asks its file operations whether it is a file or a directory, creates and
/// deletes itself and opens streams. Derived paths (parent, joined paths) keep the same
/// operations and encoding. Both are borrowed, never owned, and must outlive the path;
/// null asks for the defaults (the chooser's file operations, the UTF-8 narrow
/// encoding), which live until process exit.
///
/// Error contract: nothing here throws for bad input or reports messages; allocation
/// failure propagates as std::bad_alloc. Questions about a path that cannot be reached
/// answer "no"; actions give 0 (failure) or null. Actions on things already in the
/// wanted state succeed: deleting what is not there, creating what exists.
/// `invalid_ut()` reports a path whose text has no narrow form: the default path, an
/// invalid path name, or text the encoding could not convert. The narrow text is
/// worked out once, when the path is made.
///
/// Removing a whole tree is not offered yet; it comes with the directory finders.
#pragma once

#include "ovra/ovExport.h"
#include "ovra/ovPathName.h"
#include "ovra/ovString.h"
#include "ut/utString.h"

#include <cstdint>
#include <cstdio>

class ovIFileOperations;
class ovIFileMode;
class ovIStringEncoding;

/// A path name bound to the file operations and the narrow encoding it is used with.
class OV_API ovPath : public ovPathName {
public:
    /// The empty path name with the default operations and encoding; its narrow text
    /// is empty and invalid.
    ovPath();
    /// The normalised path name of `text`. Null operations or encoding ask for the
    /// defaults.
    ovPath(const ovString& text, const ovIFileOperations* operations,
           const ovIStringEncoding* encoding);
    /// `name` as it is, not normalised again; otherwise as above.
    ovPath(const ovPathName& name, const ovIFileOperations* operations,
           const ovIStringEncoding* encoding);
    /// Narrow text in the default encoding (a conversion error is ignored), with the
    /// default operations.
    ovPath(const utString& text);
    /// Copies the text, the narrow text, the operations and the encoding.
    /// @{
    ovPath(const ovPath& o);
    ovPath& operator=(const ovPath& o);
    /// @}

    /// The text.
    const ovString& path_ov() const noexcept { return string(); }
    /// The narrow text, as converted when the path was made.
    utString path() const { return m_narrow; }
    /// 1 when the narrow text could not be made.
    int invalid_ut() const noexcept { return m_text_valid ? 0 : 1; }
    /// 1 when the path has a root.
    int absolute_path() const noexcept { return relative_path() ? 0 : 1; }

    int is_file() const;      ///< 1 when the operations see a file (not a directory)
    int is_directory() const; ///< 1 when they see a directory
    int exists() const;       ///< 1 when they see either

    /// 1 when removed or when there was no file; 0 when the removal failed.
    int delete_file() const;
    /// One level; 1 when made or already a directory; 0 for an invalid path name.
    int create_directory() const;
    /// Makes the missing parents too; 1 when the directory exists afterwards. 0 for an
    /// invalid path name or a root that is not a directory. A part that fails stops
    /// the walk; what was made stays.
    int create_directory_full() const;
    /// 1 when removed or not a directory; the directory must be empty.
    int delete_directory() const;
    /// A stream from `mode`, or null, without asking the mode, when the parent is not
    /// an existing directory. The caller closes it.
    FILE* file_open(const ovIFileMode& mode) const;
    const ovIFileMode& read_mode() const;  ///< the operations' reading mode
    const ovIFileMode& rw_mode() const;    ///< their reading-and-writing mode
    const ovIFileMode& write_mode() const; ///< their writing mode

    /// Derived paths: same operations, same encoding.
    /// @{
    ovPath dirname_ov() const;
    ovPath adjoin_ov(const ovFileName& name) const;
    /// @}
    /// This path's text and the other's joined; an absolute `other` is not refused.
    ovPath combine(const ovPath& other) const;
    /// Narrow text in this path's encoding (error ignored), joined as `combine`.
    ovPath adjoin(const utString& text) const;

    /// The last component (a root gives an invalid name).
    ovFileName basename_ov() const;
    /// The last component up to its last "."; all of it when it has none.
    ovString basename_no_ext_ov() const;
    /// From the last "." of the whole text to its end, "" when there is none. The
    /// search is not limited to the last component: dir.d/file gives ".d/file". Kept
    /// on purpose; the last component's extension comes from basename_ov().
    ovString extension_with_dot() const;
    /// Narrow forms in this path's encoding; conversion errors are ignored.
    /// @{
    utString dirname() const;
    utString basename() const;
    utString basename_no_ext() const;
    /// @}

    /// The operations and encoding this path uses; never null.
    /// @{
    const ovIFileOperations* file_operations() const noexcept { return m_operations; }
    const ovIStringEncoding* encoding() const noexcept { return m_encoding; }
    /// @}

protected:
    /// A path of `text` with this path's operations and encoding.
    ovPath new_path(const ovString& text) const;

    /// Zero from the default constructor, copied with the path; nothing reads it.
    int32_t m_reserved;

private:
    /// Fills in null dependencies and works out the narrow text.
    void choose(const ovIFileOperations* operations, const ovIStringEncoding* encoding);
    utString narrow(const ovString& text) const;

    int32_t m_text_valid;
    utString m_narrow;
    const ovIStringEncoding* m_encoding;
    const ovIFileOperations* m_operations;
};
