/// @file
/// String comparers: one interface, ovIStringCompare, so that callers such as
/// file-name matching and sorting can be told whether names compare exactly or
/// without regard to case.
///
/// Error contract: comparers never fail and never throw for bad text. A string
/// that the insensitive comparer's encoding cannot convert is compared by code
/// point instead. A null (invalid) string compares as the empty string in
/// every `compare`.
///
/// Members:
///   equal(a, b)   - 1 when the two strings are the same for this comparer, else 0.
///   compare(a, b) - negative, 0 or positive as a sorts before, with or after b.
#pragma once

#include "ovra/ovExport.h"
#include "ovra/ovString.h"

class ovIStringEncoding;

/// Equality and ordering of two strings.
class OV_API ovIStringCompare {
public:
    /// 1 when a and b count as equal, else 0.
    virtual int equal(const ovString& a, const ovString& b) const = 0;
    /// Negative when a sorts before b, 0 when equal, positive after.
    virtual int compare(const ovString& a, const ovString& b) const = 0;
    virtual ~ovIStringCompare();
};

/// Exact comparison by code point value ("numeric" means by value, not natural
/// number order): "abc" < "abd", and a prefix sorts first ("ab" < "abc").
///   equal   - ovString's operator==, so a null string equals only a null
///             string (even though it compares as 0 against "").
///   compare - exactly -1, 0 or 1; code points compared as unsigned values.
class OV_API ovStringCompareNumeric final : public ovIStringCompare {
public:
    int equal(const ovString& a, const ovString& b) const override;
    int compare(const ovString& a, const ovString& b) const override;
};

/// Case-insensitive comparison of the narrow forms given by an encoding, with
/// ov_stricmp (see ovNarrow.h): ASCII letters fold on every platform; Windows
/// also folds what the current locale's code page says. When the encoding
/// reports a problem for either string, falls back to ovStringCompareNumeric.
///   ovStringCompareInsensitive(e) - borrows e (not owned; must outlive this);
///                                   null asks for the default UTF-8 encoding.
///   equal   - 1 exactly when compare gives 0 (so null equals "").
///   compare - ov_stricmp's result: its sign is what counts.
class OV_API ovStringCompareInsensitive final : public ovIStringCompare {
public:
    /// Borrows `encoding` (it must outlive this); null asks for the default
    /// UTF-8 encoding.
    explicit ovStringCompareInsensitive(const ovIStringEncoding* encoding);
    int equal(const ovString& a, const ovString& b) const override;
    int compare(const ovString& a, const ovString& b) const override;

private:
    const ovIStringEncoding* m_encoding;
};
