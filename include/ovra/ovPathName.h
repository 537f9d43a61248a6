/// @file
/// Path names as pure text: ovPathName (a normalised "/"-separated path),
/// ovFileName (one path component) and ovSplitPath (a narrow-text splitter).
///
/// Error contract: nothing here throws for bad text or reports messages.
/// Failure is carried by flags and null values:
///  - ovPathName::invalid() is 1 when the path was made from the null string
///    or from a failed string (one built from text that did not decode). Such
///    a path holds the null string, never the failed string's message, and
///    every path derived from it (dirname, adjoin, combine) is invalid too;
///    adjoining or combining with a null name or an invalid path also gives
///    an invalid path. As a text the invalid path is empty, so it answers
///    relative_path() and is_root() as the empty path does.
///  - ovFileName::invalid() is 1 when the name is empty or contains "/". A
///    name made from null or failed text holds the null string; its derived
///    texts and names stay null (and so invalid).
///  - ovSplitPath given the null utString writes "" to the directory and the
///    extension and the null utString to the name.
/// Allocation failure propagates as std::bad_alloc.
///
/// The path syntax is the library's own and the same on every platform: "/"
/// separates, a backslash in text given to ovPathName becomes "/", and the
/// root is "/" (length 1), "//" (a network share, 2) or X:/ (a drive, 3:
/// any one character before the colon). A drive without its slash (C:,
/// C:name) is relative. "." and ".." components and letter case are kept.
#pragma once

#include "ovra/ovExport.h"
#include "ovra/ovString.h"
#include "ut/utString.h"

#include <cstddef>

class ovFileName;

/// A path as normalised text: "/"-separated, no separator at the end but
/// the root's. It never touches the file system.
class OV_API ovPathName {
public:
    /// The empty path: empty text, not "." (a root, whose dirname() is ".").
    ovPathName();
    /// Normalises: an empty text becomes "."; backslashes become "/";
    /// separators at the end go (except the root's); runs of "/" after the
    /// root become one.
    ovPathName(const ovString& text);
    /// Copies the text as it is, without normalising again.
    ovPathName(const ovPathName& o);
    /// Copies the text as it is.
    ovPathName& operator=(const ovPathName& o);

    /// 1 for a path made from null or failed text.
    int invalid() const noexcept { return m_path.invalid(); }
    /// The normalised text.
    const ovString& string() const noexcept { return m_path; }

    /// 1 when the path has no root.
    int relative_path() const noexcept;
    /// 1 when the text is its root and nothing more (the empty path is one).
    int is_root() const noexcept;

    /// The parent: a/b gives a, /a gives /, C:/a gives C:/, //server/share
    /// gives //server; a root and "." give themselves (the empty path gives
    /// "."); a name without "/" gives ".".
    ovPathName dirname() const;
    /// The last component; a root gives its whole text (an invalid name).
    ovFileName basename() const;
    /// This path, "/" unless it ends with one, and the name; normalised again.
    /// The empty path is a root, so adjoining x to it gives /x.
    ovPathName adjoin(const ovFileName& name) const;
    /// The same as adjoin(name).
    ovPathName operator+(const ovFileName& name) const { return adjoin(name); }
    /// As adjoin with the other path's text. An absolute `other` is not
    /// refused: the two texts are simply joined.
    ovPathName combine(const ovPathName& other) const;
    /// The same as combine(other).
    ovPathName operator+(const ovPathName& other) const { return combine(other); }

protected:
    /// Makes this path the normalised form of `text`.
    void normalise(const ovString& text);
    /// Drops the separators that end the text after its root and turns runs
    /// of "/" after the root into one; backslashes are not touched.
    static ovString trim(const ovString& text);
    /// 0 (relative), 1 ("/"), 2 ("//") or 3 (X:/), a later rule overriding
    /// an earlier one.
    static size_t root_length(const ovString& text) noexcept;

private:
    ovString m_path;
};

/// One component of a path: a name without "/". Empty or "/"-holding names
/// are invalid.
class OV_API ovFileName {
public:
    /// The empty name (invalid).
    ovFileName();
    /// Valid when not empty and free of "/"; a backslash is kept and allowed.
    ovFileName(const ovString& name);
    /// Copies the text and its validity.
    ovFileName(const ovFileName& o);
    /// Copies the text and its validity.
    ovFileName& operator=(const ovFileName& o);

    /// 1 when the name is empty or holds "/".
    int invalid() const noexcept { return m_valid ? 0 : 1; }
    /// A copy of the text.
    ovString string() const { return m_name; }

    /// 1 when the name holds a "." anywhere (.profile has one).
    int has_extension() const noexcept;
    /// From the last "." to the end; "" when there is no ".".
    ovString extension_with_dot() const;
    /// After the last "."; "" when there is no ".".
    ovString extension_without_dot() const;
    /// Up to the last "."; the whole name when there is no ".".
    ovString without_extension() const;
    /// name.e, validity worked out afresh. A null or failed e gives the null
    /// name, as a null name does.
    ovFileName add_extension(const ovString& e) const;
    /// without_extension().e; otherwise as add_extension.
    ovFileName replace_extension(const ovString& e) const;

    /// Exact, case-sensitive comparison of the texts; validity plays no part.
    bool operator==(const ovFileName& o) const noexcept { return m_name == o.m_name; }
    /// Not operator==.
    bool operator!=(const ovFileName& o) const noexcept { return !(*this == o); }

protected:
    /// Stores the text (null for null or failed text) and its validity.
    void set_name(const ovString& name);
    static int test_valid(const ovString& name) noexcept;

private:
    ovString m_name;
    int m_valid;
};

/// Splits a narrow path into directory, name and extension; "/" and backslash
/// both separate. Every output is written; the path may be one of them.
class OV_API ovSplitPath {
public:
    ovSplitPath() {}
    ~ovSplitPath() {}

    /// Last-dot rule: d/a.tar.gz gives d, a.tar and gz. The directory has no
    /// closing separator; without a separator it is "". The dot only counts
    /// in the last component.
    void split_path(const utString& path, utString& directory, utString& name, utString& extension);
    /// First-dot rule: d/a.tar.gz gives d/, a and .tar.gz. The directory keeps
    /// its closing separator and the extension its dot; ".." is all directory.
    void split_path_with_dot(const utString& path, utString& directory, utString& name,
                             utString& extension);
};
