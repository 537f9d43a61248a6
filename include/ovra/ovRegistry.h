/// @file
/// The Windows registry with yes/no answers: `ovRegistry` tests for, reads, writes,
/// lists and removes keys and values under one of four roots, and `ovRegistry6432`
/// adds both views of a 64-bit system (the 64-bit keys and the 32-bit ones that
/// Wow64 redirects elsewhere). The `ov_reg_…` functions are the view rules on their
/// own, for callers with their own key handles.
///
/// Key paths are UTF-8 `utString`s relative to the root, with backslashes between
/// the parts; value names and data are UTF-8 too (`value_data_utf8` excepted: see
/// there). Nothing is kept open between calls.
///
/// Error contract: nothing throws for bad input. Every operation answers 1 for
/// success or yes and 0 otherwise; lists are null and types `ovREG_OTHER` when
/// nothing could be read. An empty path (or, where a value is named, an empty name)
/// gives that answer at once without touching the registry. The system's error code
/// is not kept, except by the `ov_reg_…` functions, which return it unchanged (1010,
/// ERROR_BADKEY, for a view the system does not have). Reads use a 1024-byte buffer:
/// a string value of 1024 bytes or more (too long with its terminator) counts as missing.
/// Names longer than 1023 bytes are listed cut at a character boundary.
///
/// Platforms: on Windows a plain `ovRegistry` works in the 64-bit view and, when
/// asked (`set_look_in_wow64_area`), retries a key it cannot open in the 32-bit view;
/// listings always do. On POSIX there is no registry: the classes exist so portable
/// code links, every operation gives its failure answer (0, null, `ovREG_OTHER`),
/// `has_wow64()` is 0, `ov_reg_master_key` gives null and the other `ov_reg_…`
/// functions return 1010.
#pragma once

#include "ovra/ovExport.h"

#include "co/coStrings.h"
#include "ut/utString.h"

#include <cstdint>

/// The root a registry object works under. Any other value selects
/// HKEY_LOCAL_MACHINE.
enum ovHKeyType : int32_t {
    ovHKEY_CLASSES_ROOT = 0,  ///< HKEY_CLASSES_ROOT
    ovHKEY_CURRENT_USER = 1,  ///< HKEY_CURRENT_USER
    ovHKEY_LOCAL_MACHINE = 2, ///< HKEY_LOCAL_MACHINE
    ovHKEY_USERS = 3,         ///< HKEY_USERS
};

/// The kind of a value.
enum ovValueType : int32_t {
    ovREG_INT = 0,           ///< REG_DWORD
    ovREG_EXPAND_STRING = 1, ///< REG_EXPAND_SZ (read as stored: nothing is expanded)
    ovREG_STRING = 2,        ///< REG_SZ
    ovREG_OTHER = 3,         ///< any other type, or nothing could be read
};

struct HKEY__;
/// Windows' HKEY (the same type there); an opaque pointer on POSIX.
typedef HKEY__* ovHKey;

/// The registry under one root, in the 64-bit view with an optional 32-bit retry.
class OV_API ovRegistry {
public:
    /// Works under `root`; the 32-bit retry is off.
    explicit ovRegistry(ovHKeyType root);

    /// Non-zero: a key that cannot be opened is tried again in the 32-bit view.
    void set_look_in_wow64_area(int flag);
    /// Whether the system has the two views: always 1 on Windows, 0 on POSIX.
    static int has_wow64();

    /// Whether the key can be opened for reading.
    virtual int key_exists(const utString& path) const;
    /// Whether the value can be read whole; `type` gets its kind when the key opened.
    virtual int value_exists(const utString& path, const utString& name, ovValueType& type) const;
    /// The value's kind; `ovREG_OTHER` when the key or value is missing.
    virtual ovValueType value_type(const utString& path, const utString& name);
    /// A REG_DWORD value; other kinds fail and leave `data` alone.
    virtual int value_data(const utString& path, const utString& name, int& data) const;
    /// A REG_SZ or REG_EXPAND_SZ value as stored; other kinds fail and leave `data` alone.
    virtual int value_data(const utString& path, const utString& name, utString& data) const;
    /// The names of the key's sub-keys, or null when there are none or the key is
    /// missing; the caller deletes the list. Opens the key in either view, but only
    /// after `key_exists` has found it.
    virtual utStringcoPageArr* key_list(const utString& path) const;
    /// The names of the key's values, as `key_list`.
    virtual utStringcoPageArr* value_list(const utString& path) const;
    /// A string value converted to UTF-8 from the registry's UTF-16, looking in the
    /// 32-bit view when the key is missing. The value name is taken in the process's
    /// ANSI code page, not in UTF-8: kept as it always was.
    virtual int value_data_utf8(const utString& path, const utString& name, utString& data) const;
    /// Holds nothing to release.
    virtual ~ovRegistry();

