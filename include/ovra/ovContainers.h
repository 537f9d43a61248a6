// The shelves companion's containers for the library's value types: growable and paged
// arrays, doubly linked lists, sets and tables of strings, paths, file names and
// format specifiers. The templates live in co/*.h; these are their names for the
// library's types, each instantiated whole inside the library so that every operation
// is known to work for it.
//
// Error contract: as the templates: an index or cursor off the container is the
// caller's error where a member says so, and gives null where a member returns a
// pointer; allocation failure propagates as std::bad_alloc.
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

// Orders strings by code point, a prefix first; the null string sorts as "".
struct ovStringLess {
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

// Orders paths and file names by their text.
struct ovPathLess {
    bool operator()(const ovPathName& a, const ovPathName& b) const noexcept {
        return ovStringLess()(a.string(), b.string());
    }
    bool operator()(const ovFileName& a, const ovFileName& b) const {
        return ovStringLess()(a.string(), b.string());
    }
};

typedef coDynArr<ovString> ovStringcoDynArr;
typedef coDList<ovString> ovStringcoDList;
typedef coDListCursor<ovString> ovStringcoDListCursor;
typedef coSet<ovString, ovStringLess> ovStringcoSet;
typedef coTable<ovString, ovString, ovStringLess> ovStringcoTable;

typedef coDynArr<ovPath> ovPathcoDynArr;
typedef coDList<ovPath> ovPathcoDList;
typedef coDListCursor<ovPath> ovPathcoDListCursor;
typedef coSet<ovPath, ovPathLess> ovPathcoSet;

typedef coDynArr<ovFileName> ovFileNamecoDynArr;
typedef coDList<ovFileName> ovFileNamecoDList;
typedef coSet<ovFileName, ovPathLess> ovFileNamecoSet;

typedef coDynArr<ovStringFormatSpecifier> ovStringFormatSpecifiercoDynArr;
typedef coPageArr<ovStringFormatSpecifier> ovStringFormatSpecifiercoPageArr;
