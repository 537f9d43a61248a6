// Stable byte hashing for keys that must hash alike on every platform.
// Bad input (null data, n <= 0) hashes as no bytes; nothing fails.
#ifndef CO_HASH_H
#define CO_HASH_H

#include "co/coExport.h"

// 32-bit FNV-1a of n bytes at data; null data or n <= 0 gives the basis 2166136261.
CO_API unsigned int co_hash(const void* data, int n);

#endif // CO_HASH_H
