/// @file
/// The process's environment for applications, and a seam for their own text encryption.
///
/// `ovEnvironmentVariables` reads and sets environment variables as `ovString`s. It does
/// no work itself: it forwards to process-environment operations, the caller's or the
/// chooser's process-wide ones, so it behaves exactly as those operations do.
///
/// `ovICrypt` is an interface the application implements with its own cipher. Its two
/// string operations pad a text with zero bytes up to a length the cipher can take and
/// strip them again after decrypting.
///
/// Error contract: nothing throws for bad input. `put` answers false and `get` an empty
/// string where the operations refuse (see ovIProcessEnvironmentOperations); the crypt
/// operations answer false when the cipher does, or when no length it can take is found.
/// Both platforms behave alike.
#pragma once

#include "ovra/ovExport.h"
#include "ovra/ovString.h"

#include "ut/utObserverPtr.h"

#include <string>

class ovIProcessEnvironmentOperations;

/// The process environment, through borrowed environment operations.
class OV_API ovEnvironmentVariables {
public:
    /// Observes `operations` (not owned); null takes the chooser's process-wide ones.
    explicit ovEnvironmentVariables(ovIProcessEnvironmentOperations* operations);

    /// Sets the variable; the operations' answer.
    bool put(ovString name, ovString value);
    /// The variable's value; "" when it is not set.
    ovString get(ovString name);

private:
    static utObserverPtr<ovIProcessEnvironmentOperations>
    look_up_operations(ovIProcessEnvironmentOperations* operations);

    utObserverPtr<ovIProcessEnvironmentOperations> m_operations;
};

/// In-place encryption of text with zero padding; the cipher is the implementer's.
class OV_API ovICrypt {
public:
    /// Pads `text` with zero bytes to the shortest length m >= its own that
    /// num_encryptable(m) accepts (answers m), then encrypts m bytes in place. False,
    /// with `text` unchanged, when no such m is found within 65536 bytes of padding.
    virtual bool encrypt_string(std::string& text);
    /// Decrypts in place; on success strips every trailing zero byte, unless the text is
    /// all zeros. Genuine trailing zeros of the plain text go too.
    virtual bool decrypt_string(std::string& text);
    /// Encrypts `length` bytes in place; non-zero on success.
    virtual int encrypt_buffer(char* buffer, int length) = 0;
    /// The length the cipher can encrypt given `length`; `length` by default.
    virtual int num_encryptable(int length) const;
    /// Decrypts `length` bytes in place; non-zero on success.
    virtual int decrypt_buffer(char* buffer, int length) = 0;
    /// The length the cipher can decrypt given `length`; `length` by default.
    virtual int num_decryptable(int length) const;
    /// The bytes needed to decrypt `length`; `length` by default.
    virtual int num_needed_to_decrypt(int length) const;
    /// Holds nothing to release.
    virtual ~ovICrypt();
};
