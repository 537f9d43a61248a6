/// @file
/// Byte order: values read from binary data written on another machine.
///
/// `ovByteOrderHandler` turns 2, 4 or 8 bytes into an int16, int32, float or
/// double of the running machine, reversing the bytes when the data's order
/// differs from the machine's. The bytes need not be aligned and are taken as
/// they are: no check for NaN or denormals. The three overloads of each width
/// (unsigned char, signed char, char pointers) behave identically.
///
/// Error contract: nothing throws. A null pointer decodes as 0.
///
/// `ovIeee` is the hook for floating-point exception control; it does nothing
/// on these platforms.
#pragma once

#include "ovra/ovExport.h"

#include <cstdint>
#include <cstring>
#include <type_traits>

/// A byte order. The handler only compares two orders for equality, so any
/// two different values reverse the bytes.
enum ovByteOrder : int32_t {
    ovBYTE_ORDER_LITTLE_ENDIAN = 0, ///< least significant byte first (x86, x86-64, ARM as used)
    ovBYTE_ORDER_BIG_ENDIAN = 1,    ///< most significant byte first (network order)
};

/// Reads values of the running machine out of bytes in a given order.
class OV_API ovByteOrderHandler {
public:
    /// Data in `data` order, results for a machine of `machine` order.
    ovByteOrderHandler(ovByteOrder data, ovByteOrder machine) noexcept
        : m_data(data), m_machine(machine), m_reverse(data != machine) {}
    ~ovByteOrderHandler() {}

    /// The running machine's order: what to pass as `machine` to get values for
    /// this process.
    static ovByteOrder native_order() noexcept;

    /// Replaces both orders.
    void set_orders(ovByteOrder data, ovByteOrder machine) noexcept {
        m_data = data;
        m_machine = machine;
        m_reverse = data != machine;
    }
    /// The order of the data.
    ovByteOrder data_order() const noexcept { return m_data; }
    /// The order results are given in.
    ovByteOrder machine_order() const noexcept { return m_machine; }

    /// Decodes 2 bytes.
    /// @{
    int16_t int16(const unsigned char* p) const noexcept { return decode<int16_t>(p); }
    int16_t int16(const signed char* p) const noexcept { return decode<int16_t>(p); }
    int16_t int16(const char* p) const noexcept { return decode<int16_t>(p); }
    /// @}
    /// Decodes 4 bytes.
    /// @{
    int32_t int32(const unsigned char* p) const noexcept { return decode<int32_t>(p); }
    int32_t int32(const signed char* p) const noexcept { return decode<int32_t>(p); }
    int32_t int32(const char* p) const noexcept { return decode<int32_t>(p); }
    /// @}
    /// Decodes 4 bytes as an IEEE 754 single.
    /// @{
    float real32(const unsigned char* p) const noexcept { return decode<float>(p); }
    float real32(const signed char* p) const noexcept { return decode<float>(p); }
    float real32(const char* p) const noexcept { return decode<float>(p); }
    /// @}
    /// Decodes 8 bytes as an IEEE 754 double.
    /// @{
    double real64(const unsigned char* p) const noexcept { return decode<double>(p); }
    double real64(const signed char* p) const noexcept { return decode<double>(p); }
    double real64(const char* p) const noexcept { return decode<double>(p); }
    /// @}

private:
    /// Written as shifts, which compilers turn into one byte-swap instruction; inline so
    /// that a loop over a buffer compiles to loads and swaps.
    static uint16_t reversed(uint16_t v) noexcept {
        return static_cast<uint16_t>((v >> 8) | (v << 8));
    }
    static uint32_t reversed(uint32_t v) noexcept {
        return ((v & 0xFFu) << 24) | ((v & 0xFF00u) << 8) | ((v >> 8) & 0xFF00u) | (v >> 24);
    }
    static uint64_t reversed(uint64_t v) noexcept {
        return (static_cast<uint64_t>(reversed(static_cast<uint32_t>(v))) << 32) |
               reversed(static_cast<uint32_t>(v >> 32));
    }

    template <class T> T decode(const void* src) const noexcept {
        typedef typename std::conditional<
            sizeof(T) == 2, uint16_t,
            typename std::conditional<sizeof(T) == 4, uint32_t, uint64_t>::type>::type Bits;
        static_assert(sizeof(T) == sizeof(Bits), "2, 4 or 8 bytes");
        T out{};
        if (!src)
            return out;
        Bits bits;
        std::memcpy(&bits, src, sizeof bits);
        if (m_reverse)
            bits = reversed(bits);
        std::memcpy(&out, &bits, sizeof out);
        return out;
    }

    ovByteOrder m_data;
    ovByteOrder m_machine;
    /// Kept apart from the orders: an int32 result stored in a loop could otherwise
    /// be taken to change them, and the comparison would be made again for each value.
    bool m_reverse;
};

/// Floating-point exception control: nothing to do on these platforms.
class OV_API ovIeee {
public:
    ovIeee() noexcept {}
    ~ovIeee() {}
    /// Ignored.
    static void zero_divide(int enable) noexcept;
};
