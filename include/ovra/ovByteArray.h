/// @file
/// ovByteArray: a shared byte buffer with a 64-bit length, the unit in which whole
/// files are read and written.
///
/// Copies share the bytes and one use count; the last copy to go frees them. The
/// count is a plain integer, not atomic: an array and its copies stay on one thread.
///
/// Error contract: nothing here fails outward except allocation, which throws
/// std::bad_alloc from the copying constructor. The default array holds no bytes
/// (`invalid()`); an array of length 0 made from a buffer is valid and empty.
#pragma once

#include "ovra/ovExport.h"

#include <cstdint>
#include <memory>

/// A shared, counted array of bytes with a 64-bit length: what whole-file reads
/// give and whole-file writes take.
class OV_API ovByteArray {
public:
    /// No bytes, length 0, invalid.
    ovByteArray() noexcept;
    /// A copy of `length` bytes from `bytes`; null bytes give the default array.
    ovByteArray(const char* bytes, uint64_t length);
    /// Takes `bytes` (allocated as an array) without copying; `length` is its size.
    /// A null buffer gives the default array.
    ovByteArray(std::unique_ptr<char[]> bytes, uint64_t length);
    /// Shares the other's bytes.
    ovByteArray(const ovByteArray& o) noexcept;
    /// Shares, by copy and swap; assigning an array to itself changes nothing.
    ovByteArray& operator=(const ovByteArray& o) noexcept;
    ~ovByteArray();

    /// 1 when there are no bytes at all (the default array).
    int invalid() const noexcept { return m_data ? 0 : 1; }
    /// 1 when the length is 0.
    int empty() const noexcept { return m_length == 0 ? 1 : 0; }
    /// The bytes, read-only; null for the default array.
    const char* get_ptr() const noexcept { return m_data; }
    /// The number of bytes.
    uint64_t length() const noexcept { return m_length; }

    /// Same length and the same bytes, wherever they are kept.
    bool operator==(const ovByteArray& o) const noexcept;
    /// Not operator==.
    bool operator!=(const ovByteArray& o) const noexcept { return !(*this == o); }

protected:
    /// Drops this array's share; the array becomes the default one.
    void release() noexcept;
    void swap(ovByteArray& o) noexcept;

private:
    char* m_data;
    uint64_t m_length;
    int32_t* m_count;
};