    /// Writes a value, creating the key when missing. `ovREG_INT` reads `data` as a
    /// number and stores its integer part (its low 32 bits); text that is not a number
    /// writes nothing. The string kinds store `data` (a null `data` as ""). Data that
    /// is not valid UTF-8, and `ovREG_OTHER` or any unknown kind, write nothing.
    int set_value_data(const utString& path, const utString& name, ovValueType type,
                       const utString& data);
    /// Creates the key and any missing parents; 1 also when it existed.
    int create_key(const utString& path);
    /// Removes the key and everything under it, deepest first. 1 only if the key
    /// itself went; a sub-key that could not go keeps it, while its removable
    /// siblings are gone. Never touches anything outside the key.
    int remove_key(const utString& path);
    /// Removes one value.
    int remove_value(const utString& path, const utString& name);

protected:
    /// As key_exists, with the 32-bit retry given instead of the object's.
    int key_exists(const utString& path, int wow64) const;
    /// As value_exists, with the 32-bit retry given instead of the object's.
    int value_exists(const utString& path, const utString& name, ovValueType& type,
                     int wow64) const;

    ovHKeyType m_root;
    int32_t m_look_in_wow64_area;
};

/// Both views at once, plus operations on one chosen view.
class OV_API ovRegistry6432 final : public ovRegistry {
public:
    /// Works under `root`.
    explicit ovRegistry6432(ovHKeyType root);

    /// In the 64-bit view, or else the 32-bit one, whatever the object's flag.
    int key_exists(const utString& path) const override;
    /// As key_exists for the key, then the value.
    int value_exists(const utString& path, const utString& name, ovValueType& type) const override;
    /// The names of both views merged: the 64-bit ones first, then 32-bit names not
    /// seen yet, each once. Null when neither view has any.
    utStringcoPageArr* key_list(const utString& path) const override;
    /// As the base, but tries the 64-bit view when the first look fails.
    int value_data_utf8(const utString& path, const utString& name, utString& data) const override;

    /// Whether the key exists in the 64-bit view.
    int key_exists_64(const utString& path) const;
    /// create_key in the 32-bit view.
    int create_key_32(const utString& path);
    /// create_key in the 64-bit view.
    int create_key_64(const utString& path);
    /// remove_key in the 32-bit view. The sub-keys to remove come from both views
    /// (key_list); those that exist only in the other view stay, and then so does
    /// the key.
    int remove_key_32(const utString& path);
    /// remove_key in the 64-bit view, with the same rule for sub-keys.
    int remove_key_64(const utString& path);
};

/// The system's handle for a root; null on POSIX.
OV_API ovHKey ov_reg_master_key(ovHKeyType type);
/// RegOpenKeyExU; when that fails and `wow64` is non-zero, once more in the 32-bit
/// view. Returns the last system result (0 is success).
OV_API long ov_reg_RegOpenKeyEx(ovHKey root, const utString& path, unsigned long options,
                                unsigned long access, ovHKey* result, int wow64);
/// RegOpenKeyExU in the 64-bit view.
OV_API long ov_reg_RegOpenKeyEx64(ovHKey root, const utString& path, unsigned long options,
                                  unsigned long access, ovHKey* result);
/// RegOpenKeyExU in the 32-bit view.
OV_API long ov_reg_RegOpenKeyEx32(ovHKey root, const utString& path, unsigned long options,
                                  unsigned long access, ovHKey* result);
/// Deletes a key without sub-keys in the view given (0x200 32-bit, 0x100 64-bit)
/// through RegDeleteKeyExW, looked up in AdvAPI32.dll on each call. Returns its result;
/// 127 (ERROR_PROC_NOT_FOUND) when the system lacks it, 1113 for a path that is not
/// valid UTF-8.
OV_API long ov_reg_RegDeleteKeyEx(ovHKey root, const utString& path, unsigned long view);
