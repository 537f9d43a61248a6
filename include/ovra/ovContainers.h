/// @file
/// The shelves companion's containers for the library's value types: growable and paged
/// arrays, doubly linked lists, sets and tables of strings, paths, file names and
/// format specifiers. The templates live in co/*.h; these are their names for the
/// library's types, each instantiated whole inside the library so that every operation
/// is known to work for it.
///
/// Error contract: as the templates: an index or cursor off the container is the
/// caller's error where a member says so, and gives null where a member returns a
/// pointer; allocation failure propagates as std::bad_alloc.
#pragma once

#include "ovra/ovPath.h"
#include "ovra/ovPathName.h"
#include "ovra/ovString.h"
#include "ovra/ovStringFormat.h"

#include "co/coArrays.h"
#include "co/coDList.h"
#include "co/coSet.h"
#include "co/coTable.h"

#include <cstring>

/// Orders strings by code point, a prefix first; the null string sorts as "".
struct ovStringLess {
    /// True when a sorts before b.
    bool operator()(const ovString& a, const ovString& b) const noexcept {
        const unsigned int* p = a.convert(ovSTRING_UTF32);
        const unsigned int* q = b.convert(ovSTRING_UTF32);
        const size_t n = a.length() < b.length() ? a.length() : b.length();
        for (size_t i = 0; i < n; ++i)
            if (p[i] != q[i])
                return p[i] < q[i];
        return a.length() < b.length();
    }
};

/// Orders paths and file names by their text.
struct ovPathLess {
    /// True when a sorts before b.
    bool operator()(const ovPathName& a, const ovPathName& b) const noexcept {
        return ovStringLess()(a.string(), b.string());
    }
    /// True when a sorts before b.
    bool operator()(const ovFileName& a, const ovFileName& b) const {
        return ovStringLess()(a.string(), b.string());
    }
};

/// Growable array of strings.
typedef coDynArr<ovString> ovStringcoDynArr;
/// Linked list of strings.
typedef coDList<ovString> ovStringcoDList;
/// Cursor on a list of strings.
typedef coDListCursor<ovString> ovStringcoDListCursor;
/// Set of strings.
typedef coSet<ovString, ovStringLess> ovStringcoSet;
/// Table from strings to strings.
typedef coTable<ovString, ovString, ovStringLess> ovStringcoTable;

/// Growable array of paths.
typedef coDynArr<ovPath> ovPathcoDynArr;
/// Linked list of paths.
typedef coDList<ovPath> ovPathcoDList;
/// Cursor on a list of paths.
typedef coDListCursor<ovPath> ovPathcoDListCursor;
/// Set of paths.
typedef coSet<ovPath, ovPathLess> ovPathcoSet;

/// Growable array of file names.
typedef coDynArr<ovFileName> ovFileNamecoDynArr;
/// Linked list of file names.
typedef coDList<ovFileName> ovFileNamecoDList;
/// Set of file names.
typedef coSet<ovFileName, ovPathLess> ovFileNamecoSet;

/// Growable array of format specifiers.
typedef coDynArr<ovStringFormatSpecifier> ovStringFormatSpecifiercoDynArr;
/// Paged array of format specifiers.
typedef coPageArr<ovStringFormatSpecifier> ovStringFormatSpecifiercoPageArr;
